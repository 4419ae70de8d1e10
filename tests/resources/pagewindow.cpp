#include "pagewindow.h"

#include "app/pagememory.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QLabel>
#include <QLinearGradient>
#include <QNetworkAccessManager>
#include <QNetworkRequest>
#include <QPainter>
#include <QProcess>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>
#include <QVBoxLayout>
#include <QWebElement>
#include <QWebFrame>
#include <QWebView>

void FakeProgram::record(const char* slot, const QStringList& arguments)
{
    calls << QString("%1(%2)").arg(slot, arguments.join(", "));
}

void FakeProgram::quit()
{
    record("quit", {});
}

void FakeProgram::openWordTemplate(const QString& wtemplate, const QString& jnl, const QString& cat,
                                   const QString& type)
{
    record("openWordTemplate", {wtemplate, jnl, cat, type});
}

void FakeProgram::createWordTemplate(const QString& wtemplate, const QString& jnl,
                                     const QString& cat, const QString& type)
{
    record("createWordTemplate", {wtemplate, jnl, cat, type});
    if (onCreateWordTemplate)
        onCreateWordTemplate();
}

QString FakeProgram::setCif(const QString& ciffile)
{
    record("setCif", {ciffile});
    return onSetCif ? onSetCif() : QString();
}

void FakeProgram::getPdbCif(const QString& pdbcode)
{
    record("getPdbCif", {pdbcode});
}

bool FakeProgram::saveCif()
{
    record("saveCif", {});
    return onSaveCif && onSaveCif();
}

void WatchedPage::javaScriptConsoleMessage(const QString& message, int line, const QString& source)
{
    complaints << QString("%1:%2: %3").arg(source).arg(line).arg(message);
}

void WatchedPage::javaScriptAlert(QWebFrame*, const QString& message)
{
    complaints << "alert: " + message;
}

bool WatchedPage::acceptNavigationRequest(QWebFrame* frame, const QNetworkRequest& request,
                                          NavigationType type)
{
    // The first load of the page itself is of no click or form.
    if (type != NavigationTypeOther)
        complaints << "navigation to " + request.url().toString();
    return QWebPage::acceptNavigationRequest(frame, request, type);
}

namespace
{
// A copy of the resources for this process: beside the page lies the working copy.
QString resourcesCopy()
{
    static const QTemporaryDir folder;
    static const int copied = QProcess::execute(
        "cp", {"-R", VEXA_BUNDLE_DIR "/resources/.", folder.filePath("resources")});
    return copied == 0 ? folder.filePath("resources") : QString();
}

const char workingCopyName[] = "/tmpcif.cif";
} // namespace

void PageWindow::setWorkingCopy(const QByteArray& text)
{
    QFile file(resourcesCopy() + workingCopyName);
    if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size())
        qFatal("the working copy cannot be written");
}

void PageWindow::rememberIn(const QString& file)
{
    webPage->networkAccessManager()->setCookieJar(new pageMemory(file));
}

PageWindow::PageWindow(QWidget* parent)
    : QFrame(parent),
      webPage(new WatchedPage(this)),
      webView(new QWebView)
{
    setAttribute(Qt::WA_TranslucentBackground);
    setWindowFlags(Qt::Window | Qt::FramelessWindowHint);
    setFrameShape(QFrame::Panel);
    setWindowTitle("Vexa Word");

    auto* close = new QLabel;
    close->setPixmap(QPixmap(":/images/close.png"));
    close->setFixedSize(close->pixmap(Qt::ReturnByValue).size());
    auto* titleRow = new QHBoxLayout;
    auto* dragHandle = new QLabel;
    dragHandle->setFixedHeight(16);
    dragHandle->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    titleRow->addWidget(dragHandle);
    titleRow->addWidget(close);
    auto* resizeHandle = new QLabel;
    resizeHandle->setFixedHeight(10);
    auto* rows = new QVBoxLayout(this);
    rows->addLayout(titleRow);
    rows->addWidget(webView);
    rows->addWidget(resizeHandle);

    webView->setPage(webPage);
    QPalette palette = webView->palette();
    palette.setBrush(QPalette::Base, Qt::transparent);
    webPage->setPalette(palette);
    webView->setAttribute(Qt::WA_OpaquePaintEvent, false);
    resize(500, 450);
    QFile::remove(resourcesCopy() + workingCopyName);
}

void PageWindow::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    painter.fillRect(rect(), Qt::transparent);
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
    painter.setPen(Qt::NoPen);
    QLinearGradient shadow(0, 0, width(), height()), frame(0, 0, 0, height());
    for (QLinearGradient* gradient : {&shadow, &frame}) {
        gradient->setColorAt(0, Qt::white);
        gradient->setColorAt(1, Qt::lightGray);
    }
    painter.setBrush(shadow);
    painter.setOpacity(0.5);
    painter.drawRoundedRect(5, 5, width() - 5, height() - 5, 5, 5);
    painter.setBrush(frame);
    painter.setPen(Qt::darkGray);
    painter.setOpacity(0.9);
    painter.drawRoundedRect(0, 0, width() - 5, height() - 5, 5, 5);
}

bool PageWindow::load(const QString& name, bool publishNow)
{
    QSignalSpy loaded(webView, &QWebView::loadFinished);
    webView->load(QUrl::fromLocalFile(resourcesCopy() + "/webwidgets/" + name));
    show();
    if (!loaded.wait(10000) || !loaded.first().first().toBool())
        return false;
    // Asked for again and again: a window manager that starts after the window was shown does not
    // activate it by itself.
    if (!QTest::qWaitFor([this] {
            if (!isActiveWindow())
                activateWindow();
            return isActiveWindow();
        }))
        return false;
    webView->setFocus();
    if (!publishNow)
        return true;
    publish();
    return QTest::qWaitFor([this] { return isEnabled("choose-cif"); });
}

void PageWindow::publish()
{
    webPage->mainFrame()->addToJavaScriptWindowObject("Quillet", &program);
}

void PageWindow::hurryTimers(int factor)
{
    const QString script = QString("(function (original) {"
                                   "    window.setInterval = function (callback, period) {"
                                   "        return original.call(window, callback, period / %1);"
                                   "    };"
                                   "}(window.setInterval));")
                               .arg(factor);
    connect(webPage->mainFrame(), &QWebFrame::javaScriptWindowObjectCleared, this,
            [this, script] { webPage->mainFrame()->evaluateJavaScript(script); });
}

QWebElement PageWindow::element(const QString& id) const
{
    const QWebElement found = webPage->mainFrame()->findFirstElement("#" + id);
    if (found.isNull())
        qFatal("the page has no element \"%s\"", qPrintable(id));
    return found;
}

// Asked of the script engine, which brings the layout up to date first; QWebElement does not.
QRect PageWindow::box(const QString& id) const
{
    const QVariantMap box = element(id).evaluateJavaScript("this.getBoundingClientRect()").toMap();
    return QRectF(box["left"].toDouble(), box["top"].toDouble(), box["width"].toDouble(),
                  box["height"].toDouble())
        .toRect();
}

bool PageWindow::isVisible(const QString& id) const
{
    return !box(id).isEmpty();
}

bool PageWindow::isEnabled(const QString& id) const
{
    return !element(id).evaluateJavaScript("this.disabled").toBool();
}

QString PageWindow::text(const QString& id) const
{
    return element(id).evaluateJavaScript("this.textContent").toString();
}

QString PageWindow::value(const QString& id) const
{
    return element(id).evaluateJavaScript("this.value").toString();
}

QString PageWindow::focused() const
{
    return webPage->mainFrame()->evaluateJavaScript("document.activeElement.id").toString();
}

QStringList PageWindow::tabOrder()
{
    QStringList order{focused()};
    for (int i = 0; i < 30; ++i) {
        press(Qt::Key_Tab);
        if (focused() == order.first())
            break;
        order << focused();
    }
    return order;
}

void PageWindow::scrollTo(const QString& id)
{
    element(id).evaluateJavaScript("this.scrollIntoViewIfNeeded()");
}

void PageWindow::click(const QString& id)
{
    scrollTo(id);
    const QPoint position = box(id).center();
    QTest::mouseMove(webView, position);
    QTest::mouseClick(webView, Qt::LeftButton, Qt::NoModifier, position);
}

// By script: QWebElement::setFocus() leaves a text field without a caret.
void PageWindow::focus(const QString& id)
{
    element(id).evaluateJavaScript("this.focus()");
}

void PageWindow::press(int key, Qt::KeyboardModifiers modifiers)
{
    QTest::keyClick(webView, static_cast<Qt::Key>(key), modifiers);
}

void PageWindow::type(const QString& text)
{
    QTest::keyClicks(webView, text);
}

void PageWindow::choose(const QString& id, const QString& option)
{
    focus(id);
    press(Qt::Key_Home);
    for (int i = 0; i < 30 && !element(id)
                                   .evaluateJavaScript("this.options[this.selectedIndex].text")
                                   .toString()
                                   .startsWith(option);
         ++i)
        press(Qt::Key_Down);
}

void PageWindow::drop(const QString& path)
{
    const QByteArray list = QJsonDocument(QJsonArray{path}).toJson(QJsonDocument::Compact);
    evaluate("fileDropped(" + QString::fromUtf8(list.mid(1, list.size() - 2)) + ");");
}

QVariant PageWindow::evaluate(const QString& script)
{
    return webPage->mainFrame()->evaluateJavaScript(script);
}

QImage PageWindow::photograph()
{
    // Turns of the event loop, for styles that are still to be applied.
    QTest::qWait(50);
    QImage picture(size() * devicePixelRatio(), QImage::Format_RGB32);
    picture.setDevicePixelRatio(devicePixelRatio());
    picture.fill(QColor(0x5b, 0x7f, 0x8c));
    QPainter painter(&picture);
    painter.drawPixmap(0, 0, grab());
    painter.end();
    return picture;
}
