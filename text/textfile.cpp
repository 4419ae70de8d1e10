#include "text/textfile.h"

#include <QFile>
#include <QFileInfo>
#include <QTextStream>

bool isRegularFile(const QString& path)
{
    return QFileInfo(path).isFile();
}

bool isRegularFileOrMissing(const QString& path)
{
    const QFileInfo info(path);
    return info.isFile() || !info.exists();
}

bool readTextFile(const QString& path, QString* text)
{
    QFile file(path);
    if (!isRegularFile(path) || !file.open(QIODevice::ReadOnly | QIODevice::Text))
        return false;
    QTextStream stream(&file);
    *text = stream.readAll();
    return true;
}

bool writeTextFile(const QString& path, const QString& text)
{
    QFile file(path);
    if (!isRegularFileOrMissing(path) || !file.open(QIODevice::WriteOnly))
        return false;
    QTextStream stream(&file);
    stream << text;
    stream.flush();
    return stream.status() == QTextStream::Ok && file.flush();
}

bool writeTextFileEncodedTwice(const QString& path, const QString& text)
{
    const QByteArray utf8 = text.toUtf8();
    return writeTextFile(path, QString::fromLatin1(utf8.constData(), utf8.size()));
}
