#include "tests/endtoend/programrun.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QTest>
#include <QUrl>

#include <unistd.h>

namespace
{
QByteArray outputOf(const QString& command, const QStringList& arguments)
{
    QProcess process;
    process.start(command, arguments);
    process.waitForFinished();
    return process.readAllStandardOutput();
}

const QString reportPath = QStringLiteral("/report?");
const QString nobody = QStringLiteral("65534"); // the number of a user and a group that own nothing
} // namespace

ProgramRun::ProgramRun(const QString& appName, const QString& homeName)
    : ApplicationSandbox(appName, homeName)
{
    // cp keeps permissions; "/." copies the content of the folder.
    outputOf(QStringLiteral("cp"),
             {QStringLiteral("-R"), QStringLiteral(VEXA_BUNDLE_DIR "/."), inApp(QString())});
    program.setProcessChannelMode(QProcess::ForwardedChannels);
}

ProgramRun::~ProgramRun()
{
    if (isRunning()) {
        program.kill();
        program.waitForFinished();
    }
}

// Reports go one after the other; a program that is told to quit would lose those on their way.
QString ProgramRun::reportFunctions() const
{
    return QStringLiteral(
               "var unsent = [], sending = false, then = null;"
               "function send() {"
               " if (sending) return;"
               " if (!unsent.length) { var next = then; then = null; if (next) next(); return; }"
               " var carrier = new Image(); sending = true;"
               " carrier.onload = carrier.onerror = function () { sending = false; send(); };"
               " carrier.src = '%1%2' + encodeURIComponent(unsent.shift()); }"
               "function report(text) { unsent.push(text); send(); }"
               "function afterReports(action) { then = action; send(); }")
        .arg(net.url(), reportPath);
}

void ProgramRun::setScript(const QString& script) const
{
    setPage(QStringLiteral("<script>%1 var start = setInterval(function () {"
                           " if (typeof Quillet !== 'object') return; clearInterval(start);"
                           " %2 }, 20);</script>")
                .arg(reportFunctions(), script));
}

void ProgramRun::addToShippedPages(const QString& script) const
{
    for (const char* name : {"templates.html", "templates_compat.html"}) {
        const QString path = inApp(QStringLiteral("resources/webwidgets/") + QLatin1String(name));
        const QString addition =
            QStringLiteral("<script>%1 %2</script></body>").arg(reportFunctions(), script);
        QByteArray html = sandbox::readFile(path);
        sandbox::writeFile(path, html.replace("</body>", addition.toUtf8()));
    }
}

bool ProgramRun::start(const QStringList& arguments, const QString& programPath)
{
    program.start(programPath.isEmpty() ? inApp(QStringLiteral("vexaword")) : programPath,
                  arguments);
    return program.waitForStarted();
}

bool ProgramRun::giveHomeToTheUnprivileged() const
{
    return ::geteuid() != 0 ||
           QProcess::execute(QStringLiteral("chown"), {QStringLiteral("-R"), nobody, home()}) == 0;
}

bool ProgramRun::startUnprivileged()
{
    if (::geteuid() != 0)
        return start();
    // The temporary folder is closed to everybody else.
    QFile::setPermissions(QFileInfo(home()).path(), QFile::Permissions(0x7755));
    program.start(QStringLiteral("setpriv"),
                  {QStringLiteral("--reuid=") + nobody, QStringLiteral("--regid=") + nobody,
                   QStringLiteral("--clear-groups"), inApp(QStringLiteral("vexaword"))});
    return program.waitForStarted();
}

bool ProgramRun::startOnSmallHome(const QString& limits)
{
    const QStringList unshare = {QStringLiteral("--mount"), QStringLiteral("--map-root-user"),
                                 QStringLiteral("sh"), QStringLiteral("-c")};
    const QString mount = QStringLiteral("mount -t tmpfs -o %1 tmpfs \"$HOME\"").arg(limits);
    if (QProcess::execute(QStringLiteral("unshare"), unshare + QStringList{mount}) != 0)
        return false;
    program.start(QStringLiteral("unshare"),
                  unshare + QStringList{mount + QStringLiteral(" && exec \"$0\""),
                                        inApp(QStringLiteral("vexaword"))});
    return program.waitForStarted();
}

QStringList ProgramRun::reports() const
{
    QStringList texts;
    const QList<QByteArray> lines = net.requestLines();
    for (const QByteArray& line : lines) {
        const QString path = QString::fromLatin1(line.split(' ').value(1));
        if (path.startsWith(reportPath))
            texts << QUrl::fromPercentEncoding(path.mid(reportPath.size()).toLatin1());
    }
    return texts;
}

bool ProgramRun::waitForReports(int count)
{
    return QTest::qWaitFor([&] { return reports().size() >= count; }, 20000);
}

int ProgramRun::exitCode(int seconds)
{
    const bool ended = QTest::qWaitFor([&] { return !isRunning(); }, seconds * 1000);
    return ended && program.exitStatus() == QProcess::NormalExit ? program.exitCode() : -1;
}

int ProgramRun::waitForWindow() const
{
    int window = 0;
    const QStringList search = {QStringLiteral("search"), QStringLiteral("--onlyvisible"),
                                QStringLiteral("--name"), QStringLiteral("^Vexa Word$")};
    const auto appears = [&] {
        window = outputOf(QStringLiteral("xdotool"), search).trimmed().toInt();
        return window != 0;
    };
    return QTest::qWaitFor(appears, 20000) ? window : 0;
}

QRect ProgramRun::windowFrame(int window) const
{
    const QString geometry = QString::fromLatin1(outputOf(
        QStringLiteral("xdotool"), {QStringLiteral("getwindowgeometry"), QString::number(window)}));
    const auto numbers =
        QRegularExpression(QStringLiteral("Position: (-?\\d+),(-?\\d+).*Geometry: (\\d+)x(\\d+)"),
                           QRegularExpression::DotMatchesEverythingOption)
            .match(geometry);
    return QRect(numbers.captured(1).toInt(), numbers.captured(2).toInt(),
                 numbers.captured(3).toInt(), numbers.captured(4).toInt());
}
