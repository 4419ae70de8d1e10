#include "app/resourcefolder.h"

#include <QDebug>
#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace
{
QFileInfoList entriesOf(const QString& folder)
{
    return QDir(folder).entryInfoList(QDir::Dirs | QDir::Files | QDir::NoDotAndDotDot,
                                      QDir::NoSort);
}

QDir parentOf(const QString& path)
{
    return QDir(QFileInfo(path).path());
}

QString nameOf(const QString& path)
{
    return QFileInfo(path).fileName();
}

// Each folder is made in the one before it; failures show when the file that goes there is missing.
void makeFolders(const QString& home, const QStringList& paths)
{
    for (const QString& path : paths)
        if (!QDir(path).exists())
            QDir(home).mkdir(path);
}
} // namespace

bool cpDir(const QString& src, const QString& dst)
{
    if (!parentOf(dst).mkdir(nameOf(dst)))
        return false;
    const QFileInfoList entries = entriesOf(src);
    for (const QFileInfo& entry : entries) {
        const QString from = src + QLatin1Char('/') + entry.fileName();
        const QString to = dst + QLatin1Char('/') + entry.fileName();
        bool ok = true;
        if (entry.isDir())
            ok = cpDir(from, to);
        else if (entry.isFile())
            ok = QFile::copy(from, to);
        else
            qDebug("Unhandled item \"%s\" in cpDir ", qUtf8Printable(entry.filePath()));
        if (!ok)
            return false;
    }
    return true;
}

bool rmDir(const QString& path)
{
    if (!QDir(path).exists())
        return true;
    const QFileInfoList entries = entriesOf(path);
    for (const QFileInfo& entry : entries) {
        const bool removed =
            entry.isDir() ? rmDir(entry.filePath()) : QDir(path).remove(entry.fileName());
        if (!removed)
            return false;
    }
    return parentOf(path).rmdir(nameOf(path));
}

InstalledResources installResources(const QString& home, const QString& applicationFolder)
{
    const QString library = home + QStringLiteral("/Library");
    const QString support = library + QStringLiteral("/Application Support");
    const QString product = support + QStringLiteral("/VexaWord");
    const QString scripts = library + QStringLiteral("/Application Scripts");
    const QString wordScripts = scripts + QStringLiteral("/com.microsoft.Word");
    const QString wordScript = wordScripts + QStringLiteral("/Vexa.scpt");

    InstalledResources installed;
    installed.folder = product + QStringLiteral("/resources201");

    // The launch script stands for the whole copy: where it is, the copy is taken to be complete.
    const QString marker = installed.folder + QStringLiteral("/macscrlaunch");
    if (!QFile::exists(marker)) {
        makeFolders(home, {library, support, product});
        cpDir(applicationFolder + QStringLiteral("/resources"), installed.folder);
        installed.report +=
            QFile::exists(marker)
                ? QStringLiteral("OK: created  local resources folder: ")
                : QStringLiteral("ERROR: unable to create local resources folder: ");
        installed.report += installed.folder;
    }

    if (!QFile::exists(wordScript)) {
        makeFolders(home, {library, scripts, wordScripts});
        QFile::copy(installed.folder + QStringLiteral("/Vexa.scpt"), wordScript);
        installed.report +=
            QFile::exists(wordScript)
                ? QStringLiteral("<br />OK: created local Word2016 AppleScript resources: ")
                : QStringLiteral("<br />ERROR: unable to create local Word2016 AppleScript "
                                 "resources: ");
        installed.report += wordScript;
    }
    return installed;
}
