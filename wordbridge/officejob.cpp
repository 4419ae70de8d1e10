#include "wordbridge/officejob.h"

#include <csignal>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>
#include <QUrl>
#include <unistd.h>
#include <utility>

namespace wordbridge
{

namespace
{

// A child in a process group of its own, so that all that it starts can be ended with it.
class SessionProcess : public QProcess
{
public:
    void killSession()
    {
        if (processId() > 0)
            ::kill(-static_cast<pid_t>(processId()), SIGKILL);
        waitForFinished();
    }

protected:
    void setupChildProcess() override { ::setsid(); }
};

QString url(const QString& path)
{
    return path.isEmpty() ? QString() : QString::fromLatin1(QUrl::fromLocalFile(path).toEncoded());
}

QProcessEnvironment jobEnvironment(const OfficeJob& job, const QString& reportPath)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    // File names and macros are UTF-8 whatever the user's locale; without a display LibreOffice
    // does not even look for one.
    environment.insert(QStringLiteral("LC_ALL"), QStringLiteral("C.UTF-8"));
    environment.remove(QStringLiteral("DISPLAY"));
    environment.remove(QStringLiteral("WAYLAND_DISPLAY"));
    environment.insert(QStringLiteral("VEXAWORD_TEMPLATE"), url(job.templatePath));
    environment.insert(QStringLiteral("VEXAWORD_ARTICLE"), url(job.articlePath));
    environment.insert(QStringLiteral("VEXAWORD_MACRO"), job.macro);
    environment.insert(QStringLiteral("VEXAWORD_MACSTART"), job.metadataPath);
    environment.insert(QStringLiteral("VEXAWORD_OUTPUT"), url(job.outputPath));
    environment.insert(QStringLiteral("VEXAWORD_REPORT"), reportPath);
    return environment;
}

// Waits for the end of the process as long as its report grows. False if it stopped growing.
bool waitWhileReporting(QProcess& process, const QString& reportPath, const Patience& patience)
{
    constexpr int glance = 200; // milliseconds
    qint64 reported = 0;
    bool isSilent = true;
    QElapsedTimer sinceStart;
    QElapsedTimer sinceReport;
    sinceStart.start();
    sinceReport.start();
    while (!process.waitForFinished(glance)) {
        if (process.state() == QProcess::NotRunning)
            return true;
        const qint64 size = QFileInfo(reportPath).size();
        if (size != reported) {
            reported = size;
            sinceReport.restart();
        }
        if (sinceReport.hasExpired(patience.withoutProgress.count()))
            return false;
        if (isSilent && sinceStart.hasExpired(patience.inSilence.count())) {
            isSilent = false;
            if (patience.stillWorking)
                patience.stillWorking();
        }
    }
    return true;
}

// LibreOffice's exit code says nothing; what counts is what the macro reported.
OfficeResult readReport(const QString& reportPath)
{
    OfficeResult result;
    QFile file(reportPath); // missing where LibreOffice did not come as far as the macro
    const QByteArray report = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    const QStringList lines = QString::fromUtf8(report).split(QLatin1Char('\n'));
    QString lastStep;
    bool done = false;
    for (const QString& line : lines) {
        const QString text = line.section(QLatin1Char(' '), 1);
        if (line.startsWith(QLatin1String("warning ")))
            result.warnings.push_back(text);
        else if (line.startsWith(QLatin1String("error ")))
            result.failure = text;
        else if (line.startsWith(QLatin1String("step ")))
            lastStep = text;
        done |= line == QLatin1String("done");
    }
    if (!done && result.failure.isEmpty())
        result.failure = lastStep.isEmpty()
                             ? QStringLiteral("LibreOffice did not start")
                             : QStringLiteral("LibreOffice ended before the document was complete "
                                              "(last step: %1)")
                                   .arg(lastStep);
    return result;
}

QStringList officeFolders()
{
    QStringList folders{
        QStringLiteral("/usr/lib/libreoffice/program"),
        QStringLiteral("/usr/lib64/libreoffice/program"),
    };
    const QDir opt(QStringLiteral("/opt"));
    const QStringList versions =
        opt.entryList({QStringLiteral("libreoffice*")}, QDir::Dirs, QDir::Name | QDir::Reversed);
    for (const QString& name : versions)
        folders.push_back(opt.filePath(name + QStringLiteral("/program")));
    return folders;
}

} // namespace

std::optional<QString> findOffice()
{
    const QString named = qEnvironmentVariable("VEXAWORD_OFFICE");
    QStringList candidates;
    if (!named.isEmpty()) {
        candidates << QStandardPaths::findExecutable(named);
    } else {
        for (const QString& name : {QStringLiteral("soffice"), QStringLiteral("libreoffice")})
            candidates << QStandardPaths::findExecutable(name);
        candidates << QStandardPaths::findExecutable(QStringLiteral("soffice"), officeFolders());
    }
    for (const QString& candidate : std::as_const(candidates)) {
        if (!candidate.isEmpty())
            return candidate;
    }
    return std::nullopt;
}

OfficeResult runOffice(const QString& office, const OfficeProfile& profile, const OfficeJob& job,
                       const Patience& patience)
{
    const QString reportPath = job.workFolder + QStringLiteral("/report");
    QFile::remove(reportPath);

    SessionProcess process;
    process.setProcessEnvironment(jobEnvironment(job, reportPath));
    process.setStandardInputFile(QProcess::nullDevice());
    process.setStandardOutputFile(QProcess::nullDevice());
    process.setStandardErrorFile(QProcess::nullDevice());
    process.start(office, {QStringLiteral("-env:UserInstallation=") + url(profile.path()),
                           QStringLiteral("--headless"), QStringLiteral("--norestore"),
                           QStringLiteral("--nologo"), QStringLiteral("--nodefault"),
                           QStringLiteral("macro:///Vexa.Bridge.MakeManuscript")});
    if (!process.waitForStarted()) {
        OfficeResult result;
        result.failure =
            QStringLiteral("%1 cannot be started: %2").arg(office, process.errorString());
        return result;
    }
    if (!waitWhileReporting(process, reportPath, patience)) {
        process.killSession();
        OfficeResult result = readReport(reportPath);
        result.timedOut = true;
        const auto waited =
            std::chrono::duration_cast<std::chrono::seconds>(patience.withoutProgress);
        result.failure =
            QStringLiteral("LibreOffice did not answer for %1 seconds").arg(waited.count());
        return result;
    }
    return readReport(reportPath);
}

bool openDocument(const std::optional<QString>& office, const QString& document)
{
    const QString desktops = QStandardPaths::findExecutable(QStringLiteral("xdg-open"));
    if (!office && desktops.isEmpty())
        return false;
    QProcess process;
    process.setProgram(office.value_or(desktops));
    if (office)
        process.setArguments({QStringLiteral("--nologo"), QStringLiteral("--writer"), document});
    else
        process.setArguments({document});
    // Not our output: whoever reads that would wait until the user closes the document.
    process.setStandardInputFile(QProcess::nullDevice());
    process.setStandardOutputFile(QProcess::nullDevice());
    process.setStandardErrorFile(QProcess::nullDevice());
    return process.startDetached();
}

} // namespace wordbridge
