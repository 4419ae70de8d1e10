// Start-up and end: resources, window, page, script bridge.
#include "app/application.h"
#include "app/pagememory.h"
#include "app/resourcefolder.h"
#include "process/procthread.h"
#include "widgets/webwidget.h"

#include <QApplication>
#include <QDir>
#include <QEvent>
#include <QFile>
#include <QFileOpenEvent>
#include <QNetworkAccessManager>
#include <QProcess>
#include <QTimer>
#include <QUrl>
#include <QWebFrame>
#include <QWebPage>
#include <QWebView>

#include <utility>

Application::Application(QObject* parent) : QObject(parent)
{
    const QString applicationFolder = QCoreApplication::applicationDirPath();
    const QString ownResources = applicationFolder + QStringLiteral("/resources");

    const InstalledResources installed = installResources(QDir::homePath(), applicationFolder);
    setupInfo = installed.report;
    resourcesPath = installed.folder;
    if (!QFile::exists(resourcesPath + QStringLiteral("/webwidgets/templates.html")))
        resourcesPath = ownResources;
    appDirPath = applicationFolder;

    // The set-up applet exists in the Mac's bundle only; it is started until it has left its
    // marker.
    if (!QFile::exists(applicationFolder + QStringLiteral("/setup.txt")))
        QProcess::startDetached(
            applicationFolder + QStringLiteral("/VexaSetup.app/Contents/MacOS/applet"), {});

    makeMainWindow();
    loadPage();
    mainWindow->setVisible(true);
    QCoreApplication::instance()->installEventFilter(this);
}

Application::~Application()
{
    // A thread must not be deleted while it runs, and no child shall outlive the program.
    const auto runners = findChildren<procThread*>();
    for (procThread* runner : runners) {
        runner->stoprun();
        runner->wait();
    }
}

bool Application::cpDir(const QString& src, const QString& dst)
{
    return ::cpDir(src, dst);
}

bool Application::rmDir(const QString& path)
{
    return ::rmDir(path);
}

void Application::makeMainWindow()
{
    mainWindow = new webWidget(QStringLiteral("transparent opacity shadow"), nullptr);
    mainWindow->setWindowFlags(Qt::Window | Qt::FramelessWindowHint);
    mainWindow->resize(500, 450);
    mainWindow->setWindowTitle(QStringLiteral("Vexa Word"));
    // All that a screen reader ever gets: the engine tells it nothing of the page.
    mainWindow->setAccessibleName(QStringLiteral("Vexa Word"));
    mainWindow->setAccessibleDescription(
        QStringLiteral("Starts the manuscript of a crystallographic article from a CIF"));
    mainWindow->webView()->setAccessibleName(QStringLiteral("Structure, journal, manuscript"));
    mainWindow->webView()->setAccessibleDescription(
        QStringLiteral("Three steps, worked with Tab and Return; F1 explains them"));
    // Beside the resources, not among them: a new version of these keeps what was remembered.
    mainWindow->webView()->page()->networkAccessManager()->setCookieJar(new pageMemory(
        QDir::homePath() + QStringLiteral("/Library/Application Support/VexaWord/page.cookies")));
    // After the window's own connection to this signal, so that the page has "QuilLet" first.
    connect(mainWindow->webView()->page(), SIGNAL(loadFinished(bool)), this,
            SLOT(pageLoaded(bool)));
}

void Application::loadPage()
{
    // The name under which the program is started chooses the page, never an argument.
    const QString programPath = QCoreApplication::arguments().value(0);
    const QString page = programPath.contains(QLatin1String("compat"))
                             ? QStringLiteral("/webwidgets/templates_compat.html")
                             : QStringLiteral("/webwidgets/templates.html");
    mainWindow->webView()->load(QUrl(QStringLiteral("file:///") + resourcesPath + page));
}

void Application::pageLoaded(bool)
{
    if (!mainWindow)
        return;
    const QString name = QStringLiteral("Quillet");
    QWebFrame* mainFrame = mainWindow->webView()->page()->mainFrame();
    mainFrame->addToJavaScriptWindowObject(name, this);
    const QList<QWebFrame*> frames = mainFrame->childFrames();
    for (QWebFrame* frame : frames)
        frame->addToJavaScriptWindowObject(name, this);
    if (!setupInfo.isEmpty())
        mainFrame->evaluateJavaScript(QStringLiteral("showsetupinfo(\"") + setupInfo +
                                      QStringLiteral("\");"));
    isPageThere = true;
    handOverFile();
}

void Application::openFile(const QString& path)
{
    fileToOpen = path;
    if (isPageThere)
        handOverFile();
}

bool Application::takeOverFrom(const QString& path)
{
    if (!mainWindow)
        return false;
    mainWindow->setWindowState(mainWindow->windowState() & ~Qt::WindowMinimized);
    mainWindow->raise();
    mainWindow->activateWindow();
    if (!path.isEmpty())
        openFile(path);
    return true;
}

void Application::handOverFile()
{
    // The page has called for a dialog, and waits for its answer.
    if (QApplication::activeModalWidget()) {
        QTimer::singleShot(300, this, &Application::handOverFile);
        return;
    }
    if (mainWindow && !fileToOpen.isEmpty())
        mainWindow->nameDroppedFile(std::exchange(fileToOpen, QString()));
}

bool Application::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::FileOpen)
        openFile(static_cast<QFileOpenEvent*>(event)->file());
    return QObject::eventFilter(watched, event);
}

void Application::evaluateInPage(const QString& script)
{
    if (mainWindow)
        mainWindow->webView()->page()->mainFrame()->evaluateJavaScript(script);
}

void Application::quit()
{
    // Null first: the page may hear of its window going away, and call again.
    if (webWidget* window = std::exchange(mainWindow, nullptr)) {
        // The call may come from an event handler of the page, through which the view must live.
        retiredViews.emplace_back(window->releaseWebView());
        delete window;
    }
    QTimer::singleShot(0, QCoreApplication::instance(), SLOT(quit()));
}

bool Application::event(QEvent* event)
{
    if (event->type() == QEvent::DeferredDelete)
        return true;
    return QObject::event(event);
}
