#include "wordbridge/files.h"

#include "wordbridge/error.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace wordbridge
{

QByteArray readFile(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        throw Error(QStringLiteral("cannot read %1: %2").arg(path, file.errorString()));
    return file.readAll();
}

void writeFile(const QString& path, const QByteArray& content)
{
    QFile file(path);
    const bool isWritten = QDir().mkpath(QFileInfo(path).path()) &&
                           file.open(QIODevice::WriteOnly) &&
                           file.write(content) == content.size() && file.flush();
    if (!isWritten)
        throw Error(QStringLiteral("cannot write %1: %2").arg(path, file.errorString()));
}

std::unique_ptr<QTemporaryDir> makeWorkFolder()
{
    const QString parent = QDir::tempPath(); // empty where TMPDIR names no folder
    auto folder = std::make_unique<QTemporaryDir>(parent + QStringLiteral("/vexaword-XXXXXX"));
    if (parent.isEmpty() || !folder->isValid())
        throw Error(QStringLiteral("there is no folder for temporary files that can be written: %1")
                        .arg(parent.isEmpty() ? qEnvironmentVariable("TMPDIR") : parent));
    return folder;
}

} // namespace wordbridge
