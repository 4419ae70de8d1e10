// createWordTemplate: quillet's call, the files that result, and what may happen while it waits.
#include "app/application.h"
#include "process/procthread.h"
#include "tests/support/applicationsandbox.h"
#include "tests/support/eachcasealone.h"
#include "tests/support/realinput.h"
#include "tests/support/webpages.h"
#include "widgets/webwidget.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QPointer>
#include <QTest>
#include <QTimer>
#include <QWebView>

#include <csignal>
#include <functional>

namespace
{
const QByteArray xmlOpening =
    "<vexa:publjnl xmlns:vexa=\"http//" VEXAWORD_NAMESPACE_HOST "/publjnl\"><jnlname>";
const QByteArray asInstalled = "as installed\n";

QString waitingScript()
{
    return QStringLiteral("echo $$ >>\"$HOME/quillet.pids\"; "
                          "while [ ! -e \"$HOME/release\" ]; do sleep 0.05; done; "
                          "printf '<p>article</p>'");
}
} // namespace

class tst_TemplateGeneration : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void quilletsCall_data();
    void quilletsCall();
    void journalsWithoutASectionDoNothing_data();
    void journalsWithoutASectionDoNothing();
    void withoutACifThePathIsEmpty();
    void wtemplateMakesNoDifference();
    void metadata_data();
    void metadata();
    void blocksGoToTheMetadata();
    void filesHoldTheseBytes();
    void containerTakesBothFiles();
    void theOtherPlaceIsLeftAlone();
    void launchAndClose();
    void standardErrorStandsInFront();
    void anExitCodeMakesNoDifference();
    void outputIsTrimmed();
    void aZeroByteEndsTheOutput();
    void missingQuilletDoesNothing();
    void quilletThatCannotBeExecutedDoesNothing();
    void outputThatSaysFailedToStart();
    void outputThatSaysStillRunning();
    void timeOut();
    void unwritableFilesAreSkipped();
    void missingOsascriptStillCloses();
    void aPathWithQuotesBreaksTheCommand();

    void thePageStaysLiveDuringAGeneration();
    void callsDuringTheWait_data();
    void callsDuringTheWait();
    void quittingDuringTheWait_data();
    void quittingDuringTheWait();
    void endingLeavesNoQuilletBehind();

private:
    QByteArray html() const { return sandbox::readFile(sandbox->local("webwidgets/tmptemp.html")); }
    QByteArray macstart() const
    {
        return sandbox::readFile(sandbox->local("publauthors/macstart.xml"));
    }
    QByteArray expectedScript(const QString& htmlPath) const;
    bool nothingHappened() const;
    void setOutput(const QByteArray& output) const;
    void release() const { sandbox::writeFile(sandbox->inHome("release"), ""); }
    QWebView& view() const { return *application->mainWindow->webView(); }

    std::unique_ptr<ApplicationSandbox> sandbox;
    std::unique_ptr<Application> application;
};

void tst_TemplateGeneration::init()
{
    sandbox = std::make_unique<ApplicationSandbox>();
    const QString cif = sandbox->inHome("one.cif");
    QVERIFY(sandbox::writeFile(cif, "data_x\n"));
    application = std::make_unique<Application>();
    QCOMPARE(application->setCif(cif), cif);
}

void tst_TemplateGeneration::cleanup()
{
    application.reset();
    sandbox.reset();
}

QByteArray tst_TemplateGeneration::expectedScript(const QString& htmlPath) const
{
    return sandbox::launchScript(QCoreApplication::applicationDirPath(), htmlPath);
}

bool tst_TemplateGeneration::nothingHappened() const
{
    return sandbox->osascriptCalls().isEmpty() && macstart() == asInstalled && html().isEmpty() &&
           sandbox::readFile(sandbox->local("macscrlaunch")) == asInstalled &&
           application->mainWindow->isVisible();
}

// quillet prints exactly these bytes.
void tst_TemplateGeneration::setOutput(const QByteArray& output) const
{
    QVERIFY(sandbox::writeFile(sandbox->inHome("output"), output));
    sandbox->setQuillet(QStringLiteral("cat \"$HOME/output\""));
}

void tst_TemplateGeneration::quilletsCall_data()
{
    QTest::addColumn<QString>("jnl");
    QTest::addColumn<QString>("cat");
    QTest::addColumn<QString>("type");
    QTest::addColumn<QString>("words"); // CIF stands for the working copy
    QTest::newRow("crystallization communication") << "Journal Section F"
                                                   << "crystallization communications"
                                                   << ""
                                                   << "<-htmmo5> <CIF>";
    QTest::newRow("with capitals") << "Journal Section F"
                                   << "Crystallization Communications"
                                   << ""
                                   << "<-htmmo6> <CIF>";
    QTest::newRow("section D, scattering") << "Journal Section D"
                                           << "crystallization"
                                           << "sas"
                                           << "<-htmmo6> <CIF> <-sas>";
    QTest::newRow("section C") << "Journal Section C"
                               << "x"
                               << "sas"
                               << "<-htmPX> <CIF> <C> <qlettemplate_word.html>";
}

void tst_TemplateGeneration::quilletsCall()
{
    QFETCH(QString, jnl);
    QFETCH(QString, cat);
    QFETCH(QString, type);
    QFETCH(QString, words);
    application->createWordTemplate(QString(), jnl, cat, type);
    QCOMPARE(sandbox->quilletCalls(),
             QStringList({QCoreApplication::applicationDirPath() + QLatin1Char(' ') +
                          words.replace(QStringLiteral("CIF"), sandbox->local("tmpcif.cif"))}));
}

void tst_TemplateGeneration::journalsWithoutASectionDoNothing_data()
{
    QTest::addColumn<QString>("jnl");
    for (const char* jnl : {"vexaj", "Journal Section A", "Zorvane Review", "", "section  d"})
        QTest::newRow(*jnl ? jnl : "empty") << jnl;
}

void tst_TemplateGeneration::journalsWithoutASectionDoNothing()
{
    QFETCH(QString, jnl);
    application->createWordTemplate(QString(), jnl, QStringLiteral("x"), QString());
    QVERIFY(nothingHappened());
    QVERIFY(sandbox->quilletCalls().isEmpty());
}

void tst_TemplateGeneration::withoutACifThePathIsEmpty()
{
    application->workCifPath.clear();
    application->createWordTemplate(QString(), QStringLiteral("Section D"), QString());
    // An empty quoted word is no word at all.
    QCOMPARE(sandbox->quilletCalls(),
             QStringList({QCoreApplication::applicationDirPath() + QStringLiteral(" <-htmmo6>")}));
    QCOMPARE(html(), QByteArray("<p>article</p>"));
}

void tst_TemplateGeneration::wtemplateMakesNoDifference()
{
    application->createWordTemplate(QStringLiteral("/any/thing"), QStringLiteral("Section D"),
                                    QStringLiteral("x"));
    const QByteArray first = macstart() + html();
    application->createWordTemplate(QString(), QStringLiteral("Section D"), QStringLiteral("x"));
    QCOMPARE(macstart() + html(), first);
    QCOMPARE(sandbox->quilletCalls().at(0), sandbox->quilletCalls().at(1));
}

void tst_TemplateGeneration::metadata_data()
{
    QTest::addColumn<QString>("jnl");
    QTest::addColumn<QString>("cat");
    QTest::addColumn<QString>("type");
    QTest::addColumn<QByteArray>("xml");
    QTest::newRow("standard") << "Journal Section D"
                              << "Research Papers"
                              << "y"
                              << QByteArray(
                                     "Journal Section D</jnlname><jnlcategory>Research Papers"
                                     "</jnlcategory><jnlfield>y</jnlfield></vexa:publjnl>");
    QTest::newRow("sas is the field here")
        << "Journal Section D"
        << "crystallization"
        << "sas"
        << QByteArray("Journal Section D</jnlname><jnlcategory>crystallization"
                      "</jnlcategory><jnlfield>sas</jnlfield></vexa:publjnl>");
    QTest::newRow("communications")
        << "Journal Section F"
        << "research communications"
        << ""
        << QByteArray("Journal Section F</jnlname><jnlcategory>research communications"
                      "</jnlcategory><jnlfield></jnlfield></vexa:publjnl>");
    QTest::newRow("not the journal of communications")
        << "Journal Section F Letters"
        << "methods communications"
        << ""
        << QByteArray("Journal Section F Letters</jnlname><jnlcategory>methods communications"
                      "</jnlcategory><jnlfield></jnlfield></vexa:publjnl>");
    QTest::newRow("without field") << "Journal Section C"
                                   << "Research Papers"
                                   << "sas"
                                   << QByteArray("Journal Section C</jnlname><jnlcategory>"
                                                 "Research Papers</jnlcategory></vexa:publjnl>");
}

void tst_TemplateGeneration::metadata()
{
    QFETCH(QString, jnl);
    QFETCH(QString, cat);
    QFETCH(QString, type);
    QFETCH(QByteArray, xml);
    application->createWordTemplate(QString(), jnl, cat, type);
    QCOMPARE(macstart(), xmlOpening + xml);
}

void tst_TemplateGeneration::blocksGoToTheMetadata()
{
    const QByteArray authors = "<vexa:authors count=\"1\">\n<vexa:author>A &amp; B</vexa:author>\n"
                               "</vexa:authors>";
    const QByteArray addresses = "<vexa:addresses count=\"1\">\n\n  x\n</vexa:addresses>";
    setOutput("<p>one</p>\n" + addresses + "<p>two</p>" + authors + "\n<p>three</p>\n");
    application->createWordTemplate(QString(), QStringLiteral("Section B"), QStringLiteral("c"));
    QCOMPARE(macstart(), xmlOpening +
                             "Section B</jnlname><jnlcategory>c</jnlcategory></vexa:publjnl>" +
                             authors + addresses);
    QCOMPARE(html(), QByteArray("<p>one</p>\n<p>two</p>\n<p>three</p>"));
}

void tst_TemplateGeneration::filesHoldTheseBytes()
{
    // quillet's bytes are characters of the same code: written once for the article (so each byte
    // above 0x7F becomes two), twice for the metadata (so it becomes four).
    setOutput("<p>caf\xC3\xA9</p><vexa:authors a=\"1\">M\xC3\xBCller</vexa:authors>");
    application->createWordTemplate(QString(), QString::fromUtf8("Section D\xC3\xA9"),
                                    QStringLiteral("x & <y>"));
    QCOMPARE(html(), QByteArray("<p>caf\xC3\x83\xC2\xA9</p>"));
    QCOMPARE(macstart(), xmlOpening + "Section D\xC3\x83\xC2\xA9</jnlname><jnlcategory>x & <y>"
                                      "</jnlcategory><jnlfield></jnlfield></vexa:publjnl>"
                                      "<vexa:authors a=\"1\">M\xC3\x83\xC2\x83\xC3\x82\xC2\xBCller"
                                      "</vexa:authors>");
}

void tst_TemplateGeneration::containerTakesBothFiles()
{
    const QString container = sandbox->makeWordContainer();
    application->createWordTemplate(QString(), QStringLiteral("Section D"), QStringLiteral("x"));
    QCOMPARE(sandbox::readFile(container + "/vexatmptemp.html"), QByteArray("<p>article</p>"));
    QVERIFY(sandbox::readFile(container + "/macstart.xml").startsWith(xmlOpening));
    QCOMPARE(sandbox::readFile(sandbox->local("macscrlaunch")),
             expectedScript(container + "/vexatmptemp.html"));
    QCOMPARE(html(), QByteArray());
    QCOMPARE(macstart(), asInstalled);
}

void tst_TemplateGeneration::theOtherPlaceIsLeftAlone()
{
    application->createWordTemplate(QString(), QStringLiteral("Section D"), QStringLiteral("x"));
    const QByteArray before = macstart() + html();
    const QString container = sandbox->makeWordContainer();
    setOutput("<p>second</p>");
    application->createWordTemplate(QString(), QStringLiteral("Section D"), QStringLiteral("y"));
    QCOMPARE(macstart() + html(), before);
    QCOMPARE(sandbox::readFile(container + "/vexatmptemp.html"), QByteArray("<p>second</p>"));
}

void tst_TemplateGeneration::launchAndClose()
{
    const QPointer<webWidget> window(application->mainWindow);
    application->createWordTemplate(QString(), QStringLiteral("Section D"), QStringLiteral("x"));
    QVERIFY(window);
    QVERIFY(!window->isVisible());
    QCOMPARE(application->mainWindow, window.data());
    QVERIFY(sandbox->waitForOsascript());
    QVERIFY(sandbox->osascriptCalls().at(0).endsWith(
        QStringLiteral(" <") + sandbox->local("macscrlaunch") + QLatin1Char('>')));
    QCOMPARE(sandbox::readFile(sandbox->local("macscrlaunch")),
             expectedScript(sandbox->local("webwidgets/tmptemp.html")));
}

void tst_TemplateGeneration::standardErrorStandsInFront()
{
    sandbox->setQuillet(QStringLiteral("printf done; printf 'warning: ' >&2"));
    application->createWordTemplate(QString(), QStringLiteral("Section D"), QStringLiteral("x"));
    QCOMPARE(html(), QByteArray("warning: done"));
}

void tst_TemplateGeneration::anExitCodeMakesNoDifference()
{
    sandbox->setQuillet(QStringLiteral("echo 'quillet: x.cif:1:1: error: no' >&2; exit 1"));
    application->createWordTemplate(QString(), QStringLiteral("Section D"), QStringLiteral("x"));
    QCOMPARE(html(), QByteArray("quillet: x.cif:1:1: error: no"));
    QVERIFY(sandbox->waitForOsascript());
}

void tst_TemplateGeneration::outputIsTrimmed()
{
    setOutput("\n \t<p>a</p>\n\n<p>b</p>\r\n \n");
    application->createWordTemplate(QString(), QStringLiteral("Section D"), QStringLiteral("x"));
    QCOMPARE(html(), QByteArray("<p>a</p>\n\n<p>b</p>"));
}

void tst_TemplateGeneration::aZeroByteEndsTheOutput()
{
    setOutput(QByteArray("<p>a</p>\0<p>b</p>", 17));
    application->createWordTemplate(QString(), QStringLiteral("Section D"), QStringLiteral("x"));
    QCOMPARE(html(), QByteArray("<p>a</p>"));
}

void tst_TemplateGeneration::missingQuilletDoesNothing()
{
    QVERIFY(QFile::remove(sandbox->inApp("quillet")));
    application->createWordTemplate(QString(), QStringLiteral("Section D"), QStringLiteral("x"));
    QVERIFY(nothingHappened());
}

void tst_TemplateGeneration::quilletThatCannotBeExecutedDoesNothing()
{
    QVERIFY(QFile::setPermissions(sandbox->inApp("quillet"), QFile::ReadOwner));
    application->createWordTemplate(QString(), QStringLiteral("Section D"), QStringLiteral("x"));
    QVERIFY(nothingHappened());
}

void tst_TemplateGeneration::outputThatSaysFailedToStart()
{
    setOutput("FAILED_TO_START, it says");
    application->createWordTemplate(QString(), QStringLiteral("Section D"), QStringLiteral("x"));
    QVERIFY(nothingHappened());
    // With anything in front of it, it is an article like any other.
    setOutput("xFAILED_TO_START");
    application->createWordTemplate(QString(), QStringLiteral("Section D"), QStringLiteral("x"));
    QCOMPARE(html(), QByteArray("xFAILED_TO_START"));
}

void tst_TemplateGeneration::outputThatSaysStillRunning()
{
    setOutput(" STILL_RUNNING\n");
    QElapsedTimer clock;
    clock.start();
    application->createWordTemplate(QString(), QStringLiteral("Section D"), QStringLiteral("x"));
    QVERIFY(clock.elapsed() < 60000); // 180 passes, but without waiting
    QCOMPARE(html(), QByteArray("PROCESS TIMED OUT"));
}

void tst_TemplateGeneration::timeOut()
{
    QCOMPARE(Application::quilletPollLimit, 180);
    Application::quilletPollLimit = 3;
    procThread::limits.poll = 100;
    sandbox->setQuillet(QStringLiteral(
        "printf '<vexa:authors a=\"1\">x</vexa:authors>'; echo $$ >\"$HOME/quillet.pids\"; "
        "exec sleep 600"));
    application->createWordTemplate(QString(), QStringLiteral("Section D"), QStringLiteral("x"));
    QCOMPARE(html(), QByteArray("PROCESS TIMED OUT"));
    QCOMPARE(macstart(), xmlOpening + "Section D</jnlname><jnlcategory>x</jnlcategory>"
                                      "<jnlfield></jnlfield></vexa:publjnl>");
    QVERIFY(sandbox->waitForOsascript());
    QVERIFY(!application->mainWindow->isVisible());
    const int pid = sandbox::readFile(sandbox->inHome("quillet.pids")).trimmed().toInt();
    QVERIFY(pid > 0);
    QTRY_VERIFY(::kill(pid, 0) != 0);
}

void tst_TemplateGeneration::unwritableFilesAreSkipped()
{
    // Folders stand where the files should be; the launch script keeps what it held.
    QVERIFY(sandbox::writeFile(sandbox->local("webwidgets/tmptemp.html/x"), ""));
    QVERIFY(QFile::remove(sandbox->local("publauthors/macstart.xml")));
    QVERIFY(sandbox::writeFile(sandbox->local("publauthors/macstart.xml/x"), ""));
    application->createWordTemplate(QString(), QStringLiteral("Section D"), QStringLiteral("x"));
    QVERIFY(sandbox->waitForOsascript());
    QCOMPARE(sandbox::readFile(sandbox->local("macscrlaunch")),
             expectedScript(sandbox->local("webwidgets/tmptemp.html")));
    QVERIFY(!application->mainWindow->isVisible());
}

void tst_TemplateGeneration::missingOsascriptStillCloses()
{
    QVERIFY(QFile::remove(sandbox->inApp("osascript")));
    application->createWordTemplate(QString(), QStringLiteral("Section D"), QStringLiteral("x"));
    QVERIFY(!application->mainWindow->isVisible());
    QCOMPARE(html(), QByteArray("<p>article</p>"));
}

void tst_TemplateGeneration::aPathWithQuotesBreaksTheCommand()
{
    application->workCifPath = QStringLiteral("/a\"b c/tmp.cif");
    application->createWordTemplate(QString(), QStringLiteral("Section D"), QStringLiteral("x"));
    QVERIFY(sandbox->quilletCalls().at(0).endsWith(QStringLiteral(" <-htmmo6> </ab> <c/tmp.cif>")));
}

void tst_TemplateGeneration::thePageStaysLiveDuringAGeneration()
{
    procThread::limits.poll = 50;
    sandbox->setQuillet(waitingScript());
    // The page's own timer counts. The engine does not nest timers, so a real click must begin it.
    webpages::load(
        view(),
        webpages::writePage(
            "live.html",
            "<button id='go' style='width:200px;height:60px' onclick='go()'>Go</button><script>"
            "var ticks = 0, during = 0; setInterval(function () { ++ticks; }, 10);"
            "function go() { var before = ticks; Quillet.createWordTemplate('', 'Section D', 'x');"
            " during = ticks - before; }</script>"));
    QVERIFY(realinput::showAndActivate(*application->mainWindow));
    QPointer<QWebView> page(&view());
    QTimer watch;
    int seen = 0;
    connect(&watch, &QTimer::timeout, this, [&] {
        seen = webpages::evaluate(*page, "ticks").toInt();
        if (!sandbox->quilletCalls().isEmpty() && seen > 20)
            release();
    });
    watch.start(20);
    QVERIFY(realinput::click(webpages::screenPositionOf(*page, "#go")));
    QTRY_VERIFY(!application->mainWindow->isVisible());
    QVERIFY(webpages::evaluate(*page, "during").toInt() > 2);
}

void tst_TemplateGeneration::callsDuringTheWait_data()
{
    QTest::addColumn<QString>("call");
    QTest::addColumn<int>("quillets");
    QTest::addColumn<int>("launches");
    QTest::newRow("set a CIF") << "Quillet.setCif(other)" << 1 << 1;
    QTest::newRow("save") << "Quillet.saveCif()" << 1 << 1;
    QTest::newRow("fetch") << "Quillet.getPdbCif('1abc')" << 1 << 1;
    QTest::newRow("a ready-made template")
        << "Quillet.openWordTemplate('', 'Section D', 'x')" << 1 << 2;
    QTest::newRow("the same again") << "Quillet.createWordTemplate('', 'Section D', 'x')" << 2 << 2;
    QTest::newRow("another route") << "Quillet.createWordTemplate('', 'Section C', 'x')" << 2 << 2;
    QTest::newRow("nothing to do") << "Quillet.createWordTemplate('', 'vexaj', 'x')" << 1 << 1;
    QTest::newRow("reload") << "location.reload()" << 1 << 1;
    QTest::newRow("close") << "QuilLet.close()" << 1 << 1;
    QTest::newRow("throw") << "nosuchfunction()" << 1 << 1;
}

// The page makes the call from its own timer, which a generation begun by a real click lets run.
void tst_TemplateGeneration::callsDuringTheWait()
{
    QFETCH(QString, call);
    QFETCH(int, quillets);
    QFETCH(int, launches);
    qputenv("http_proxy", "http://127.0.0.1:1"); // nobody answers there
    procThread::limits.poll = 50;
    sandbox->setQuillet(waitingScript());
    const QString other = sandbox->inHome("other.cif");
    QVERIFY(sandbox::writeFile(other, "data_other\n"));
    webpages::load(
        view(),
        webpages::writePage(
            "during.html",
            QStringLiteral(
                "<button id='go' style='width:200px;height:60px' onclick='go()'>Go</button><script>"
                "var other = '%1', done = false; function go() { setTimeout(function () { done = "
                "true; %2; }, 100);"
                " Quillet.createWordTemplate('', 'Section D', 'x'); }</script>")
                .arg(other, call)));
    QVERIFY(realinput::showAndActivate(*application->mainWindow));
    QPointer<QWebView> page(&view());
    QTimer watch;
    connect(&watch, &QTimer::timeout, this, [&] {
        if (webpages::evaluate(*page, "done === false").toBool())
            return;
        if (sandbox->quilletCalls().size() == quillets)
            release();
    });
    watch.start(20);
    QVERIFY(realinput::click(webpages::screenPositionOf(*page, "#go")));
    QVERIFY(sandbox->waitForOsascript(launches));
    watch.stop();
    QCOMPARE(sandbox->quilletCalls().size(), quillets);
    QTRY_VERIFY(!application->mainWindow->isVisible());
    if (call.contains(QLatin1String("setCif")))
        QCOMPARE(application->userCifPath, other);
}

void tst_TemplateGeneration::quittingDuringTheWait_data()
{
    QTest::addColumn<QString>("how");
    QTest::newRow("quit() by a click") << "click";
    QTest::newRow("quit() by a key") << "key";
    QTest::newRow("quit() by the page's timer") << "timer";
    QTest::newRow("quit() twice") << "twice";
    QTest::newRow("the close button") << "close";
    QTest::newRow("quit() within a second generation") << "second";
}

// The program goes on until quillet has ended, hands over to the word processor, and ends.
void tst_TemplateGeneration::quittingDuringTheWait()
{
    QFETCH(QString, how);
    procThread::limits.poll = 50;
    sandbox->setQuillet(waitingScript());
    webpages::load(
        view(),
        webpages::writePage(
            "leave.html",
            QStringLiteral(
                "<button id='go' style='width:200px;height:60px' onclick='go()'>Go</button>"
                "<button id='leave' style='width:200px;height:60px' "
                "onclick='Quillet.quit()'>Leave</button><script>"
                "function go() { %1 Quillet.createWordTemplate('', 'Section D', 'x'); }</script>")
                .arg(how == "timer"
                         ? QStringLiteral("setTimeout(function () { Quillet.quit(); }, 100);")
                     : how == "twice"
                         ? QStringLiteral(
                               "setTimeout(function () { Quillet.quit(); Quillet.quit(); }, 100);")
                     : how == "second"
                         ? QStringLiteral("setTimeout(function () { Quillet.createWordTemplate('', "
                                          "'Section C', 'x'); }, 100);")
                         : QString())));
    QVERIFY(realinput::showAndActivate(*application->mainWindow));
    QWebView* page = &view();
    const QPointer<webWidget> window(application->mainWindow);
    const QPoint leave = webpages::screenPositionOf(*page, "#leave");

    int steps = 0;
    QTimer watch;
    connect(&watch, &QTimer::timeout, this, [&] {
        const int needed = how == "second" ? 2 : 1;
        if (sandbox->quilletCalls().size() < needed || steps > 0)
            return;
        ++steps;
        if (how == "click" || how == "second")
            QProcess::startDetached("xdotool", {"mousemove", QString::number(leave.x()),
                                                QString::number(leave.y()), "click", "1"});
        else if (how == "key")
            QProcess::startDetached("xdotool", {"key", "Tab", "key", "Return"});
        else if (how == "close")
            window->close();
    });
    watch.start(20);
    QTimer gone;
    connect(&gone, &QTimer::timeout, this, [&] {
        if (how == "close" ? !window->isVisible() : !application->mainWindow) {
            gone.stop();
            release();
        }
    });
    gone.start(20);
    QTimer::singleShot(60000, qApp, [] { QCoreApplication::exit(99); });
    QTimer::singleShot(0, this,
                       [&] { realinput::click(webpages::screenPositionOf(*page, "#go")); });
    QCOMPARE(QCoreApplication::exec(), 0);

    QCOMPARE(bool(window), how == "close");
    QVERIFY(sandbox->waitForOsascript(how == "second" ? 2 : 1));
    const QList<QByteArray> pids =
        sandbox::readFile(sandbox->inHome("quillet.pids")).trimmed().split('\n');
    for (const QByteArray& pid : pids)
        QTRY_VERIFY(::kill(pid.toInt(), 0) != 0);
}

void tst_TemplateGeneration::endingLeavesNoQuilletBehind()
{
    // A runner that nobody waits for any more, as after a time-out.
    procThread* runner = new procThread(application.get());
    runner->startrun("/bin/sh", {"-c", "echo $$ >\"$HOME/quillet.pids\"; exec sleep 600"}, "/",
                     QString());
    QTRY_VERIFY(sandbox::readFile(sandbox->inHome("quillet.pids")).endsWith('\n'));
    application.reset();
    const int pid = sandbox::readFile(sandbox->inHome("quillet.pids")).trimmed().toInt();
    QTRY_VERIFY(::kill(pid, 0) != 0);
}

VEXA_TEST_MAIN_EACH_CASE_ALONE(tst_TemplateGeneration)
#include "tst_templategeneration.moc"
