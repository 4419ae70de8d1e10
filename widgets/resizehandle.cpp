#include "widgets/resizehandle.h"

#include "widgets/pointerposition.h"

resizeHandle::resizeHandle(QWidget* parent) : QLabel(parent)
{
    setFixedHeight(10);
    setMaximumHeight(10);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setAttribute(Qt::WA_NoMousePropagation);
    setCursor(Qt::SizeFDiagCursor);
}

void resizeHandle::setContainer(QWidget* window)
{
    container = window;
}

// The container's origin stands still while it is resized; the handle itself moves with the bottom
// edge, and in its coordinates the height would lag behind the pointer.
QPoint resizeHandle::positionInContainer(const QMouseEvent* event) const
{
    return container->mapFromGlobal(mapToGlobal(pointerPosition(*this, *event)));
}

void resizeHandle::mousePressEvent(QMouseEvent* event)
{
    resizing = container && event->button() == Qt::LeftButton;
    if (resizing)
        cornerOffset = QPoint(container->width(), container->height()) - positionInContainer(event);
}

void resizeHandle::mouseMoveEvent(QMouseEvent* event)
{
    if (!resizing)
        return;
    const QPoint corner = positionInContainer(event) + cornerOffset;
    container->resize(corner.x(), corner.y());
    container->repaint(); // at once, so that the painted frame keeps up with the pointer
}

void resizeHandle::mouseReleaseEvent(QMouseEvent*)
{
    resizing = false;
}
