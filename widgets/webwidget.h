// webWidget: the frameless, painted window whose inside is an HTML page.
#pragma once

#include <QFrame>
#include <QLinearGradient>
#include <QPoint>
#include <QString>

class dragHandle;
class resizeHandle;
class webwidgetToolButton;
class QHBoxLayout;
class QWebView;

// A title row (drag handle, image buttons), a web view and a bottom grip over a rounded gradient.
// It moves by its title row and is resized at its left, right and bottom edges and by the grip. The
// page reaches the window itself as "QuilLet" once a load has finished. Files dropped anywhere on
// it are named to the page, if that defines the function fileDropped(path), and it is told by
// fileOver(true), fileOver(false) while they are dragged over the window, if it defines that too;
// GUI thread only.
//
// Options are words found anywhere in the option string, whatever their order:
//   shadow       a drop shadow on the right and at the bottom
//   opacity      the frame lets a little of the desktop through
//   transparent  the page shows over the gradient, without a white panel under it
//   infobutton   a help button, reported by infoRequested()
//   winbuttons   minimise and maximise buttons
//   nobuttons    no close, minimise or maximise button, whatever else is said
class webWidget : public QFrame
{
    Q_OBJECT

public:
    // Hidden, without a page, staying on top of other windows until the owner sets other flags.
    webWidget(const QString& options, QWidget* parent);
    ~webWidget() override;

    // The view that shows the page; owned by the window.
    QWebView* webView() const { return view; }

    // Takes the view, hidden, out of the window and gives it to the caller; the window has none
    // then. A window can be deleted while an event handler of its page is on the stack, a web view
    // cannot.
    QWebView* releaseWebView();

    // Names a file to the page as one that was dropped; an empty path stands for what was dropped
    // and is no file.
    void nameDroppedFile(const QString& path);

signals:
    void closed();
    void infoRequested();

public slots:
    // Publishes the window to the page's main frame and its direct child frames as "QuilLet". OK
    // says whether the load succeeded, which makes no difference.
    void pageLoaded(bool OK);

    // Maximises the window, or restores it when it is maximised.
    void winResize();

protected:
    // Ignores deferred deletion: QObject::deleteLater() is a slot too, so the page could call it.
    bool event(QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragLeaveEvent(QDragLeaveEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    bool isSeenThrough(const QPainter& painter) const;
    QHBoxLayout* buildTitleRow();
    void preparePage();
    void findEdges(const QPoint& position);
    void dragEdges(const QPoint& position);
    void showDrag(bool isOver);

    QWebView* view;
    dragHandle* mover;
    resizeHandle* grip;
    webwidgetToolButton* minimiseButton = nullptr;
    webwidgetToolButton* maximiseButton = nullptr;
    webwidgetToolButton* closeButton = nullptr;
    webwidgetToolButton* infoButton = nullptr;
    QLinearGradient frameGradient;
    QLinearGradient shadowGradient;
    QPoint pressPosition; // window coordinates
    bool resizing = false;
    bool leftEdge = false;
    bool rightEdge = false;
    bool bottomEdge = false;
    QString optionWords;
};
