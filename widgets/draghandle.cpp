#include "widgets/draghandle.h"

#include "widgets/pointerposition.h"

dragHandle::dragHandle(QWidget* parent) : QLabel(parent)
{
    setFixedHeight(16);
    setMaximumHeight(16);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setAttribute(Qt::WA_NoMousePropagation);
    setCursor(Qt::OpenHandCursor);
}

void dragHandle::setContainer(QWidget* window)
{
    container = window;
}

void dragHandle::mousePressEvent(QMouseEvent* event)
{
    pressPosition = pointerPosition(*this, *event);
    dragging = event->button() == Qt::LeftButton;
}

void dragHandle::mouseMoveEvent(QMouseEvent* event)
{
    // The press position stays as it is: the handle moves along with the window.
    if (dragging && container)
        container->move(container->pos() + pointerPosition(*this, *event) - pressPosition);
}

void dragHandle::mouseReleaseEvent(QMouseEvent*)
{
    dragging = false;
}
