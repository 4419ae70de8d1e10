// Desktop notifications, for those who see no terminal.
#pragma once

#include <QString>

namespace wordbridge
{

enum class Urgency { normal, critical };

// Shows a notification where the desktop has a notification service; does nothing elsewhere. Waits
// at most a second for the service.
void notify(const QString& summary, const QString& text, Urgency urgency);

} // namespace wordbridge
