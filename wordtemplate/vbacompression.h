// The compression of VBA projects: [MS-OVBA] 2.4.1, "Compression and Decompression".
#pragma once

#include <QByteArray>

namespace wordtemplate
{

// Returns a compressed container holding `data`. Any reader that follows [MS-OVBA] gets `data`
// back. Beyond that, no chunk ends with a full group of eight tokens where that can be avoided:
// some virus scanners lose their place after such a chunk and would not see the rest of the macro.
QByteArray compressVba(const QByteArray& data);

// Returns the content of a compressed container. Throws wordbridge::Error if it is damaged.
QByteArray decompressVba(const QByteArray& container);

} // namespace wordtemplate
