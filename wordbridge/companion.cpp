#include "wordbridge/companion.h"

#include "wordbridge/error.h"
#include "wordbridge/files.h"
#include "wordbridge/folders.h"
#include "wordbridge/manuscript.h"
#include "wordbridge/manuscriptfile.h"
#include "wordbridge/notification.h"
#include "wordbridge/officejob.h"

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
    QDir().mkpath(stateFolder());
    QFile log(stateFolder() + QStringLiteral("/manuscripts.log"));
    if (log.open(QIODevice::Append | QIODevice::Text)) // a log that cannot be kept stops nothing
        log.write(QStringLiteral("%1 %2: %3\n")
                      .arg(QDateTime::currentDateTime().toString(Qt::ISODate), scriptPath, outcome)
                      .toUtf8());
}

void reportRemarks(const Manuscript& manuscript)
{
    if (manuscript.remarks.isEmpty())
        return;
    for (const QString& remark : manuscript.remarks)
        say(stderr, QStringLiteral("osascript: warning: %1").arg(remark));
    notifyUnlessOnTerminal(QStringLiteral("The manuscript was made, with a remark"),
                           manuscript.path + QLatin1Char('\n') +
                               manuscript.remarks.join(QLatin1Char('\n')),
                           Urgency::normal);
}

// With LibreOffice if that works, else without.
Manuscript makeManuscript(const std::optional<QString>& office, const ManuscriptSource& source,
                          const QString& workFolder)
{
    QStringList remarks;
    if (office) {
        if (auto manuscript = makeWithOffice(*office, source, workFolder, patience(), remarks))
            return *manuscript;
        remarks.push_back(
            QStringLiteral("so the manuscript was made without LibreOffice, in plainer form; if "
                           "LibreOffice is open, close it and try again"));
    } else {
        remarks.push_back(
            QStringLiteral("LibreOffice was not found, so the manuscript was made in plainer form; "
                           "install libreoffice-writer for the full one"));
    }
    Manuscript manuscript = makeWithoutOffice(source, workFolder);
    manuscript.remarks = remarks + manuscript.remarks;
    return manuscript;
}

// Makes the manuscript, keeps it in the user's documents folder, and opens it where there is a
// display. `exitCode` says how far it came, also when it throws Error.
Manuscript carryOut(const QString& scriptPath, ExitCode& exitCode)
{
    exitCode = scriptUnusable;
    QStringList remarks;
    const ManuscriptSource source = readManuscriptSource(scriptPath, remarks);

    exitCode = documentNotMade;
    const std::unique_ptr<QTemporaryDir> work = makeWorkFolder();
    const std::optional<QString> office = findOffice();
    Manuscript manuscript = makeManuscript(office, source, work->path());
    manuscript.path = keepManuscript(manuscript.path, manuscriptName(source));
    manuscript.remarks = remarks + manuscript.remarks;

    exitCode = documentMade;
    if (mayOpen() && !openDocument(office, manuscript.path))
        manuscript.remarks.push_back(
            QStringLiteral("no program was found to open the manuscript with"));
    return manuscript;
}

int runScript(const QString& scriptPath)
{
    ExitCode exitCode = documentMade;
    try {
        const Manuscript manuscript = carryOut(scriptPath, exitCode);
        say(stdout, manuscript.path);
        reportRemarks(manuscript);
        keepLog(scriptPath, manuscript.path);
    } catch (const Error& error) {
        say(stderr, QStringLiteral("osascript: error: %1").arg(error.message()));
        notifyUnlessOnTerminal(QStringLiteral("The manuscript could not be made"), error.message(),
                               Urgency::critical);
        keepLog(scriptPath, QStringLiteral("error: %1").arg(error.message()));
    }
    return exitCode;
}

} // namespace

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
