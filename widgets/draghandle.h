// dragHandle: the strip at the top of a frameless window by which it is moved.
#pragma once

#include <QLabel>
#include <QPoint>

// 16 pixels high, as wide as there is room. GUI thread only.
class dragHandle : public QLabel
{
public:
    explicit dragHandle(QWidget* parent);

    // The window that dragging with the left button moves; not owned. Without one nothing moves.
    void setContainer(QWidget* window);

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    QWidget* container = nullptr;
    bool dragging = false;
    QPoint pressPosition; // handle coordinates
};
