// resizeHandle: the strip at the bottom of a frameless window by which it is resized.
#pragma once

#include <QLabel>
#include <QPoint>

// 10 pixels high, as wide as there is room. GUI thread only.
class resizeHandle : public QLabel
{
public:
    explicit resizeHandle(QWidget* parent);

    // The window that dragging with the left button resizes; not owned. Without one nothing
    // happens.
    void setContainer(QWidget* window);

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    QPoint positionInContainer(const QMouseEvent* event) const;

    QWidget* container = nullptr;
    QPoint cornerOffset; // from the pointer at the press to the container's bottom right corner
    bool resizing = false;
};
