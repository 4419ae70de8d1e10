// Files compiled into the library.
#pragma once

#include <QByteArray>

namespace wordbridge
{

// The content of a file of wordbridge.qrc.
QByteArray resource(const char* name);

} // namespace wordbridge
