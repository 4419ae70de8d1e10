// The controller: slot table, start-up, script bridge, and the ways in which the program ends.
#include "app/application.h"
#include "tests/support/applicationsandbox.h"
#include "tests/support/eachcasealone.h"
#include "tests/support/realinput.h"
#include "tests/support/webpages.h"
#include "widgets/webwidget.h"

#include <QAccessible>
#include <QApplication>
#include <QDialog>
#include <QDir>
#include <QFileOpenEvent>
#include <QMetaMethod>
#include <QPointer>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>
#include <QWebFrame>
#include <QWebPage>
#include <QWebView>

namespace
{
QVariant evaluate(const Application& application, const QString& script)
{
    return webpages::evaluate(*application.mainWindow->webView(), script);
}

// Waits until the page of a new application is there with its objects.
bool waitForPage(const Application& application)
{
    return QTest::qWaitFor([&] {
        return evaluate(application, QStringLiteral("typeof Quillet")).toString() ==
               QLatin1String("object");
    });
}

// Runs the event loop until the program ends by itself; false when it does not.
bool runToTheEnd(int seconds = 60)
{
    QTimer limit;
    QObject::connect(&limit, &QTimer::timeout, qApp, [] { QCoreApplication::exit(99); });
    limit.start(seconds * 1000);
    return QCoreApplication::exec() == 0;
}

// Every function below is called from the event loop, after the page has come.
template<typename Function>
void whenPageIsThere(Application& application, Function function)
{
    auto* poll = new QTimer(&application);
    QObject::connect(poll, &QTimer::timeout, &application, [&application, poll, function] {
        if (evaluate(application, QStringLiteral("typeof Quillet")).toString() !=
            QLatin1String("object"))
            return;
        poll->stop();
        // The window manager has placed the window by then.
        QVERIFY(realinput::showAndActivate(*application.mainWindow));
        function();
    });
    poll->start(20);
}
} // namespace

class tst_Application : public QObject
{
    Q_OBJECT

private slots:
    void init() { sandbox = std::make_unique<ApplicationSandbox>(); }
    void cleanup() { sandbox.reset(); }

    void slotTable();
    void onlyThePageSlotsAreCallable();
    void shortFormsHaveAnEmptyType();

    void firstStart();
    void secondStart();
    void thePageRemembers();
    void screenReadersLearnWhatTheWindowIs();
    void aFileToBeginWithIsGivenToThePageOnce();
    void theFileOfASecondStartIsTakenOver();
    void aFileThatTheFinderOpensIsGivenToThePage();
    void incompleteCopyFallsBackToTheProgramsResources();
    void nothingAnywhereStillStarts();
    void setupAppletRunsWithoutItsMarker();
    void setupAppletDoesNotRunWithItsMarker();
    void staticFolderOperations();

    void reportIsGivenAfterEveryLoad();
    void aReportThatBreaksTheScriptIsSwallowed();
    void noReportNoCall();
    void windowObjectComesFirst();
    void directChildFramesReachTheController();
    void aFailedLoadPublishesToo();
    void thePageCannotDeleteTheController();

    void quitEndsTheProgram_data();
    void quitEndsTheProgram();
    void quitTwiceFromCode();
    void quitWithinTheSetupReport();
    void slotsAfterQuitDoNotCrash();
    void closingTheWindowEndsTheProgram();
    void quitAfterALaunch();

private:
    std::unique_ptr<ApplicationSandbox> sandbox;
};

void tst_Application::slotTable()
{
    const QMetaObject& meta = Application::staticMetaObject;
    QCOMPARE(meta.className(), "Application");
    QCOMPARE(meta.superClass(), &QObject::staticMetaObject);
    QCOMPARE(meta.propertyCount(), QObject::staticMetaObject.propertyCount());
    QCOMPARE(meta.enumeratorCount(), QObject::staticMetaObject.enumeratorCount());
    QStringList table;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
        const QMetaMethod method = meta.method(i);
        QCOMPARE(method.methodType(), QMetaMethod::Slot);
        const char* access = method.access() == QMetaMethod::Public ? "public" : "private";
        table << QStringLiteral("%1 %2 %3 (%4)")
                     .arg(QLatin1String(access), QLatin1String(method.typeName()),
                          QLatin1String(method.methodSignature()),
                          QLatin1String(method.parameterNames().join(',')));
    }
    QCOMPARE(table.join(QLatin1Char('\n')),
             QStringLiteral(
                 "public void quit() ()\n"
                 "public void openWordTemplate(QString,QString,QString,QString) "
                 "(wtemplate,jnl,cat,type)\n"
                 "public void openWordTemplate(QString,QString,QString) (wtemplate,jnl,cat)\n"
                 "public void createWordTemplate(QString,QString,QString,QString) "
                 "(wtemplate,jnl,cat,type)\n"
                 "public void createWordTemplate(QString,QString,QString) (wtemplate,jnl,cat)\n"
                 "public QString setCif(QString) (ciffile)\n"
                 "public void getPdbCif(QString) (pdbcode)\n"
                 "public bool saveCif() ()\n"
                 "private void pageLoaded(bool) (OK)\n"
                 "private void pdbReplyFinished(QNetworkReply*) (pdbreply)"));
}

void tst_Application::onlyThePageSlotsAreCallable()
{
    Application application;
    QVERIFY(waitForPage(application));
    for (const char* name :
         {"quit", "openWordTemplate", "createWordTemplate", "setCif", "getPdbCif", "saveCif"})
        QCOMPARE(evaluate(application, QStringLiteral("typeof Quillet.%1").arg(QLatin1String(name)))
                     .toString(),
                 QStringLiteral("function"));
    for (const char* name : {"pageLoaded", "pdbReplyFinished"})
        QCOMPARE(evaluate(application, QStringLiteral("typeof Quillet.%1").arg(QLatin1String(name)))
                     .toString(),
                 QStringLiteral("undefined"));
    application.quit();
    QVERIFY(runToTheEnd());
}

void tst_Application::shortFormsHaveAnEmptyType()
{
    QVERIFY(sandbox::writeFile(sandbox->inApp("resources/webwidgets/d_x.html"), "x"));
    Application application;
    application.createWordTemplate(QString(), QStringLiteral("Section D"), QStringLiteral("x"));
    const QByteArray generated = sandbox::readFile(sandbox->local("publauthors/macstart.xml"));
    application.createWordTemplate(QString(), QStringLiteral("Section D"), QStringLiteral("x"),
                                   QString());
    QCOMPARE(sandbox::readFile(sandbox->local("publauthors/macstart.xml")), generated);
    QVERIFY(generated.contains("<jnlfield></jnlfield>"));
    QCOMPARE(sandbox->quilletCalls().at(0), sandbox->quilletCalls().at(1));

    application.openWordTemplate(QString(), QStringLiteral("Section D"), QStringLiteral("x"));
    const QByteArray script = sandbox::readFile(sandbox->local("macscrlaunch"));
    application.openWordTemplate(QString(), QStringLiteral("Section D"), QStringLiteral("x"),
                                 QString());
    QCOMPARE(sandbox::readFile(sandbox->local("macscrlaunch")), script);
    QVERIFY(script.contains("/d_x.html\""));
}

void tst_Application::firstStart()
{
    Application application;
    QVERIFY(application.mainWindow->isVisible());
    QCOMPARE(application.mainWindow->size(), QSize(500, 450));
    QCOMPARE(application.mainWindow->windowTitle(), QStringLiteral("Vexa Word"));
    QCOMPARE(int(application.mainWindow->windowFlags()), 0x801);
    QVERIFY(!application.mainWindow->parentWidget());
    QVERIFY(!application.parent());

    QCOMPARE(application.resourcesPath, sandbox->local());
    QCOMPARE(application.appDirPath, QCoreApplication::applicationDirPath());
    const QString report =
        QStringLiteral("OK: created  local resources folder: ") + sandbox->local() +
        QStringLiteral("<br />OK: created local Word2016 AppleScript resources: ") +
        sandbox->inHome("Library/Application Scripts/com.microsoft.Word/Vexa.scpt");
    QCOMPARE(application.setupInfo, report);
    QCOMPARE(application.workCifPath, QString());
    QCOMPARE(application.userCifPath, QString());
    QCOMPARE(application.lastCifFolder, QString());
    QCOMPARE(application.isMmCif, false);

    QVERIFY(waitForPage(application));
    QTRY_COMPARE(evaluate(application, QStringLiteral("setups.length")).toInt(), 1);
    QCOMPARE(evaluate(application, QStringLiteral("setups[0]")).toString(), report);
    QCOMPARE(evaluate(application, QStringLiteral("location.href")).toString(),
             QUrl(QStringLiteral("file:///") + sandbox->local("webwidgets/templates.html"))
                 .toString(QUrl::FullyEncoded));
}

void tst_Application::secondStart()
{
    {
        Application first;
        QVERIFY(waitForPage(first));
        first.quit();
        QVERIFY(runToTheEnd());
    }
    Application second;
    QCOMPARE(second.setupInfo, QString());
    QCOMPARE(second.resourcesPath, sandbox->local());
}

void tst_Application::thePageRemembers()
{
    {
        Application first;
        QVERIFY(waitForPage(first));
        QCOMPARE(evaluate(first, "document.cookie").toString(), QString());
        evaluate(first, "document.cookie = 'choice=d; max-age=100000'; Quillet.quit();");
        QVERIFY(runToTheEnd());
    }
    Application second;
    QVERIFY(waitForPage(second));
    QCOMPARE(evaluate(second, "document.cookie").toString(), QStringLiteral("choice=d"));
    // Beside the resources, whose next version it must outlive.
    QVERIFY(sandbox::readFile(sandbox->inHome("Library/Application Support/VexaWord/page.cookies"))
                .contains("choice=d"));
}

void tst_Application::screenReadersLearnWhatTheWindowIs()
{
    Application application;
    const QWidget* widgets[] = {application.mainWindow, application.mainWindow->webView()};
    for (const QWidget* widget : widgets) {
        QAccessibleInterface* interface =
            QAccessible::queryAccessibleInterface(const_cast<QWidget*>(widget));
        QVERIFY(interface);
        QVERIFY(!interface->text(QAccessible::Name).isEmpty());
        QVERIFY(!interface->text(QAccessible::Description).isEmpty());
    }
}

void tst_Application::aFileToBeginWithIsGivenToThePageOnce()
{
    sandbox->setPage(QStringLiteral("<script>var dropped = []; "
                                    "function fileDropped(path) { dropped.push(path); }</script>"));
    Application application;
    application.openFile(QStringLiteral("/tmp/an \"odd\" \\ näme.cif"));
    QVERIFY(waitForPage(application));
    QTRY_COMPARE(evaluate(application, QStringLiteral("dropped.join('|')")).toString(),
                 QStringLiteral("/tmp/an \"odd\" \\ näme.cif"));

    QSignalSpy loaded(application.mainWindow->webView()->page(), SIGNAL(loadFinished(bool)));
    evaluate(application, QStringLiteral("location.reload()"));
    QVERIFY(loaded.wait());
    QCOMPARE(evaluate(application, QStringLiteral("dropped.length")).toInt(), 0);

    application.openFile(QString());
    QCOMPARE(evaluate(application, QStringLiteral("dropped.length")).toInt(), 0);
    application.quit();
    application.openFile(QStringLiteral("/tmp/late.cif"));
}

void tst_Application::theFileOfASecondStartIsTakenOver()
{
    sandbox->setPage(QStringLiteral("<script>var dropped = []; "
                                    "function fileDropped(path) { dropped.push(path); }</script>"));
    Application application;
    QVERIFY(waitForPage(application));
    application.mainWindow->showMinimized();
    QVERIFY(application.takeOverFrom(QString()));
    QVERIFY(!application.mainWindow->isMinimized());

    // Not while the page waits for a dialog.
    QDialog dialog;
    dialog.setModal(true);
    dialog.show();
    QVERIFY(QTest::qWaitForWindowExposed(&dialog));
    QVERIFY(application.takeOverFrom(QStringLiteral("/tmp/second.cif")));
    QCOMPARE(evaluate(application, QStringLiteral("dropped.length")).toInt(), 0);
    dialog.close();
    QTRY_COMPARE(evaluate(application, QStringLiteral("dropped.join('|')")).toString(),
                 QStringLiteral("/tmp/second.cif"));

    application.quit();
    QVERIFY(!application.takeOverFrom(QStringLiteral("/tmp/late.cif")));
}

void tst_Application::aFileThatTheFinderOpensIsGivenToThePage()
{
    sandbox->setPage(QStringLiteral("<script>var dropped = []; "
                                    "function fileDropped(path) { dropped.push(path); }</script>"));
    Application application;
    QFileOpenEvent early(QStringLiteral("/tmp/early.cif"));
    QCoreApplication::sendEvent(qApp, &early);
    QVERIFY(waitForPage(application));
    QTRY_COMPARE(evaluate(application, QStringLiteral("dropped.join('|')")).toString(),
                 QStringLiteral("/tmp/early.cif"));
    QFileOpenEvent later(QStringLiteral("/tmp/later.cif"));
    QCoreApplication::sendEvent(qApp, &later);
    QCOMPARE(evaluate(application, QStringLiteral("dropped.join('|')")).toString(),
             QStringLiteral("/tmp/early.cif|/tmp/later.cif"));
}

void tst_Application::incompleteCopyFallsBackToTheProgramsResources()
{
    QVERIFY(QDir().mkpath(sandbox->local()));
    QVERIFY(sandbox::writeFile(sandbox->local("macscrlaunch"), "marker"));
    Application application;
    QCOMPARE(application.resourcesPath, sandbox->inApp("resources"));
    QVERIFY(waitForPage(application));
    // The copy had its marker, but no script for Word.
    QCOMPARE(
        application.setupInfo,
        QStringLiteral("<br />ERROR: unable to create local Word2016 AppleScript resources: ") +
            sandbox->inHome("Library/Application Scripts/com.microsoft.Word/Vexa.scpt"));
}

void tst_Application::nothingAnywhereStillStarts()
{
    QVERIFY(QDir(sandbox->inApp("resources")).removeRecursively());
    Application application;
    QCOMPARE(application.resourcesPath, sandbox->inApp("resources"));
    QCOMPARE(application.setupInfo.count(QStringLiteral("ERROR:")), 2);
    QVERIFY(application.mainWindow->isVisible());
    QVERIFY(waitForPage(application)); // an empty document still gets the objects
}

void tst_Application::setupAppletRunsWithoutItsMarker()
{
    QVERIFY(QFile::remove(sandbox->inApp("setup.txt")));
    const QString applet = sandbox->inApp("VexaSetup.app/Contents/MacOS/applet");
    QVERIFY(sandbox::writeFile(applet, "#!/bin/sh\necho \"$#\" >>\"$HOME/applet.calls\"\n"));
    QVERIFY(QFile::setPermissions(applet, QFile::ReadOwner | QFile::ExeOwner));
    for (int start = 1; start <= 2; ++start) {
        Application application;
        QTRY_COMPARE(sandbox::readFile(sandbox->inHome("applet.calls")),
                     QByteArray("0\n").repeated(start));
    }
    QVERIFY(!QFile::exists(sandbox->inApp("setup.txt")));
}

void tst_Application::setupAppletDoesNotRunWithItsMarker()
{
    const QString applet = sandbox->inApp("VexaSetup.app/Contents/MacOS/applet");
    QVERIFY(sandbox::writeFile(applet, "#!/bin/sh\n: >\"$HOME/applet.calls\"\n"));
    QVERIFY(QFile::setPermissions(applet, QFile::ReadOwner | QFile::ExeOwner));
    Application application;
    // A detached program started now would be seen well before another one started later.
    application.openWordTemplate(QString(), QStringLiteral("Section D"), QString());
    QVERIFY(sandbox->waitForOsascript());
    QVERIFY(!QFile::exists(sandbox->inHome("applet.calls")));
}

void tst_Application::staticFolderOperations()
{
    QVERIFY(Application::cpDir(sandbox->inApp("resources"), sandbox->inHome("copy")));
    QVERIFY(QFile::exists(sandbox->inHome("copy/webwidgets/templates.html")));
    QVERIFY(Application::rmDir(sandbox->inHome("copy")));
    QVERIFY(!QFile::exists(sandbox->inHome("copy")));
}

void tst_Application::reportIsGivenAfterEveryLoad()
{
    Application application;
    QVERIFY(waitForPage(application));
    for (int reload = 0; reload < 2; ++reload) {
        QSignalSpy loaded(application.mainWindow->webView()->page(), SIGNAL(loadFinished(bool)));
        evaluate(application, QStringLiteral("location.reload()"));
        QVERIFY(loaded.wait());
        QCOMPARE(evaluate(application, QStringLiteral("setups.join('|')")).toString(),
                 application.setupInfo);
        QCOMPARE(evaluate(application, QStringLiteral("typeof Quillet.saveCif")).toString(),
                 QStringLiteral("function"));
    }
}

void tst_Application::aReportThatBreaksTheScriptIsSwallowed()
{
    Application application;
    QVERIFY(waitForPage(application));
    application.setupInfo = QStringLiteral("ERROR: /home/\"quoted\"");
    QSignalSpy loaded(application.mainWindow->webView()->page(), SIGNAL(loadFinished(bool)));
    evaluate(application, QStringLiteral("location.reload()"));
    QVERIFY(loaded.wait());
    QCOMPARE(evaluate(application, QStringLiteral("setups.length")).toInt(), 0);
}

void tst_Application::noReportNoCall()
{
    {
        Application first;
    }
    Application application;
    QVERIFY(waitForPage(application));
    QCOMPARE(evaluate(application, QStringLiteral("setups.length")).toInt(), 0);
}

void tst_Application::windowObjectComesFirst()
{
    // The page notes in the report's call which objects it has.
    sandbox->setPage(QStringLiteral("<script>var seen; showsetupinfo = function () {"
                                    " seen = [typeof QuilLet.winResize, typeof Quillet.setCif,"
                                    " QuilLet === Quillet].join(' '); };</script>"));
    Application application;
    QVERIFY(waitForPage(application));
    QCOMPARE(evaluate(application, QStringLiteral("seen")).toString(),
             QStringLiteral("function function false"));
}

void tst_Application::directChildFramesReachTheController()
{
    QVERIFY(sandbox::writeFile(sandbox->inApp("resources/webwidgets/inner.html"), "<p>inner"));
    QVERIFY(sandbox::writeFile(sandbox->inApp("resources/webwidgets/middle.html"),
                               "<iframe src='inner.html'></iframe>"));
    sandbox->setPage(
        QStringLiteral("<iframe src='inner.html'></iframe><iframe src='middle.html'></iframe>"));
    Application application;
    QVERIFY(waitForPage(application));
    const QString type = QStringLiteral("typeof Quillet");
    const auto frames = application.mainWindow->webView()->page()->mainFrame()->childFrames();
    QCOMPARE(frames.count(), 2);
    for (QWebFrame* frame : frames)
        QCOMPARE(frame->evaluateJavaScript(type).toString(), QStringLiteral("object"));
    QCOMPARE(frames.at(1)->childFrames().at(0)->evaluateJavaScript(type).toString(),
             QStringLiteral("undefined"));
}

void tst_Application::aFailedLoadPublishesToo()
{
    Application application;
    QVERIFY(waitForPage(application));
    QVERIFY(
        webpages::load(*application.mainWindow->webView(), QStringLiteral("/no/such/page.html")));
    QCOMPARE(evaluate(application, QStringLiteral("typeof Quillet + typeof QuilLet")).toString(),
             QStringLiteral("objectobject"));
}

void tst_Application::thePageCannotDeleteTheController()
{
    Application application;
    QVERIFY(waitForPage(application));
    evaluate(application, QStringLiteral("Quillet.deleteLater()"));
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QCOMPARE(evaluate(application, QStringLiteral("Quillet.saveCif()")).toBool(), false);
}

void tst_Application::quitEndsTheProgram_data()
{
    QTest::addColumn<QString>("body");
    QTest::addColumn<QString>("input"); // what the user does
    const QString button = QStringLiteral(
        "<button id='leave' style='width:200px;height:60px' autofocus "
        "onclick='leave()'>Leave</button>"
        "<script>var after = 0; function leave() { Quillet.quit(); %1 after = 1; }</script>");
    QTest::newRow("click") << button.arg(QString()) << "click";
    QTest::newRow("key") << button.arg(QString()) << "key";
    QTest::newRow("timer") << button.arg(QString()) << "timer";
    QTest::newRow("click, twice in the script") << button.arg("Quillet.quit();") << "click";
    QTest::newRow("key, twice in the script") << button.arg("Quillet.quit();") << "key";
    QTest::newRow("timer, twice in the script") << button.arg("Quillet.quit();") << "timer";
    QTest::newRow("click, the window closed before")
        << button.arg(QString()).replace("Quillet.quit();", "QuilLet.close(); Quillet.quit();")
        << "click";
    QTest::newRow("mouse press") << button.arg(QString()).replace("onclick", "onmousedown")
                                 << "click";
    QTest::newRow("key press")
        << "<input id='leave' autofocus onkeydown='Quillet.quit()' style='width:200px'>"
        << "key";
    QTest::newRow("script of a link") << "<a id='leave' href='javascript:Quillet.quit()'>Leave</a>"
                                      << "click";
    QTest::newRow("within a child frame")
        << "<iframe id='leave' style='width:300px;height:200px' srcdoc=\"<body style='margin:0'"
           " onmousedown='Quillet.quit()'><div style='height:200px'></div></body>\"></iframe>"
        << "click";
}

void tst_Application::quitEndsTheProgram()
{
    QFETCH(QString, body);
    QFETCH(QString, input);
    sandbox->setPage(body);
    Application application;
    const QPointer<webWidget> window(application.mainWindow);
    QPointer<QWebView> view(application.mainWindow->webView());
    bool endedByTheSlot = false;
    connect(window, &QObject::destroyed, this, [&] { endedByTheSlot = true; });

    whenPageIsThere(application, [&] {
        if (input == QLatin1String("timer")) {
            evaluate(application, QStringLiteral("setTimeout(leave, 0)"));
            return;
        }
        if (input == QLatin1String("click"))
            realinput::click(webpages::screenPositionOf(*view, QStringLiteral("#leave")));
        else
            realinput::key(QStringLiteral("Return"));
    });
    QVERIFY(runToTheEnd());
    QVERIFY(endedByTheSlot);
    QVERIFY(!application.mainWindow);
    QVERIFY(!window);
    QVERIFY(QApplication::topLevelWidgets().isEmpty() || view->isHidden());
}

void tst_Application::quitTwiceFromCode()
{
    Application application;
    QVERIFY(waitForPage(application));
    const QPointer<webWidget> window(application.mainWindow);
    application.quit();
    QVERIFY(!window); // gone when the slot returns
    QVERIFY(!application.mainWindow);
    application.quit();
    QVERIFY(runToTheEnd());
}

void tst_Application::quitWithinTheSetupReport()
{
    sandbox->setPage(
        QStringLiteral("<script>showsetupinfo = function () { Quillet.quit(); };</script>"));
    Application application;
    QVERIFY(runToTheEnd());
    QVERIFY(!application.mainWindow);
}

void tst_Application::slotsAfterQuitDoNotCrash()
{
    const QString cif = sandbox->inHome("x.cif");
    QVERIFY(sandbox::writeFile(cif, "data_x\n"));
    sandbox->setPage(
        QStringLiteral(
            "<button id='leave' style='width:200px;height:60px' onclick='leave()'>Leave</button>"
            "<script>function leave() { Quillet.quit(); Quillet.setCif('%1');"
            " Quillet.saveCif(); Quillet.getPdbCif('1abc');"
            " Quillet.openWordTemplate('', 'Section D', 'x');"
            " Quillet.createWordTemplate('', 'Section C', 'x'); Quillet.quit(); }</script>")
            .arg(cif));
    qputenv("http_proxy", "http://127.0.0.1:1"); // nobody answers there
    Application application;
    QWebView* view = application.mainWindow->webView();
    whenPageIsThere(application, [&] {
        realinput::click(webpages::screenPositionOf(*view, QStringLiteral("#leave")));
    });
    QVERIFY(runToTheEnd());
    QVERIFY(sandbox->waitForOsascript(2));
    QCOMPARE(application.userCifPath, cif);
    qunsetenv("http_proxy");
}

void tst_Application::closingTheWindowEndsTheProgram()
{
    Application application;
    const QPointer<webWidget> window(application.mainWindow);
    whenPageIsThere(application, [&] { window->close(); });
    QVERIFY(runToTheEnd());
    QVERIFY(window);
    QCOMPARE(application.mainWindow, window.data());
    application.quit(); // a late call is harmless too
    QVERIFY(!window);
    QVERIFY(runToTheEnd());
}

void tst_Application::quitAfterALaunch()
{
    sandbox->setPage(
        QStringLiteral("<button id='go' style='width:200px;height:60px' onclick='go()'>Go</button>"
                       "<script>function go() { Quillet.createWordTemplate('', 'Section D', 'x');"
                       " Quillet.quit(); }</script>"));
    Application application;
    QWebView* view = application.mainWindow->webView();
    whenPageIsThere(application, [&] {
        realinput::click(webpages::screenPositionOf(*view, QStringLiteral("#go")));
    });
    QVERIFY(runToTheEnd());
    QVERIFY(!application.mainWindow);
    QVERIFY(sandbox->waitForOsascript());
}

VEXA_TEST_MAIN_EACH_CASE_ALONE(tst_Application)
#include "tst_application.moc"
