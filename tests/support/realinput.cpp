#include "tests/support/realinput.h"

#include <QCoreApplication>
#include <QMouseEvent>
#include <QProcess>
#include <QTest>
#include <QWidget>

#include <algorithm>
#include <cmath>

namespace realinput
{
bool run(const QStringList& xdotoolArguments)
{
    QProcess xdotool;
    xdotool.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    xdotool.start(QStringLiteral("xdotool"), xdotoolArguments);
    // The application must read its events while xdotool waits for them to be sent.
    const bool ended =
        QTest::qWaitFor([&] { return xdotool.state() == QProcess::NotRunning; }, 20000);
    return ended && xdotool.error() == QProcess::UnknownError && xdotool.exitCode() == 0;
}

namespace
{
QStringList moveCommand(const QPoint& position)
{
    return {QStringLiteral("mousemove"), QString::number(position.x()),
            QString::number(position.y())};
}
} // namespace

bool moveTo(const QPoint& position)
{
    return run(moveCommand(position));
}

bool click(const QPoint& position, int button)
{
    return run(moveCommand(position) +
               QStringList{QStringLiteral("click"), QString::number(button)});
}

bool key(const QString& name)
{
    return run({QStringLiteral("key"), name});
}

bool drag(const QPoint& from, const QPoint& to, int button)
{
    const QPoint way = to - from;
    const int steps = std::max({std::abs(way.x()), std::abs(way.y()), 2}) / 2;
    QStringList commands = moveCommand(from);
    commands << QStringLiteral("mousedown") << QString::number(button);
    for (int step = 1; step <= steps; ++step)
        commands << moveCommand(from + way * step / steps) << QStringLiteral("sleep")
                 << QStringLiteral("0.01");
    commands << QStringLiteral("mouseup") << QString::number(button);
    return run(commands);
}

bool showAndActivate(QWidget& window)
{
    window.show();
    window.activateWindow();
    return QTest::qWaitForWindowExposed(&window) && QTest::qWaitForWindowActive(&window);
}

void sendMove(QWidget& widget, const QPoint& position)
{
    QMouseEvent event(QEvent::MouseMove, position, widget.mapToGlobal(position), Qt::NoButton,
                      Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(&widget, &event);
}
} // namespace realinput
