// How long the built program takes to start and to hand a manuscript over, and what it does while
// it is idle. Wants a display: tools/with-display bench_program [RUNS]
#include "bench/ratio.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>

#include <cstdlib>
#include <functional>
#include <memory>

namespace
{
void write(const QString& path, const QByteArray& content)
{
    QFile::remove(path);
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        std::abort();
    file.setPermissions(QFile::Permissions(0x7755));
}

QByteArray read(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void copyFolder(const QString& from, const QString& to)
{
    QProcess::execute(QStringLiteral("cp"), {QStringLiteral("-r"), from, to});
}

// Hears from a page, or from a script, that something has happened.
class Listener
{
public:
    Listener() { server.listen(QHostAddress::LocalHost); }

    int port() const { return server.serverPort(); }

    // Milliseconds until the next message that begins with that word.
    double waitFor(const QByteArray& word)
    {
        QElapsedTimer clock;
        clock.start();
        while (clock.elapsed() < 30000) {
            if (!server.waitForNewConnection(30000))
                break;
            std::unique_ptr<QTcpSocket> socket(server.nextPendingConnection());
            socket->waitForReadyRead(5000);
            if (socket->readAll().startsWith("GET /" + word))
                return static_cast<double>(clock.nsecsElapsed()) / 1e6;
        }
        std::fprintf(stderr, "bench_program: never heard of %s\n", word.constData());
        std::exit(1);
    }

    // The network code asks again where it got no answer: what has come so far counts no more.
    void forget()
    {
        while (server.hasPendingConnections() || server.waitForNewConnection(0))
            delete server.nextPendingConnection();
    }

private:
    QTcpServer server;
};

// The bundle with pages that tell when they are loaded.
class Bundle
{
public:
    explicit Bundle(const QString& folder, int port)
        : app(folder + QStringLiteral("/app")),
          home(folder + QStringLiteral("/home"))
    {
        copyFolder(QStringLiteral(VEXA_BUNDLE_DIR), app);
        QDir().mkpath(home);
        qputenv("HOME", QFile::encodeName(home));
        shipped = read(page());
        say = "<script>function say(word) { new Image().src = 'http://127.0.0.1:" +
              QByteArray::number(port) + "/' + word; }";
        setScript("window.onload = function () { say('loaded'); };");
        write(app + QStringLiteral("/quillet"), read(QStringLiteral("/bin/true")));
        write(app + QStringLiteral("/osascript"),
              "#!/bin/bash\nexec 3<>/dev/tcp/127.0.0.1/" + QByteArray::number(port) +
                  "\nprintf 'GET /started HTTP/1.0\\r\\n\\r\\n' >&3\n");
    }

    QString page() const { return app + QStringLiteral("/resources/webwidgets/templates.html"); }
    void setScript(const QByteArray& script) const
    {
        QByteArray html = shipped;
        write(page(), html.replace("</body>", say + script + "</script></body>"));
    }
    void setShippedPage() const { write(page(), shipped); }
    // What the system keeps for all programs (font caches) stays: that is not this program's start.
    void forgetInstallation() const
    {
        QProcess::execute(QStringLiteral("find"),
                          {home, QStringLiteral("-mindepth"), QStringLiteral("1"),
                           QStringLiteral("-maxdepth"), QStringLiteral("1"), QStringLiteral("!"),
                           QStringLiteral("-name"), QStringLiteral(".cache"),
                           QStringLiteral("-exec"), QStringLiteral("rm"), QStringLiteral("-rf"),
                           QStringLiteral("{}"), QStringLiteral("+")});
    }

    QString app;
    QString home;

private:
    QByteArray shipped;
    QByteArray say;
};

// Milliseconds from starting the program to the message.
double timeStart(Listener& listener, const QString& program, const QStringList& arguments,
                 const QByteArray& word)
{
    QProcess process;
    process.setStandardErrorFile(QProcess::nullDevice());
    process.start(program, arguments);
    const double time = listener.waitFor(word);
    process.kill();
    process.waitForFinished();
    listener.forget();
    return time;
}

double medianOf(int runs, const std::function<double()>& measure)
{
    std::vector<double> times;
    for (int run = 0; run < runs; ++run)
        times.push_back(measure());
    return bench::median(times);
}

// Sum over all threads of how often they gave up the processor.
long switches(qint64 pid)
{
    long sum = 0;
    const QString tasks = QStringLiteral("/proc/%1/task").arg(pid);
    for (const QString& task : QDir(tasks).entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        const QByteArray status = read(tasks + QLatin1Char('/') + task + QStringLiteral("/status"));
        const int at = status.indexOf("voluntary_ctxt_switches:");
        sum += status.mid(at + 24).trimmed().split('\n').value(0).toLong();
    }
    return sum;
}

// The page as it is shipped: one that talks to the listener keeps the network code awake. The
// engine tidies up its memory for some seconds after it has loaded a page.
void printIdle(const Bundle& bundle)
{
    bundle.setShippedPage();
    QProcess process;
    process.start(bundle.app + QStringLiteral("/vexaword"), QStringList());
    QProcess::execute(QStringLiteral("sleep"), {QStringLiteral("20")});
    const qint64 pid = process.processId();
    const QByteArray cpu = read(QStringLiteral("/proc/%1/stat").arg(pid));
    const long before = switches(pid);
    QProcess::execute(QStringLiteral("sleep"), {QStringLiteral("10")});
    const auto ticks = [](const QByteArray& stat) {
        const QByteArrayList fields = stat.mid(stat.lastIndexOf(')') + 2).split(' ');
        return fields.value(11).toLong() + fields.value(12).toLong();
    };
    std::printf("%-46s %10ld in 10 s\n", "idle: wake-ups", switches(pid) - before);
    std::printf("%-46s %10ld ms in 10 s\n", "idle: processor time",
                (ticks(read(QStringLiteral("/proc/%1/stat").arg(pid))) - ticks(cpu)) * 10);
    const QByteArray status = read(QStringLiteral("/proc/%1/status").arg(pid));
    const int at = status.indexOf("VmRSS:");
    std::printf("%-46s %10s\n", "idle: resident memory",
                status.mid(at + 6, 20).trimmed().split('\n').value(0).constData());
    process.kill();
    process.waitForFinished();
}
} // namespace

int main(int argc, char* argv[])
{
    QCoreApplication application(argc, argv);
    const int runs = argc > 1 ? std::atoi(argv[1]) : 7;
    const QTemporaryDir folder;
    Listener listener;
    Bundle bundle(folder.path(), listener.port());
    const QString vexaword = bundle.app + QStringLiteral("/vexaword");
    const QString bare = QCoreApplication::applicationDirPath() + QStringLiteral("/bare_view");
    const auto seconds = [](double milliseconds) { return milliseconds / 1000; };

    bench::printHead();
    bundle.forgetInstallation();
    timeStart(listener, vexaword, {}, "loaded");
    const double second =
        medianOf(runs, [&] { return timeStart(listener, vexaword, {}, "loaded"); });
    const double least = medianOf(runs, [&] {
        return timeStart(listener, bare, {QStringLiteral("file://") + bundle.page()}, "loaded");
    });
    bench::printRow("second start / bare program", seconds(second), seconds(least), "at most 1.15");

    const double first = medianOf(runs, [&] {
        bundle.forgetInstallation();
        return timeStart(listener, vexaword, {}, "loaded");
    });
    const double copying = medianOf(runs, [&] {
        bundle.forgetInstallation();
        return 1000 * bench::secondsFor([&] {
                   copyFolder(bundle.app + QStringLiteral("/resources"),
                              bundle.home + QStringLiteral("/copy"));
               });
    });
    bench::printRow("first start / second start and cp -r", seconds(first),
                    seconds(second + copying), "at most 50 ms more");

    bundle.setScript("window.onload = function () { var wait = setInterval(function () {"
                     " if (typeof Quillet !== 'object') return; clearInterval(wait); say('made');"
                     " setTimeout(function () { Quillet.createWordTemplate('', 'Section D', 'x'); "
                     "}, 200); }, 10); };");
    const double handing = medianOf(runs, [&] {
        bundle.forgetInstallation();
        QProcess process;
        process.start(vexaword, QStringList());
        listener.waitFor("made");
        const double time = listener.waitFor("started") - 200;
        process.waitForFinished();
        listener.forget();
        return time;
    });
    std::printf("%-46s %10.4f %28s\n", "make to osascript, quillet doing nothing", seconds(handing),
                "at most 0.06");

    bundle.forgetInstallation();
    printIdle(bundle);
    return 0;
}
