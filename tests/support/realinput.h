// Mouse and keyboard input as a user gives it: from the X server (xdotool). And one shortcut.
#pragma once

#include <QPoint>
#include <QString>
#include <QStringList>

class QWidget;

namespace realinput
{
// Each call returns once xdotool has ended, with the event loop turning meanwhile. Positions are
// screen coordinates. False when xdotool is missing or fails.
bool run(const QStringList& xdotoolArguments);

bool moveTo(const QPoint& position);
bool click(const QPoint& position, int button = 1);
bool key(const QString& name); // an X key name: "Return", "Tab", "a"

// Presses at from, moves to to in steps of about two pixels, releases.
bool drag(const QPoint& from, const QPoint& to, int button = 1);

// Shows the window and waits until it is exposed, active and where the window manager wants it.
bool showAndActivate(QWidget& window);
// A move event of the left-button kind sent straight to the widget, at a position of its own
// coordinates, without the pointer going there.
void sendMove(QWidget& widget, const QPoint& position);
} // namespace realinput
