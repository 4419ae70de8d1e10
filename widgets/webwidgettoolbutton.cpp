#include "widgets/webwidgettoolbutton.h"

#include <QFileInfo>
#include <QGuiApplication>

namespace
{
// For displays of many dots the program has its pictures with twice as many of them, too.
QPixmap load(const QString& path)
{
    if (qGuiApp->devicePixelRatio() > 1) {
        const QPixmap fine(QStringLiteral(":/fine/%1@2x.png").arg(QFileInfo(path).baseName()));
        if (!fine.isNull())
            return fine;
    }
    return QPixmap(path);
}
} // namespace

webwidgetToolButton::webwidgetToolButton(const QString& hoverImage, const QString& normalImage,
                                         QWidget* parent)
    : QLabel(parent),
      hoverPixmap(load(hoverImage)),
      normalPixmap(load(normalImage))
{
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setAttribute(Qt::WA_NoMousePropagation);
    const QSize size = hoverPixmap.size() / hoverPixmap.devicePixelRatio();
    setFixedHeight(size.height());
    setMaximumHeight(size.height());
    setFixedWidth(size.width());
    setMaximumWidth(size.width());
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
