// webwidgetToolButton: an image that is a button, with another image while the pointer is over it.
#pragma once

#include <QLabel>
#include <QPixmap>

// As large as its hover image; 0 × 0 when that cannot be loaded. GUI thread only.
class webwidgetToolButton : public QLabel
{
    Q_OBJECT

public:
    // Both images are paths that QPixmap can load, such as ":/images/close.png".
    webwidgetToolButton(const QString& hoverImage, const QString& normalImage, QWidget* parent);

signals:
    // Any mouse button was released over the button, wherever it was pressed.
    void clicked();

protected:
    void enterEvent(QEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;

private:
    QPixmap hoverPixmap;
    QPixmap normalPixmap;
};
