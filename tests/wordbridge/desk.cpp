#include "desk.h"

#include "wordbridge/files.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QStandardPaths>
#include <QThread>

namespace
{

const QString bundle = QStringLiteral(VEXA_BUNDLE_DIR);
constexpr int longestRun = 100000; // milliseconds

QString sharedCache()
{
    static const QTemporaryDir folder;
    return folder.path();
}

} // namespace

Desk::Desk()
{
    QDir().mkpath(home());
    environment = QProcessEnvironment::systemEnvironment();
    for (const char* variable :
         {"DISPLAY", "WAYLAND_DISPLAY", "DBUS_SESSION_BUS_ADDRESS", "XDG_RUNTIME_DIR",
          "XDG_CONFIG_HOME", "XDG_STATE_HOME", "VEXAWORD_OFFICE", "VEXAWORD_OPEN_DOCUMENT"})
        environment.remove(QLatin1String(variable));
    environment.insert(QStringLiteral("HOME"), home());
    environment.insert(QStringLiteral("XDG_CACHE_HOME"), sharedCache());
    writeScript(bundle + QStringLiteral("/vexainkworks_wm.dotm"), articlePath());
}

const char* const announcement = "LibreOffice is making the manuscript …";

QString Desk::resources() const
{
    return home() + QStringLiteral("/Library/Application Support/VexaWord/resources201");
}

void Desk::writeArticle(const QByteArray& html)
{
    wordbridge::writeFile(articlePath(), html);
}

void Desk::writeMetadata(const QString& xml)
{
    wordbridge::writeFile(metadataPath(), encodedTwice(xml));
}

void Desk::writeScript(const QString& templatePath, const QString& article)
{
    const QString script = QStringLiteral(
        "tell application \"System Events\"\nactivate\n"
        "if not (UI elements enabled) then set (UI elements enabled) to true\n\tend tell\n"
        "tell application \"Microsoft Word\"\n    activate\n"
        "    create new document attached template (POSIX file \"%1\") as string\n    delay 1\n"
        "    insert file at text object of selection file name (POSIX file \"%2\") as string\n"
        "    run VB macro macro name \"Vexa_authors.VexaM_setInitialXmlData\"\nend tell\n");
    wordbridge::writeFile(scriptPath(), encodedTwice(script.arg(templatePath, article)));
}

RunResult Desk::run()
{
    return run({scriptPath()});
}

RunResult Desk::run(const QStringList& arguments)
{
    const std::unique_ptr<QProcess> process = start(arguments);
    RunResult run;
    EXPECT_TRUE(process->waitForFinished(longestRun)) << "osascript did not end";
    run.exitCode = process->exitCode();
    run.output = QString::fromUtf8(process->readAllStandardOutput());
    run.errors = QString::fromUtf8(process->readAllStandardError());
    const QString announced =
        QStringLiteral("osascript: %1\n").arg(QString::fromUtf8(announcement));
    run.wasAnnounced = run.errors.contains(announced);
    run.errors.remove(announced);
    return run;
}

std::unique_ptr<QProcess> Desk::start(const QStringList& arguments) const
{
    auto process = std::make_unique<QProcess>();
    process->setProcessEnvironment(environment);
    process->start(bundle + QStringLiteral("/osascript"), arguments);
    return process;
}

void OfficeTest::SetUp()
{
    if (QStandardPaths::findExecutable(QStringLiteral("soffice")).isEmpty())
        GTEST_SKIP() << "skipped: LibreOffice is not installed";
}

bool isWaitedFor(const std::function<bool()>& condition)
{
    QElapsedTimer timer;
    timer.start();
    while (!condition()) {
        if (timer.hasExpired(60000))
            return false;
        QCoreApplication::processEvents();
        QThread::msleep(20);
    }
    return true;
}

QByteArray encodedTwice(const QString& text)
{
    return QString::fromLatin1(text.toUtf8()).toUtf8();
}

QString textOf(const wordbridge::Package& package, const char* part)
{
    const QByteArray* content = package.find(QLatin1String(part));
    EXPECT_NE(content, nullptr) << part;
    return content ? QString::fromUtf8(*content) : QString();
}

int main(int argc, char* argv[])
{
    QCoreApplication application(argc, argv);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
