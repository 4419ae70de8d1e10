// webWidget: buttons, painting, edges, the object published to the page.
#include "tests/support/realinput.h"
#include "tests/support/webpages.h"
#include "widgets/draghandle.h"
#include "widgets/resizehandle.h"
#include "widgets/webwidget.h"
#include "widgets/webwidgettoolbutton.h"

#include <QApplication>
#include <QCursor>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QImage>
#include <QLayout>
#include <QMimeData>
#include <QPointer>
#include <QScreen>
#include <QSignalSpy>
#include <QTest>
#include <QWebFrame>
#include <QWebPage>
#include <QWebView>
#include <QX11Info>

#include <memory>

namespace
{
// Which image buttons are to be seen, left to right: info, minimise, maximise, close.
QString buttonsOf(const webWidget& window)
{
    QString visible;
    const QLayout* row = window.layout()->itemAt(0)->layout();
    const char* names[] = {"", "info ", "min ", "max ", "close "};
    for (int i = 1; i < row->count(); ++i)
        if (!row->itemAt(i)->widget()->isHidden())
            visible += QLatin1String(names[i]);
    return visible.trimmed();
}

webwidgetToolButton* button(const webWidget& window, int index)
{
    return qobject_cast<webwidgetToolButton*>(
        window.layout()->itemAt(0)->layout()->itemAt(index)->widget());
}

std::unique_ptr<webWidget> makeWindow(const QString& options)
{
    auto window = std::make_unique<webWidget>(options, nullptr);
    window->setGeometry(150, 120, 400, 300);
    return window;
}

// A colour with premultiplied alpha, 0 to 1, for computing what translucent layers add up to.
struct Layer {
    double red, green, blue, alpha;

    static Layer grey(double value, double opacity)
    {
        return {value * opacity, value * opacity, value * opacity, opacity};
    }
    Layer over(const Layer& below) const
    {
        const double rest = 1 - alpha;
        return {red + below.red * rest, green + below.green * rest, blue + below.blue * rest,
                alpha + below.alpha * rest};
    }
};

// From white to light grey (192), t from 0 to 1.
double gradientValue(double t)
{
    return 1 - t * (1 - 192 / 255.0);
}

const Layer nothing{0, 0, 0, 0};
const double darkGrey = 128 / 255.0;

QByteArray difference(const QImage& image, int x, int y, const Layer& expected)
{
    const QRgb seen = image.pixel(x, y); // premultiplied
    const double channels[4][2] = {{qRed(seen) / 255.0, expected.red},
                                   {qGreen(seen) / 255.0, expected.green},
                                   {qBlue(seen) / 255.0, expected.blue},
                                   {qAlpha(seen) / 255.0, expected.alpha}};
    for (const auto& channel : channels)
        if (std::abs(channel[0] - channel[1]) > 2.5 / 255)
            return QStringLiteral("at (%1, %2): %3 instead of r %4 a %5")
                .arg(x)
                .arg(y)
                .arg(seen, 8, 16)
                .arg(expected.red * 255)
                .arg(expected.alpha * 255)
                .toLatin1();
    return QByteArray();
}
} // namespace

#define COMPARE_PIXEL(image, x, y, expected)                                                       \
    do {                                                                                           \
        const QByteArray text = difference(image, x, y, expected);                                 \
        QVERIFY2(text.isEmpty(), text.constData());                                                \
    } while (false)

class tst_WebWidget : public QObject
{
    Q_OBJECT

private slots:
    void metaObjectDeclaresSignalsThenSlots();
    void aNewWindowIsHiddenFramelessAndOnTop();
    void optionsDecideTheButtons_data();
    void optionsDecideTheButtons();
    void buttonsHaveTheirToolTips();
    void rowsAreTitleThenViewThenGrip();
    void painting_data();
    void painting();
    void whatIsTransparentIsNeverBlack();
    void aPictureOfAHiddenWindowIsTransparentToo();
    void thePageShowsOverTheGradient();
    void edgesShowTheirCursor_data();
    void edgesShowTheirCursor();
    void realDragsOfTheEdges_data();
    void realDragsOfTheEdges();
    void rightButtonDoesNotResize();
    void titleRowAndGripActOnTheWindow();
    void closingEmitsClosed();
    void theCloseButtonCloses();
    void theInfoButtonAsks();
    void winResizeTogglesMaximised();
    void windowButtonsMinimiseAndMaximise();
    void thePageReachesTheWindow();
    void everyLoadPublishesAgain();
    void directChildFramesReachTheWindow();
    void aFailedLoadPublishesToo();
    void thePageCannotDeleteTheWindow();
    void theViewCanOutliveTheWindow();
    void droppedFileIsNamedToThePage_data();
    void droppedFileIsNamedToThePage();
    void aPageWithoutTheFunctionGetsNoDrops();
    void pageIsToldOfWhatIsDraggedOver();
    void aDropMayEndTheWindow();
    void onlyLocalPagesAreShown_data();
    void onlyLocalPagesAreShown();
};

void tst_WebWidget::metaObjectDeclaresSignalsThenSlots()
{
    const QMetaObject& meta = webWidget::staticMetaObject;
    QCOMPARE(meta.className(), "webWidget");
    QStringList own;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i)
        own << QString::fromLatin1(meta.method(i).methodSignature());
    QCOMPARE(own, QStringList({QStringLiteral("closed()"), QStringLiteral("infoRequested()"),
                               QStringLiteral("pageLoaded(bool)"), QStringLiteral("winResize()")}));
}

void tst_WebWidget::aNewWindowIsHiddenFramelessAndOnTop()
{
    webWidget window(QString(), nullptr);
    QVERIFY(window.isHidden());
    QCOMPARE(window.windowFlags(), Qt::Window | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint);
    QVERIFY(window.testAttribute(Qt::WA_TranslucentBackground));
    QVERIFY(window.hasMouseTracking());
    QCOMPARE(window.frameShape(), QFrame::Panel);
    QVERIFY(window.webView()->settings()->testAttribute(QWebSettings::JavascriptEnabled));
    for (auto group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled})
        QCOMPARE(window.webView()->page()->palette().brush(group, QPalette::Base),
                 QBrush(Qt::transparent));
}

void tst_WebWidget::optionsDecideTheButtons_data()
{
    QTest::addColumn<QString>("options");
    QTest::addColumn<QString>("buttons");
    QTest::newRow("none") << ""
                          << "close";
    QTest::newRow("main window") << "transparent opacity shadow"
                                 << "close";
    QTest::newRow("info") << "infobutton"
                          << "info close";
    QTest::newRow("window buttons") << "winbuttons"
                                    << "min max close";
    QTest::newRow("both, run together") << "winbuttonsinfobutton"
                                        << "info min max close";
    QTest::newRow("no buttons") << "nobuttons"
                                << "";
    QTest::newRow("no buttons wins") << "winbuttons nobuttons"
                                     << "";
    QTest::newRow("no buttons leaves the info button") << "nobuttons infobutton winbuttons"
                                                       << "info";
    QTest::newRow("case matters") << "InfoButton WINBUTTONS NoButtons"
                                  << "close";
}

void tst_WebWidget::optionsDecideTheButtons()
{
    QFETCH(QString, options);
    QFETCH(QString, buttons);
    QCOMPARE(buttonsOf(webWidget(options, nullptr)), buttons);
}

void tst_WebWidget::buttonsHaveTheirToolTips()
{
    webWidget window(QString(), nullptr);
    QCOMPARE(button(window, 1)->toolTip(), QStringLiteral("Help"));
    QCOMPARE(button(window, 2)->toolTip(), QString());
    QCOMPARE(button(window, 3)->toolTip(), QString());
    QCOMPARE(button(window, 4)->toolTip(), QStringLiteral("Close"));
}

void tst_WebWidget::rowsAreTitleThenViewThenGrip()
{
    auto window = makeWindow(QString());
    QVERIFY(realinput::showAndActivate(*window));
    auto* mover =
        dynamic_cast<dragHandle*>(window->layout()->itemAt(0)->layout()->itemAt(0)->widget());
    auto* grip = dynamic_cast<resizeHandle*>(window->layout()->itemAt(2)->widget());
    QVERIFY(mover && grip);
    QCOMPARE(window->layout()->itemAt(1)->widget(), window->webView());
    QVERIFY(mover->geometry().bottom() < window->webView()->y());
    QVERIFY(window->webView()->geometry().bottom() < grip->y());
    QVERIFY(mover->width() > window->width() / 2);
}

void tst_WebWidget::painting_data()
{
    QTest::addColumn<QString>("options");
    for (const char* options :
         {"", "transparent", "opacity", "shadow", "transparent opacity shadow",
          "transparent opacity shadow winbuttons", "transparent opacity shadow nobuttons",
          "transparent opacity shadow infobutton", "opacity shadow"})
        QTest::newRow(*options ? options : "none") << options;
}

void tst_WebWidget::painting()
{
    QFETCH(QString, options);
    auto window = makeWindow(options);
    QVERIFY(realinput::showAndActivate(*window));
    const QImage image =
        window->grab().toImage().convertToFormat(QImage::Format_ARGB32_Premultiplied);
    const int w = window->width(), h = window->height();
    QCOMPARE(image.size(), QSize(w, h));

    const double frameOpacity = options.contains(QStringLiteral("opacity")) ? 0.9 : 1.0;
    const bool hasShadow = options.contains(QStringLiteral("shadow"));
    // The gradients' parameters at the centre of a pixel.
    const auto shadow = [&](int x, int y) {
        const double along = ((x + 0.5) * w + (y + 0.5) * h) / (double(w) * w + double(h) * h);
        return hasShadow ? Layer::grey(gradientValue(along), 0.5) : nothing;
    };
    const auto frame = [&](int y) {
        return Layer::grey(gradientValue((y + 0.5) / h), frameOpacity);
    };

    // Left of where the shadow begins the frame is alone; further in it lies over the shadow.
    for (int y : {10, h / 2, h - 12}) {
        COMPARE_PIXEL(image, 3, y, frame(y));
        COMPARE_PIXEL(image, 7, y, frame(y).over(shadow(7, y)));
        COMPARE_PIXEL(image, w - 8, y, frame(y).over(shadow(w - 8, y)));
    }
    // The outline lies over the fill on the left and at the top, beside it on the right and at the
    // bottom; beyond that only the shadow shows.
    const Layer outline = Layer::grey(darkGrey, frameOpacity);
    COMPARE_PIXEL(image, 0, h / 2, outline.over(frame(h / 2)));
    COMPARE_PIXEL(image, w / 2, 0, outline.over(frame(0)));
    COMPARE_PIXEL(image, w - 5, h / 2, outline.over(shadow(w - 5, h / 2)));
    COMPARE_PIXEL(image, w / 2, h - 5, outline.over(shadow(w / 2, h - 5)));
    COMPARE_PIXEL(image, w - 2, h / 2, shadow(w - 2, h / 2));
    COMPARE_PIXEL(image, w / 2, h - 2, shadow(w / 2, h - 2));
    // Corners are rounded by 5 pixels, the shadow begins 5 pixels in.
    COMPARE_PIXEL(image, 0, 0, nothing);
    COMPARE_PIXEL(image, 1, 0, nothing);
    COMPARE_PIXEL(image, 0, 1, nothing);
    COMPARE_PIXEL(image, w - 1, 2, nothing);
    COMPARE_PIXEL(image, 2, h - 1, nothing);
    COMPARE_PIXEL(image, w - 1, h - 1, nothing);

    // Under the page: the gradient, or a white panel narrower than the view by 5 pixels.
    const QRect view = window->webView()->geometry();
    const int middle = view.center().y();
    const auto gradients = [&](int x) { return frame(middle).over(shadow(x, middle)); };
    if (options.contains(QStringLiteral("transparent"))) {
        COMPARE_PIXEL(image, view.center().x(), middle, gradients(view.center().x()));
    } else {
        const double opacity = options.contains(QStringLiteral("opacity")) ? 0.8 : frameOpacity;
        const Layer panel = Layer::grey(1.0, opacity);
        const Layer panelOutline = Layer::grey(darkGrey, opacity);
        COMPARE_PIXEL(image, view.center().x(), middle, panel.over(gradients(view.center().x())));
        COMPARE_PIXEL(image, view.x(), middle, panelOutline.over(panel).over(gradients(view.x())));
        COMPARE_PIXEL(image, view.right() - 1, middle, gradients(view.right() - 1));
    }
}

void tst_WebWidget::whatIsTransparentIsNeverBlack()
{
    const bool hasCompositor = qEnvironmentVariableIsSet("VEXA_COMPOSITOR");
    QTRY_COMPARE(QX11Info::isCompositingManagerRunning(), hasCompositor);
    QWidget desktop(nullptr, Qt::Window | Qt::FramelessWindowHint);
    desktop.setPalette(Qt::green);
    desktop.setGeometry(100, 70, 600, 400);
    QVERIFY(realinput::showAndActivate(desktop));
    auto window = makeWindow(QStringLiteral("transparent opacity shadow"));
    QVERIFY(realinput::showAndActivate(*window));
    const auto seenAt = [&window](int x, int y) {
        const QPoint place = window->pos() + QPoint(x, y);
        return QGuiApplication::primaryScreen()
            ->grabWindow(0, place.x(), place.y(), 1, 1)
            .toImage()
            .pixelColor(0, 0)
            .name();
    };
    const QString ground = QColor(hasCompositor ? Qt::green : Qt::lightGray).name();
    const int w = window->width(), h = window->height();
    for (const QPoint& corner : {QPoint(w - 1, 0), QPoint(w - 5, 0), QPoint(0, h - 1)})
        QTRY_COMPARE(seenAt(corner.x(), corner.y()), ground);
    // White to light grey, half of it, over the ground.
    const QColor shadow(seenAt(w - 2, h / 2));
    QVERIFY2(hasCompositor ? shadow.green() > shadow.red() + 100 : shadow.red() > 192,
             qPrintable(shadow.name()));
}

void tst_WebWidget::aPictureOfAHiddenWindowIsTransparentToo()
{
    auto window = makeWindow(QStringLiteral("transparent opacity shadow"));
    const QImage image = window->grab().toImage();
    QCOMPARE(image.pixelColor(image.width() - 1, 0).alpha(), 0);
    QVERIFY(image.pixelColor(image.width() / 2, 10).alpha() > 200);
}

void tst_WebWidget::thePageShowsOverTheGradient()
{
    auto window = makeWindow(QStringLiteral("transparent opacity shadow"));
    QVERIFY(webpages::load(
        *window->webView(),
        webpages::writePage(QStringLiteral("half.html"),
                            QStringLiteral("<body style='margin:0'><div style='background:#f00;"
                                           "height:40px'></div></body>"))));
    QVERIFY(realinput::showAndActivate(*window));
    const QImage image = window->grab().toImage();
    const QRect view = window->webView()->geometry();
    QCOMPARE(image.pixelColor(view.center().x(), view.y() + 10), QColor(Qt::red));
    // The rest of the page is transparent: the grey of the frame, with its opacity.
    const QColor below = image.pixelColor(view.center().x(), view.y() + 100);
    QVERIFY(below.alpha() < 255);
    QCOMPARE(below.red(), below.green());
}

void tst_WebWidget::edgesShowTheirCursor_data()
{
    QTest::addColumn<QPoint>("position");
    QTest::addColumn<int>("cursor");
    const int w = 400, h = 300;
    QTest::newRow("5 pixels from the right edge")
        << QPoint(w - 1 - 5, 150) << int(Qt::SizeHorCursor);
    QTest::newRow("6 pixels from the right edge") << QPoint(w - 1 - 6, 150) << int(Qt::ArrowCursor);
    QTest::newRow("right edge") << QPoint(w - 1, 150) << int(Qt::SizeHorCursor);
    QTest::newRow("5 pixels from the left edge") << QPoint(5, 150) << int(Qt::SizeHorCursor);
    QTest::newRow("6 pixels from the left edge") << QPoint(6, 150) << int(Qt::ArrowCursor);
    QTest::newRow("5 pixels from the bottom") << QPoint(200, h - 1 - 5) << int(Qt::SizeVerCursor);
    QTest::newRow("6 pixels from the bottom") << QPoint(200, h - 1 - 6) << int(Qt::ArrowCursor);
    QTest::newRow("bottom left") << QPoint(2, h - 3) << int(Qt::SizeBDiagCursor);
    QTest::newRow("bottom right") << QPoint(w - 3, h - 3) << int(Qt::SizeFDiagCursor);
    QTest::newRow("top") << QPoint(200, 0) << int(Qt::ArrowCursor);
    QTest::newRow("top left counts as left") << QPoint(0, 0) << int(Qt::SizeHorCursor);
}

void tst_WebWidget::edgesShowTheirCursor()
{
    QFETCH(QPoint, position);
    QFETCH(int, cursor);
    auto window = makeWindow(QString());
    QVERIFY(realinput::showAndActivate(*window));
    realinput::sendMove(*window, position);
    QCOMPARE(int(window->cursor().shape()), cursor);
}

void tst_WebWidget::realDragsOfTheEdges_data()
{
    QTest::addColumn<QPoint>("grabbed");
    QTest::addColumn<QRect>("change"); // of left, top, right, bottom as x, y, width, height
    const int w = 400, h = 300;
    const QPoint way(34, 26);
    QTest::newRow("left") << QPoint(2, 150) << QRect(way.x(), 0, 0, 0);
    QTest::newRow("right") << QPoint(w - 3, 150) << QRect(0, 0, way.x(), 0);
    QTest::newRow("bottom") << QPoint(200, h - 3) << QRect(0, 0, 0, way.y());
    QTest::newRow("bottom left") << QPoint(2, h - 3) << QRect(way.x(), 0, 0, way.y());
    QTest::newRow("bottom right") << QPoint(w - 3, h - 3) << QRect(0, 0, way.x(), way.y());
    QTest::newRow("inside the margin, no edge") << QPoint(200, 6) << QRect(0, 0, 0, 0);
}

void tst_WebWidget::realDragsOfTheEdges()
{
    QFETCH(QPoint, grabbed);
    QFETCH(QRect, change);
    auto window = makeWindow(QStringLiteral("shadow"));
    QVERIFY(realinput::showAndActivate(*window));
    QRect expected = window->geometry();
    const QPoint from = window->mapToGlobal(grabbed);
    QVERIFY(realinput::moveTo(window->mapToGlobal(QPoint(200, 6))));
    QVERIFY(realinput::drag(from, from + QPoint(34, 26)));
    expected.adjust(change.x(), change.y(), change.width(), change.height());
    QTRY_COMPARE(window->geometry(), expected);
}

void tst_WebWidget::rightButtonDoesNotResize()
{
    auto window = makeWindow(QString());
    QVERIFY(realinput::showAndActivate(*window));
    const QRect before = window->geometry();
    const QPoint from = window->mapToGlobal(QPoint(397, 150));
    QVERIFY(realinput::drag(from, from + QPoint(30, 0), 3));
    QCOMPARE(window->geometry(), before);
}

void tst_WebWidget::titleRowAndGripActOnTheWindow()
{
    auto window = makeWindow(QString());
    QVERIFY(realinput::showAndActivate(*window));
    const QWidget* mover = window->layout()->itemAt(0)->layout()->itemAt(0)->widget();
    QPoint from = mover->mapToGlobal(mover->rect().center());
    QVERIFY(realinput::drag(from, from + QPoint(25, 15)));
    QTRY_COMPARE(window->geometry(), QRect(175, 135, 400, 300));
    const QWidget* grip = window->layout()->itemAt(2)->widget();
    from = grip->mapToGlobal(grip->rect().center());
    QVERIFY(realinput::drag(from, from + QPoint(30, 20)));
    QTRY_COMPARE(window->geometry(), QRect(175, 135, 430, 320));
}

void tst_WebWidget::closingEmitsClosed()
{
    auto window = makeWindow(QString());
    QSignalSpy closed(window.get(), &webWidget::closed);
    window->show();
    QVERIFY(window->close());
    QCOMPARE(closed.count(), 1);
    QVERIFY(window->isHidden());
}

void tst_WebWidget::theCloseButtonCloses()
{
    auto window = makeWindow(QString());
    QSignalSpy closed(window.get(), &webWidget::closed);
    window->show();
    QTest::mouseRelease(button(*window, 4), Qt::LeftButton);
    QCOMPARE(closed.count(), 1);
    QVERIFY(window->isHidden());
}

void tst_WebWidget::theInfoButtonAsks()
{
    auto window = makeWindow(QStringLiteral("infobutton"));
    QSignalSpy asked(window.get(), &webWidget::infoRequested);
    QTest::mouseRelease(button(*window, 1), Qt::LeftButton);
    QCOMPARE(asked.count(), 1);
}

void tst_WebWidget::winResizeTogglesMaximised()
{
    auto window = makeWindow(QString());
    QVERIFY(realinput::showAndActivate(*window));
    window->winResize();
    QTRY_VERIFY(window->isMaximized());
    window->winResize();
    QTRY_VERIFY(!window->isMaximized());
    QTRY_COMPARE(window->size(), QSize(400, 300));
}

void tst_WebWidget::windowButtonsMinimiseAndMaximise()
{
    auto window = makeWindow(QStringLiteral("winbuttons"));
    QVERIFY(realinput::showAndActivate(*window));
    QTest::mouseRelease(button(*window, 3), Qt::LeftButton);
    QTRY_VERIFY(window->isMaximized());
    QTest::mouseRelease(button(*window, 3), Qt::LeftButton);
    QTRY_VERIFY(!window->isMaximized());
    QTest::mouseRelease(button(*window, 2), Qt::LeftButton);
    QTRY_VERIFY(window->isMinimized());
}

void tst_WebWidget::thePageReachesTheWindow()
{
    auto window = makeWindow(QString());
    window->setWindowTitle(QStringLiteral("Some title"));
    QWebView& view = *window->webView();
    QVERIFY(webpages::load(view,
                           webpages::writePage(QStringLiteral("a.html"), QStringLiteral("<p>a"))));
    QCOMPARE(webpages::evaluate(view, QStringLiteral("QuilLet.windowTitle")).toString(),
             QStringLiteral("Some title"));
    QCOMPARE(webpages::evaluate(view, QStringLiteral("typeof Quillet")).toString(),
             QStringLiteral("undefined"));
}

void tst_WebWidget::everyLoadPublishesAgain()
{
    auto window = makeWindow(QString());
    QWebView& view = *window->webView();
    const QString path = webpages::writePage(QStringLiteral("b.html"), QStringLiteral("<p>b"));
    for (int load = 0; load < 3; ++load) {
        QVERIFY(webpages::load(view, path));
        QCOMPARE(webpages::evaluate(view, QStringLiteral("typeof QuilLet.winResize")).toString(),
                 QStringLiteral("function"));
    }
}

void tst_WebWidget::directChildFramesReachTheWindow()
{
    webpages::writePage(QStringLiteral("inner.html"), QStringLiteral("<p>inner"));
    webpages::writePage(QStringLiteral("middle.html"),
                        QStringLiteral("<iframe src='inner.html'></iframe>"));
    const QString outer = webpages::writePage(
        QStringLiteral("outer.html"),
        QStringLiteral("<iframe src='inner.html'></iframe><iframe src='middle.html'></iframe>"));
    auto window = makeWindow(QString());
    QVERIFY(webpages::load(*window->webView(), outer));
    const QString type = QStringLiteral("typeof QuilLet");
    const QList<QWebFrame*> frames = window->webView()->page()->mainFrame()->childFrames();
    QCOMPARE(frames.count(), 2);
    for (QWebFrame* frame : frames)
        QCOMPARE(frame->evaluateJavaScript(type).toString(), QStringLiteral("object"));
    QCOMPARE(frames.at(1)->childFrames().count(), 1);
    QCOMPARE(frames.at(1)->childFrames().at(0)->evaluateJavaScript(type).toString(),
             QStringLiteral("undefined"));
}

void tst_WebWidget::aFailedLoadPublishesToo()
{
    auto window = makeWindow(QString());
    QVERIFY(webpages::load(*window->webView(), QStringLiteral("/no/such/page.html")));
    QCOMPARE(webpages::evaluate(*window->webView(), QStringLiteral("typeof QuilLet")).toString(),
             QStringLiteral("object"));
}

void tst_WebWidget::thePageCannotDeleteTheWindow()
{
    auto* window = new webWidget(QString(), nullptr);
    const QPointer<webWidget> watched(window);
    QVERIFY(webpages::load(*window->webView(),
                           webpages::writePage(QStringLiteral("c.html"), QStringLiteral("<p>c"))));
    webpages::evaluate(*window->webView(), QStringLiteral("QuilLet.deleteLater()"));
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QCoreApplication::processEvents();
    QVERIFY(watched);
    delete window;
}

void tst_WebWidget::theViewCanOutliveTheWindow()
{
    auto window = makeWindow(QString());
    QVERIFY(webpages::load(*window->webView(),
                           webpages::writePage(QStringLiteral("d.html"), QStringLiteral("<p>d"))));
    QVERIFY(realinput::showAndActivate(*window));
    std::unique_ptr<QWebView> view(window->releaseWebView());
    QVERIFY(!window->webView());
    QVERIFY(!window->releaseWebView());
    window->pageLoaded(true);
    realinput::sendMove(*window, QPoint(3, 3));
    window->grab();
    window.reset();
    QVERIFY(view->isHidden());
    QVERIFY(webpages::load(*view,
                           webpages::writePage(QStringLiteral("e.html"), QStringLiteral("<p>e"))));
}

namespace
{
// Drags and drops; returns whether the window took the drop, and as what.
Qt::DropAction drop(webWidget& window, const QMimeData& data)
{
    const QPoint position = window.rect().center();
    const Qt::DropActions offered = Qt::CopyAction | Qt::MoveAction;
    QDragEnterEvent enter(position, offered, &data, Qt::LeftButton, Qt::NoModifier);
    enter.ignore();
    QApplication::sendEvent(&window, &enter);
    if (!enter.isAccepted())
        return Qt::IgnoreAction;
    QDropEvent event(position, offered, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&window, &event);
    return event.dropAction();
}

const QString collectingPage = QStringLiteral(
    "<script>var dropped = []; function fileDropped(path) { dropped.push(path); }</script>");
} // namespace

void tst_WebWidget::droppedFileIsNamedToThePage_data()
{
    QTest::addColumn<QList<QUrl>>("urls");
    QTest::addColumn<QString>("path"); // empty: nothing that could be taken
    const auto file = [](const QString& path) { return QUrl::fromLocalFile(path); };
    QTest::newRow("file") << QList<QUrl>{file("/a/one.cif")} << "/a/one.cif";
    const QString odd = QStringLiteral("/a b/\"'\\');\n</script>%20\u00e9\u03b1\u2028\u2029.cif");
    QTest::newRow("characters that scripts know") << QList<QUrl>{file(odd)} << odd;
    QTest::newRow("two files") << QList<QUrl>{file("/a.cif"), file("/b.cif")} << "";
    QTest::newRow("link") << QList<QUrl>{QUrl("http://127.0.0.1/one.cif")} << "";
    QTest::newRow("text") << QList<QUrl>() << "";
}

void tst_WebWidget::droppedFileIsNamedToThePage()
{
    QFETCH(QList<QUrl>, urls);
    QFETCH(QString, path);
    auto window = makeWindow(QString());
    QWebView& view = *window->webView();
    QVERIFY(webpages::load(view, webpages::writePage("drop.html", collectingPage)));
    QMimeData data;
    if (urls.isEmpty())
        data.setText(QStringLiteral("some text"));
    else
        data.setUrls(urls);
    // A file manager may propose to move the file; it must stay where it is.
    QCOMPARE(drop(*window, data), path.isEmpty() ? Qt::IgnoreAction : Qt::CopyAction);
    QTRY_COMPARE(webpages::evaluate(view, "dropped.length").toInt(), 1);
    QCOMPARE(webpages::evaluate(view, "dropped[0]").toString(), path);
}

void tst_WebWidget::aPageWithoutTheFunctionGetsNoDrops()
{
    auto window = makeWindow(QString());
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(QStringLiteral("/a/one.cif"))});
    QVERIFY(!window->webView()->acceptDrops());
    QCOMPARE(drop(*window, data), Qt::IgnoreAction);
    QVERIFY(webpages::load(*window->webView(), webpages::writePage("bare.html", "<p>bare")));
    QCOMPARE(drop(*window, data), Qt::IgnoreAction);
    std::unique_ptr<QWebView> view(window->releaseWebView());
    QCOMPARE(drop(*window, data), Qt::IgnoreAction);
}

void tst_WebWidget::pageIsToldOfWhatIsDraggedOver()
{
    auto window = makeWindow(QString());
    QWebView& view = *window->webView();
    QVERIFY(webpages::load(
        view, webpages::writePage("drag.html", "<script>var told = '';"
                                               "function fileDropped() { told += 'dropped '; }"
                                               "function fileOver(isOver) { told += isOver + ' '; }"
                                               "</script>")));
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(QStringLiteral("/a/one.cif"))});
    drop(*window, data);
    QTRY_COMPARE(webpages::evaluate(view, "told").toString(),
                 QStringLiteral("true false dropped "));
    QDragEnterEvent enter(window->rect().center(), Qt::CopyAction, &data, Qt::LeftButton,
                          Qt::NoModifier);
    QApplication::sendEvent(window.get(), &enter);
    QDragLeaveEvent leave;
    QApplication::sendEvent(window.get(), &leave);
    QCOMPARE(webpages::evaluate(view, "told").toString(),
             QStringLiteral("true false dropped true false "));
}

void tst_WebWidget::aDropMayEndTheWindow()
{
    QPointer<webWidget> window = new webWidget(QString(), nullptr);
    QWebView* view = window->webView();
    QVERIFY(webpages::load(*view, webpages::writePage("drop.html", collectingPage)));
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(QStringLiteral("/a/one.cif"))});
    QCOMPARE(drop(*window, data), Qt::CopyAction);
    // As quit() does it, before the page has heard of the file.
    const std::unique_ptr<QWebView> released(window->releaseWebView());
    delete window;
    QCoreApplication::processEvents();
    QVERIFY(!window);
}

void tst_WebWidget::onlyLocalPagesAreShown_data()
{
    QTest::addColumn<QString>("script");
    QTest::addColumn<bool>("moves");
    QTest::newRow("another file") << "location.href = 'other.html'" << true;
    QTest::newRow("about:blank") << "location.href = 'about:blank'" << true;
    QTest::newRow("network") << "location.href = 'http://127.0.0.1:1/'" << false;
    QTest::newRow("secure network") << "location.href = 'https://www.example.com/'" << false;
    QTest::newRow("ftp") << "location.href = 'ftp://127.0.0.1/'" << false;
    QTest::newRow("form")
        << "var f = document.createElement('form'); f.action = 'http://127.0.0.1:1/';"
           " document.body.appendChild(f); f.submit()"
        << false;
    QTest::newRow("new window") << "window.open('http://127.0.0.1:1/')" << false;
    QTest::newRow("new local window") << "window.open('other.html')" << false;
}

void tst_WebWidget::onlyLocalPagesAreShown()
{
    QFETCH(QString, script);
    QFETCH(bool, moves);
    webpages::writePage("other.html", "<p>other");
    const QString page = webpages::writePage("stay.html", "<p>stay");
    auto window = makeWindow(QString());
    QWebView& view = *window->webView();
    QVERIFY(webpages::load(view, page));
    const int windows = QApplication::topLevelWidgets().size();
    QSignalSpy finished(view.page(), SIGNAL(loadFinished(bool)));
    webpages::evaluate(view, QStringLiteral("setTimeout(function () { setTimeout(function () {"
                                            " later = true; }, 200); %1; }, 0)")
                                 .arg(script));
    if (moves) {
        QVERIFY(finished.wait());
        QVERIFY(view.url() != QUrl::fromLocalFile(page));
        QCOMPARE(webpages::evaluate(view, "typeof QuilLet").toString(), QStringLiteral("object"));
    } else {
        QTRY_VERIFY(webpages::evaluate(view, "window.later").toBool());
        QCOMPARE(webpages::evaluate(view, "document.body.textContent").toString().trimmed(),
                 QStringLiteral("stay"));
    }
    QCOMPARE(QApplication::topLevelWidgets().size(), windows);
}

QTEST_MAIN(tst_WebWidget)
#include "tst_webwidget.moc"
