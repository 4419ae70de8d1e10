// Handing over to the word processor.
#include "app/application.h"
#include "app/journalmetadata.h"
#include "app/launchscript.h"
#include "text/textfile.h"
#include "widgets/webwidget.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QProcess>

namespace
{
// The word processor of the Mac is sandboxed: where its container folder exists it reads files
// there only.
QString wordContainer()
{
    return QDir::homePath() + QStringLiteral("/Library/Containers/com.microsoft.Word/Data");
}

QString wordSidePath(const QString& containerFile, const QString& defaultPath)
{
    const QString container = wordContainer();
    return QDir(container).exists() ? container + containerFile : defaultPath;
}

// The system's own runner of scripts, or, where there is none, the companion in the program's
// folder.
QString scriptRunner()
{
    const QString systemRunner = QStringLiteral("/usr/bin/osascript");
    return QFile::exists(systemRunner)
               ? systemRunner
               : QCoreApplication::applicationDirPath() + QStringLiteral("/osascript");
}
} // namespace

void Application::openWordTemplate(const QString&, const QString& jnl, const QString& cat,
                                   const QString& type)
{
    const bool isSas = type == QLatin1String("sas");
    const JournalMetadata metadata =
        makeJournalMetadata(jnl, cat, isSas ? QString() : type, MetadataShape::WithField);

    const QString folder = QStringLiteral("/webwidgets/");
    const QString stem = metadata.code + QLatin1Char('_') + metadata.category;
    QString name = QStringLiteral("abcdfjsm.html"); // for any of these journals
    if (QFile::exists(resourcesPath + folder + stem + QStringLiteral(".html")))
        name = stem + QStringLiteral(".html");
    if (isSas)
        name = stem + QStringLiteral("_sas.html");

    // Looked for in the user's copy, inserted from the program's own folder: both hold the same
    // files.
    launchWordSession(metadata.xml, QCoreApplication::applicationDirPath() +
                                        QStringLiteral("/resources") + folder + name);
}

QString Application::writeInsertedHtml(const QString& html) const
{
    const QString path = wordSidePath(QStringLiteral("/vexatmptemp.html"),
                                      resourcesPath + QStringLiteral("/webwidgets/tmptemp.html"));
    writeTextFile(path, html);
    return path;
}

// A file that cannot be written is passed over: the launch goes on with what is there.
void Application::launchWordSession(const QString& xmlText, const QString& htmlPath)
{
    const QString applicationFolder = QCoreApplication::applicationDirPath();
    writeTextFileEncodedTwice(
        wordSidePath(QStringLiteral("/macstart.xml"),
                     resourcesPath + QStringLiteral("/publauthors/macstart.xml")),
        xmlText);
    const QString script = resourcesPath + QStringLiteral("/macscrlaunch");
    writeTextFileEncodedTwice(script, launchScript(applicationFolder, htmlPath));
    QProcess::startDetached(scriptRunner(), {script});
    if (mainWindow)
        mainWindow->close();
}
