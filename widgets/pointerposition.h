// Where the pointer is, for widgets that follow it with the window they are in.
#pragma once

#include <QMouseEvent>
#include <QWidget>

// The event's position in coordinates of widget, by the widget's present place on the screen. The
// window system reckons positions in the window as it stood when the event was made, so while a
// window follows the pointer they are stale; the screen position is not. An event that some code
// made itself is taken at its word, since it need not have a screen position. GUI thread only.
inline QPoint pointerPosition(const QWidget& widget, const QMouseEvent& event)
{
    return event.spontaneous() ? widget.mapFromGlobal(event.globalPos()) : event.pos();
}
