#include "widgets/webwidgettoolbutton.h"

webwidgetToolButton::webwidgetToolButton(const QString& hoverImage, const QString& normalImage,
                                         QWidget* parent)
    : QLabel(parent),
      hoverPixmap(hoverImage),
      normalPixmap(normalImage)
{
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setAttribute(Qt::WA_NoMousePropagation);
    setFixedHeight(hoverPixmap.height());
    setMaximumHeight(hoverPixmap.height());
    setFixedWidth(hoverPixmap.width());
    setMaximumWidth(hoverPixmap.width());
    setPixmap(normalPixmap);
}

void webwidgetToolButton::enterEvent(QEvent*)
{
    setPixmap(hoverPixmap);
}

void webwidgetToolButton::leaveEvent(QEvent*)
{
    setPixmap(normalPixmap);
}

void webwidgetToolButton::mouseReleaseEvent(QMouseEvent*)
{
    setPixmap(normalPixmap);
    emit clicked();
}

void webwidgetToolButton::mouseMoveEvent(QMouseEvent*)
{
    // A move over the button is neither a drag of the window nor a resize of its edge.
}
