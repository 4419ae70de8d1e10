#include "wordbridge/companion.h"

#include "wordbridge/articleodt.h"
#include "wordbridge/customxml.h"
#include "wordbridge/docxcheck.h"
#include "wordbridge/error.h"
#include "wordbridge/files.h"
#include "wordbridge/frontmatter.h"
#include "wordbridge/launchscript.h"
#include "wordbridge/manuscriptfile.h"
#include "wordbridge/notification.h"
#include "wordbridge/officejob.h"
#include "wordbridge/publicationmetadata.h"

#include <cstdio>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <unistd.h>

namespace wordbridge
{

namespace
{

const char* const help =
    "Usage: osascript SCRIPT\n"
    "\n"
    "Stands in for the Mac's program of this name where LibreOffice is the word processor:\n"
    "carries out the launch script that Vexa Word writes. The new manuscript is made from the\n"
    "Word template, the article and the metadata, kept as \"Manuscript \u2013 NAME.docx\" in the\n"
    "documents folder (never over an existing file), and opened in LibreOffice if there is a\n"
    "display. Without LibreOffice an OpenDocument text (.odt) is made in its place.\n"
    "\n"
    "Standard output gets one line, the path of the manuscript, as soon as it is there. That is\n"
    "also true when Vexa Word has started this program: it shares Vexa Word's standard output.\n"
    "Messages go to standard error and, if that is no terminal, to the desktop as notifications.\n"
    "\n"
    "Options:\n"
    "  --help       print this text\n"
    "  --version    print the version\n"
    "\n"
    "Exit status:\n"
    "  0  the manuscript was made\n"
    "  1  the script, or a file that it names, is missing or wrong\n"
    "  2  wrong call\n"
    "  3  the manuscript could not be made\n"
    "\n"
    "Environment:\n"
    "  VEXAWORD_OPEN_DOCUMENT=no    do not open the manuscript\n"
    "  VEXAWORD_OFFICE              program to use as LibreOffice\n"
    "  VEXAWORD_OFFICE_PATIENCE     seconds without progress before LibreOffice is given up (60)\n"
    "\n"
    "Files:\n"
    "  ~/.local/state/vexaword/manuscripts.log    one line for every run\n"
    "  ~/.cache/vexaword/                         LibreOffice profile of this program\n";

QString folderFromEnvironment(const char* variable, const char* belowHome)
{
    const QString folder = qEnvironmentVariable(variable);
    return QDir::isAbsolutePath(folder) ? folder : QDir::home().filePath(QLatin1String(belowHome));
}

void say(FILE* stream, const QString& text)
{
    std::fputs((text + QLatin1Char('\n')).toUtf8().constData(), stream);
    std::fflush(stream);
}

// What a terminal would show appears on the desktop where there is none.
void notifyUnlessOnTerminal(const QString& summary, const QString& text, Urgency urgency)
{
    if (::isatty(STDERR_FILENO) == 0)
        notify(summary, text, urgency);
}

Patience patience()
{
    Patience patience;
    bool isNumber = false;
    const int seconds = qEnvironmentVariable("VEXAWORD_OFFICE_PATIENCE").toInt(&isNumber);
    if (isNumber && seconds > 0)
        patience.withoutProgress = std::chrono::seconds(seconds);
    patience.stillWorking = [] {
        const QString message = QStringLiteral("LibreOffice is making the manuscript …");
        say(stderr, QStringLiteral("osascript: %1").arg(message));
        notifyUnlessOnTerminal(QStringLiteral("Vexa Word"), message, Urgency::normal);
    };
    return patience;
}

// The program writes the metadata to Word's container if there is one, else beside the script.
QString metadataPath(const QString& scriptPath)
{
    const QDir container(QDir::homePath() +
                         QStringLiteral("/Library/Containers/com.microsoft.Word/Data"));
    if (container.exists())
        return container.filePath(QStringLiteral("macstart.xml"));
    return QFileInfo(scriptPath).absoluteDir().filePath(QStringLiteral("publauthors/macstart.xml"));
}

void requireFile(const ScriptValue& file, const QString& what, const QString& scriptPath)
{
    const QFileInfo info(file.text);
    if (!info.isFile() || !info.isReadable())
        throw Error(QStringLiteral("%1:%2: the %3 is missing or cannot be read: %4")
                        .arg(scriptPath, QString::number(file.line), what, file.text));
}

// LibreOffice would take any text for a template.
void requireTemplate(const ScriptValue& file, const QString& scriptPath)
{
    requireFile(file, QStringLiteral("Word template"), scriptPath);
    try {
        if (Package::read(file.text).find(QStringLiteral("word/document.xml")) != nullptr)
            return;
    } catch (const Error&) {
        // is said below, with the line of the script
    }
    throw Error(QStringLiteral("%1:%2: this is no Word template, or a damaged one: %3")
                    .arg(scriptPath, QString::number(file.line), file.text));
}

struct Manuscript {
    LaunchScript script;
    HtmlNode article;
    QString articleFolder;
    PublicationMetadata metadata;
    QByteArray metadataBytes;
    QStringList remarks;
};

Manuscript readManuscript(const QString& scriptPath)
{
    Manuscript manuscript;
    manuscript.script = readLaunchScript(readFile(scriptPath), scriptPath);
    requireTemplate(manuscript.script.templatePath, scriptPath);
    if (const auto& articlePath = manuscript.script.articlePath) {
        requireFile(*articlePath, QStringLiteral("article"), scriptPath);
        manuscript.article = parseHtml(readFile(articlePath->text));
        manuscript.articleFolder = QFileInfo(articlePath->text).absolutePath();
    }
    QFile metadata(metadataPath(scriptPath));
    if (metadata.open(QIODevice::ReadOnly)) {
        manuscript.metadataBytes = metadata.readAll();
        manuscript.metadata = readPublicationMetadata(manuscript.metadataBytes);
    } else {
        manuscript.metadata.remarks.push_back(metadata.errorString());
    }
    for (const QString& remark : manuscript.metadata.remarks)
        manuscript.remarks.push_back(
            QStringLiteral("journal, authors or addresses may be missing in the manuscript: %1: %2")
                .arg(metadata.fileName(), remark));
    return manuscript;
}

// Runs LibreOffice in the kept profile, or in a new one where that is in use or does not work.
OfficeResult runInSomeProfile(const QString& office, const OfficeJob& job)
{
    const QString cache =
        folderFromEnvironment("XDG_CACHE_HOME", ".cache") + QStringLiteral("/vexaword");
    if (const auto profile = OfficeProfile::kept(cache)) {
        const OfficeResult result = runOffice(office, *profile, job, patience());
        if (result.failure.isEmpty())
            return result;
        profile->discard();
        if (result.timedOut)
            return result; // a new profile seldom helps, and the user has waited long enough
    }
    const auto profile = OfficeProfile::temporary();
    return runOffice(office, *profile, job, patience());
}

// The manuscript as LibreOffice makes it: path of a .docx in the work folder, or nothing.
std::optional<QString> makeWithOffice(const QString& office, Manuscript& manuscript,
                                      const QString& workFolder)
{
    OfficeJob job;
    job.workFolder = workFolder;
    job.templatePath = QFileInfo(manuscript.script.templatePath.text).absoluteFilePath();
    job.outputPath = workFolder + QStringLiteral("/manuscript.docx");
    job.metadataPath = workFolder + QStringLiteral("/macstart.xml");
    if (!manuscript.metadataBytes.isEmpty())
        writeFile(job.metadataPath, manuscript.metadataBytes);
    if (manuscript.script.articlePath) {
        const ArticleOdt article = writeArticleOdt(manuscript.article, manuscript.articleFolder);
        job.articlePath = workFolder + QStringLiteral("/article.odt");
        article.package.write(job.articlePath);
        manuscript.remarks += article.remarks;
    }
    if (manuscript.script.macro)
        job.macro = manuscript.script.macro->text;

    const OfficeResult result = runInSomeProfile(office, job);
    manuscript.remarks += result.warnings;
    if (!result.failure.isEmpty()) {
        manuscript.remarks.push_back(result.failure);
        return std::nullopt;
    }
    Package document = Package::read(job.outputPath);
    addCustomXml(document, manuscriptXml(manuscript.metadata));
    for (const QString& finding : checkWordDocument(document))
        manuscript.remarks.push_back(
            QStringLiteral("Word may have to repair the manuscript: %1").arg(finding));
    document.write(job.outputPath);
    return job.outputPath;
}

// The manuscript without any word processor: path of an .odt in the work folder.
QString makeWithoutOffice(Manuscript& manuscript, const QString& workFolder)
{
    const QByteArray properties =
        openDocumentMeta(manuscript.metadata, articleTitle(manuscript.article));
    fillFrontMatter(manuscript.article, manuscript.metadata);
    const ArticleOdt article =
        writeArticleOdt(manuscript.article, manuscript.articleFolder, properties);
    manuscript.remarks += article.remarks;
    const QString path = workFolder + QStringLiteral("/manuscript.odt");
    article.package.write(path);
    return path;
}

bool hasDisplay()
{
    return !qEnvironmentVariableIsEmpty("DISPLAY") ||
           !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
}

bool mayOpen()
{
    return hasDisplay() && qEnvironmentVariable("VEXAWORD_OPEN_DOCUMENT") != QLatin1String("no");
}

void keepLog(const QString& scriptPath, const QString& outcome)
{
    const QString folder =
        folderFromEnvironment("XDG_STATE_HOME", ".local/state") + QStringLiteral("/vexaword");
    QDir().mkpath(folder);
    QFile log(folder + QStringLiteral("/manuscripts.log"));
    if (log.open(QIODevice::Append | QIODevice::Text)) // a log that cannot be kept stops nothing
        log.write(QStringLiteral("%1 %2: %3\n")
                      .arg(QDateTime::currentDateTime().toString(Qt::ISODate), scriptPath, outcome)
                      .toUtf8());
}

void reportRemarks(const Outcome& outcome)
{
    if (outcome.remarks.isEmpty())
        return;
    for (const QString& remark : outcome.remarks)
        say(stderr, QStringLiteral("osascript: warning: %1").arg(remark));
    notifyUnlessOnTerminal(QStringLiteral("The manuscript was made, with a remark"),
                           outcome.document + QLatin1Char('\n') +
                               outcome.remarks.join(QLatin1Char('\n')),
                           Urgency::normal);
}

int runScript(const QString& scriptPath)
{
    ExitCode exitCode = documentMade;
    try {
        const Outcome outcome = carryOut(scriptPath, exitCode);
        say(stdout, outcome.document);
        reportRemarks(outcome);
        keepLog(scriptPath, outcome.document);
    } catch (const Error& error) {
        say(stderr, QStringLiteral("osascript: error: %1").arg(error.message()));
        notifyUnlessOnTerminal(QStringLiteral("The manuscript could not be made"), error.message(),
                               Urgency::critical);
        keepLog(scriptPath, QStringLiteral("error: %1").arg(error.message()));
    }
    return exitCode;
}

} // namespace

Outcome carryOut(const QString& scriptPath, ExitCode& exitCode)
{
    exitCode = scriptUnusable;
    Manuscript manuscript = readManuscript(scriptPath);

    exitCode = documentNotMade;
    const std::unique_ptr<QTemporaryDir> work = makeWorkFolder();
    const std::optional<QString> office = findOffice();
    std::optional<QString> made;
    if (office)
        made = makeWithOffice(*office, manuscript, work->path());
    if (!made) {
        manuscript.remarks.push_back(
            office
                ? QStringLiteral("so the manuscript was made without LibreOffice, in plainer form; "
                                 "if LibreOffice is open, close it and try again")
                : QStringLiteral("LibreOffice was not found, so the manuscript was made in plainer "
                                 "form; install libreoffice-writer for the full one"));
        made = makeWithoutOffice(manuscript, work->path());
    }
    QString name = articleName(manuscript.article);
    if (name.isEmpty())
        name = (manuscript.metadata.journal + QLatin1Char(' ') + manuscript.metadata.category)
                   .simplified();
    Outcome outcome;
    outcome.document = keepManuscript(*made, manuscriptBaseName(name));
    exitCode = documentMade;
    if (mayOpen() && !openDocument(office, outcome.document))
        manuscript.remarks.push_back(
            QStringLiteral("no program was found to open the manuscript with"));
    outcome.remarks = manuscript.remarks;
    return outcome;
}

int run(const QStringList& arguments)
{
    if (arguments == QStringList{QStringLiteral("--help")}) {
        say(stdout, QString::fromUtf8(help).trimmed());
        return documentMade;
    }
    if (arguments == QStringList{QStringLiteral("--version")}) {
        say(stdout, QStringLiteral("osascript (Vexa Word) " VEXAWORD_VERSION));
        return documentMade;
    }
    if (arguments.size() != 1 || arguments.first().startsWith(QLatin1Char('-'))) {
        say(stderr,
            QStringLiteral("osascript: error: exactly one argument is expected, the path of a "
                           "launch script; see osascript --help"));
        return wrongCall;
    }
    return runScript(arguments.first());
}

} // namespace wordbridge
