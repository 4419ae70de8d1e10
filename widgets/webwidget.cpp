#include "widgets/webwidget.h"

#include "widgets/draghandle.h"
#include "widgets/localpage.h"
#include "widgets/pointerposition.h"
#include "widgets/resizehandle.h"
#include "widgets/webwidgettoolbutton.h"

#include <QBackingStore>
#include <QCloseEvent>
#include <QDragEnterEvent>
#include <QDragLeaveEvent>
#include <QDropEvent>
#include <QHBoxLayout>
#include <QJsonArray>
#include <QJsonDocument>
#include <QMimeData>
#include <QPaintEngine>
#include <QPainter>
#include <QTimer>
#include <QUrl>
#include <QVBoxLayout>
#include <QWebFrame>
#include <QWebPage>
#include <QWebSettings>
#include <QWebView>

#if VEXAWORD_X11
#include <QX11Info>
#endif

#include <cstdlib>

namespace
{
constexpr int edgeDistance = 6; // pixels from an edge within which it can be grabbed
constexpr int shadowBand = 5;   // pixels of shadow to the right of the frame and below it
constexpr double cornerRadius = 5.0;

QLinearGradient whiteToGrey()
{
    QLinearGradient gradient;
    gradient.setColorAt(0.0, Qt::white);
    gradient.setColorAt(1.0, Qt::lightGray);
    return gradient;
}

webwidgetToolButton* makeButton(const QString& name, const QString& toolTip, QWidget* window)
{
    const QString path = QStringLiteral(":/images/") + name;
    auto* button = new webwidgetToolButton(path + QStringLiteral("a.png"),
                                           path + QStringLiteral(".png"), window);
    if (!toolTip.isEmpty())
        button->setToolTip(toolTip);
    return button;
}

Qt::CursorShape cursorForEdges(bool left, bool right, bool bottom)
{
    if (bottom && left)
        return Qt::SizeBDiagCursor;
    if (bottom && right)
        return Qt::SizeFDiagCursor;
    if (bottom)
        return Qt::SizeVerCursor;
    if (left || right)
        return Qt::SizeHorCursor;
    return Qt::ArrowCursor;
}

// The text as a literal of JavaScript. JSON differs from that in two line ends only.
QString scriptLiteral(const QString& text)
{
    QString list =
        QString::fromUtf8(QJsonDocument(QJsonArray{text}).toJson(QJsonDocument::Compact));
    list.replace(QChar(0x2028), QLatin1String("\\u2028"));
    list.replace(QChar(0x2029), QLatin1String("\\u2029"));
    return list.mid(1, list.size() - 2);
}

// The one local file that is dragged; empty for anything else.
QString draggedFile(const QMimeData& data)
{
    const QList<QUrl> urls = data.urls();
    return urls.size() == 1 && urls.first().isLocalFile() ? urls.first().toLocalFile() : QString();
}
} // namespace

webWidget::webWidget(const QString& options, QWidget* parent)
    : QFrame(parent),
      frameGradient(whiteToGrey()),
      shadowGradient(whiteToGrey()),
      optionWords(options)
{
    setAttribute(Qt::WA_TranslucentBackground, true);
    setWindowFlags(Qt::Window | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint);
    setFrameShape(QFrame::Panel);
    setAttribute(Qt::WA_MouseTracking, true);

    view = new QWebView;
    mover = new dragHandle(nullptr);
    grip = new resizeHandle(nullptr);

    auto* column = new QVBoxLayout;
    column->addLayout(buildTitleRow());
    column->addWidget(view);
    column->addWidget(grip);
    setLayout(column);
    mover->setContainer(this);
    grip->setContainer(this);

    preparePage();

    if (optionWords.contains(QLatin1String("nobuttons"))) {
        closeButton->hide();
        minimiseButton->hide();
        maximiseButton->hide();
    }
}

// The view goes while the window is still whole: a load that ends with its page is reported to it.
webWidget::~webWidget()
{
    delete view;
}

// Left to right: drag handle (stretching), info, minimise, maximise, close.
QHBoxLayout* webWidget::buildTitleRow()
{
    const bool hasWindowButtons = optionWords.contains(QLatin1String("winbuttons"));
    const bool hasInfoButton = optionWords.contains(QLatin1String("infobutton"));

    closeButton = makeButton(QStringLiteral("close"), QStringLiteral("Close"), this);
    infoButton = makeButton(QStringLiteral("info"), QStringLiteral("Help"), this);
    minimiseButton = makeButton(QStringLiteral("winmin"), QString(), this);
    maximiseButton = makeButton(QStringLiteral("winmax"), QString(), this);

    auto* row = new QHBoxLayout;
    row->addWidget(mover);
    row->addWidget(infoButton);
    row->addWidget(minimiseButton);
    row->addWidget(maximiseButton);
    row->addWidget(closeButton);

    infoButton->setVisible(hasInfoButton);
    minimiseButton->setVisible(hasWindowButtons);
    maximiseButton->setVisible(hasWindowButtons);
    connect(closeButton, &webwidgetToolButton::clicked, this, &webWidget::close);
    if (hasInfoButton)
        connect(infoButton, &webwidgetToolButton::clicked, this, &webWidget::infoRequested);
    if (hasWindowButtons) {
        connect(minimiseButton, &webwidgetToolButton::clicked, this, &webWidget::showMinimized);
        connect(maximiseButton, &webwidgetToolButton::clicked, this, &webWidget::winResize);
    }
    return row;
}

void webWidget::preparePage()
{
    auto* page = new localPage(view);
    view->setPage(page);
    page->settings()->setAttribute(QWebSettings::JavascriptEnabled, true);
    connect(page, &QWebPage::loadFinished, this, &webWidget::pageLoaded);

    QPalette transparentBase = view->palette();
    transparentBase.setBrush(QPalette::Base, Qt::transparent);
    page->setPalette(transparentBase);
    view->setAttribute(Qt::WA_OpaquePaintEvent, false);
    setAttribute(Qt::WA_TranslucentBackground, true);

    // The view would show a dropped file in place of the page, and would not tell the page where it
    // lies. So drops are the window's.
    view->setAcceptDrops(false);
    setAcceptDrops(true);
}

QWebView* webWidget::releaseWebView()
{
    QWebView* released = view;
    view = nullptr;
    if (released) {
        disconnect(released->page(), nullptr, this, nullptr);
        // Hiding a view with the focus would pass it on through the page, which may just be
        // handling a key.
        released->clearFocus();
        released->hide();
        released->setParent(nullptr);
    }
    return released;
}

void webWidget::pageLoaded(bool)
{
    if (!view)
        return;
    QWebFrame* mainFrame = view->page()->mainFrame();
    const QString name = QStringLiteral("QuilLet");
    mainFrame->addToJavaScriptWindowObject(name, this);
    const QList<QWebFrame*> frames = mainFrame->childFrames();
    for (QWebFrame* frame : frames)
        frame->addToJavaScriptWindowObject(name, this);
}

void webWidget::winResize()
{
    if (isMaximized())
        showNormal();
    else
        showMaximized();
}

bool webWidget::event(QEvent* event)
{
    if (event->type() == QEvent::DeferredDelete)
        return true;
    return QFrame::event(event);
}

void webWidget::closeEvent(QCloseEvent* event)
{
    emit closed();
    event->accept();
}

// What is transparent would be black on a display without a compositor. A picture of the window, as
// grab() takes it, is transparent everywhere.
bool webWidget::isSeenThrough(const QPainter& painter) const
{
#if VEXAWORD_X11
    QBackingStore* screen = backingStore();
    return !screen || painter.paintEngine()->paintDevice() != screen->paintDevice() ||
           !QX11Info::isPlatformX11() || QX11Info::isCompositingManagerRunning();
#else
    Q_UNUSED(painter)
    return true;
#endif
}

void webWidget::paintEvent(QPaintEvent* event)
{
    const bool translucent = optionWords.contains(QLatin1String("opacity"));
    QPainter painter(this);
    painter.fillRect(event->rect(), isSeenThrough(painter) ? Qt::transparent : Qt::lightGray);
    painter.setPen(Qt::NoPen);

    if (optionWords.contains(QLatin1String("shadow"))) {
        shadowGradient.setStart(0, 0);
        shadowGradient.setFinalStop(width(), height());
        painter.setBrush(shadowGradient);
        painter.setOpacity(0.5);
        painter.drawRoundedRect(shadowBand, shadowBand, width() - shadowBand, height() - shadowBand,
                                cornerRadius, cornerRadius);
    }

    frameGradient.setStart(0, 0);
    frameGradient.setFinalStop(0, height());
    painter.setBrush(frameGradient);
    painter.setPen(Qt::darkGray);
    painter.setOpacity(translucent ? 0.9 : 1.0);
    painter.drawRoundedRect(0, 0, width() - shadowBand, height() - shadowBand, cornerRadius,
                            cornerRadius);

    if (optionWords.contains(QLatin1String("transparent")) || !view)
        return;
    painter.setBrush(Qt::white);
    painter.setPen(Qt::darkGray);
    if (translucent)
        painter.setOpacity(0.8);
    painter.drawRoundedRect(view->x(), view->y(), view->width() - shadowBand, view->height(),
                            cornerRadius, cornerRadius);
}

void webWidget::mousePressEvent(QMouseEvent* event)
{
    pressPosition = pointerPosition(*this, *event);
    resizing = event->button() == Qt::LeftButton;
}

void webWidget::mouseReleaseEvent(QMouseEvent*)
{
    resizing = false;
}

void webWidget::mouseMoveEvent(QMouseEvent* event)
{
    const QPoint position = pointerPosition(*this, *event);
    if (resizing)
        dragEdges(position);
    else
        findEdges(position);
}

// Whatever is dragged is let in, so that the page can say why it does not take it.
void webWidget::dragEnterEvent(QDragEnterEvent* event)
{
    if (!view || !view->page()
                      ->mainFrame()
                      ->evaluateJavaScript(QStringLiteral("typeof fileDropped === 'function'"))
                      .toBool())
        return;
    event->setDropAction(Qt::CopyAction);
    event->accept();
    showDrag(true);
}

void webWidget::dragLeaveEvent(QDragLeaveEvent*)
{
    showDrag(false);
}

void webWidget::dropEvent(QDropEvent* event)
{
    const QString path = draggedFile(*event->mimeData());
    event->setDropAction(path.isEmpty() ? Qt::IgnoreAction : Qt::CopyAction);
    event->accept();
    showDrag(false);
    // Not from here: the page may take its time, for which the other program would wait, and it may
    // end this window.
    QTimer::singleShot(0, this, [this, path] { nameDroppedFile(path); });
}

void webWidget::showDrag(bool isOver)
{
    if (view)
        view->page()->mainFrame()->evaluateJavaScript(
            QStringLiteral("if (typeof fileOver === 'function') fileOver(%1);")
                .arg(isOver ? QLatin1String("true") : QLatin1String("false")));
}

void webWidget::nameDroppedFile(const QString& path)
{
    if (view)
        view->page()->mainFrame()->evaluateJavaScript(
            QStringLiteral("fileDropped(%1);").arg(scriptLiteral(path)));
}

// There is no top edge: the title row moves the window instead.
void webWidget::findEdges(const QPoint& position)
{
    leftEdge = std::abs(position.x()) < edgeDistance;
    rightEdge = std::abs(position.x() - (width() - 1)) < edgeDistance;
    bottomEdge = std::abs(position.y() - (height() - 1)) < edgeDistance;
    setCursor(cursorForEdges(leftEdge, rightEdge, bottomEdge));
}

void webWidget::dragEdges(const QPoint& position)
{
    const QPoint moved = position - pressPosition;
    QRect frame = geometry();
    if (leftEdge)
        frame.setLeft(frame.left() + moved.x());
    if (rightEdge)
        frame.setRight(frame.right() + moved.x());
    if (bottomEdge)
        frame.setBottom(frame.bottom() + moved.y());
    setGeometry(frame);

    // While the left edge is dragged the window moves under the pointer, whose place in it stays.
    pressPosition.setY(position.y());
    if (!leftEdge)
        pressPosition.setX(position.x());
}
