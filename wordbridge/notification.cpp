#include "wordbridge/notification.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QFileInfo>
#include <QStringList>
#include <QVariant>

namespace wordbridge
{

namespace
{

// Asking for a bus where there is none may start one.
bool hasSessionBus()
{
    if (!qEnvironmentVariableIsEmpty("DBUS_SESSION_BUS_ADDRESS"))
        return true;
    const QString runtimeFolder = qEnvironmentVariable("XDG_RUNTIME_DIR");
    return !runtimeFolder.isEmpty() && QFileInfo::exists(runtimeFolder + QStringLiteral("/bus"));
}

} // namespace

void notify(const QString& summary, const QString& text, Urgency urgency)
{
    if (!hasSessionBus())
        return;
    QDBusMessage message = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.Notifications"),
        QStringLiteral("/org/freedesktop/Notifications"),
        QStringLiteral("org.freedesktop.Notifications"), QStringLiteral("Notify"));
    const uchar level = urgency == Urgency::critical ? 2 : 1;
    // The text may be shown as markup.
    message << QStringLiteral("Vexa Word") << 0U << QStringLiteral("vexaword") << summary
            << text.toHtmlEscaped() << QStringList()
            << QVariantMap{{QStringLiteral("urgency"), QVariant::fromValue(level)}} << -1;
    constexpr int patience = 1000; // milliseconds
    QDBusConnection::sessionBus().call(message, QDBus::Block, patience);
}

} // namespace wordbridge
