#include "wordbridge/manuscriptfile.h"

#include "wordbridge/error.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <QStringList>

namespace wordbridge
{

namespace
{

constexpr int longestName = 180; // bytes; leaves room for a number, the suffix and lock files
constexpr int mostNumbers = 10000;

QString cutToBytes(QString text, int bytes)
{
    while (text.toUtf8().size() > bytes) {
        const bool isPair = text.at(text.size() - 1).isLowSurrogate();
        text.chop(isPair ? 2 : 1);
    }
    return text.trimmed();
}

QString numbered(const QString& baseName, int number)
{
    return number == 1 ? baseName
                       : QStringLiteral("%1 (%2)").arg(baseName, QString::number(number));
}

// Creates the first free name in the folder, atomically, and leaves it open. False if the folder
// does not take files.
bool createFree(QFile& file, const QDir& folder, const QString& baseName, const QString& suffix)
{
    for (int number = 1; number <= mostNumbers; ++number) {
        file.setFileName(folder.filePath(numbered(baseName, number) + '.' + suffix));
        if (file.open(QIODevice::WriteOnly | QIODevice::NewOnly))
            return true;
        if (!QFileInfo::exists(file.fileName()) && !QFileInfo(file.fileName()).isSymLink())
            return false;
    }
    return false;
}

bool copyTo(QFile& target, const QByteArray& content)
{
    if (target.write(content) == content.size() && target.flush())
        return true;
    target.remove();
    return false;
}

} // namespace

QString manuscriptBaseName(const QString& name)
{
    const QString oneLine = name.simplified();
    QString clean;
    for (const QChar c : oneLine) {
        const bool forbidden =
            c.unicode() < 0x20 || c.unicode() == 0x7F || QStringLiteral("/\\:*?\"<>|").contains(c);
        clean.append(forbidden ? QLatin1Char('_') : c);
    }
    const QString manuscript = QStringLiteral("Manuscript");
    if (clean.isEmpty())
        return manuscript;
    return cutToBytes(manuscript + QStringLiteral(" \u2013 ") + clean, longestName);
}

QString keepManuscript(const QString& source, const QString& baseName)
{
    QFile sourceFile(source);
    if (!sourceFile.open(QIODevice::ReadOnly))
        throw Error(QStringLiteral("cannot read %1: %2").arg(source, sourceFile.errorString()));
    const QByteArray content = sourceFile.readAll();
    const QString suffix = QFileInfo(source).suffix();

    const QString documents = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    QString reason;
    for (const QString& folder : {documents, QDir::homePath()}) {
        QFile target;
        QDir().mkpath(folder);
        if (createFree(target, QDir(folder), baseName, suffix) && copyTo(target, content))
            return target.fileName();
        reason = target.errorString();
    }
    throw Error(QStringLiteral("the manuscript can be saved neither in %1 nor in %2: %3")
                    .arg(documents, QDir::homePath(), reason));
}

} // namespace wordbridge
