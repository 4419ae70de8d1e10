// Text as it crosses files on the word side.
#pragma once

#include <QByteArray>
#include <QString>

namespace wordbridge
{

// The text of bytes in UTF-8, with or without a byte-order mark, or else in Latin-1.
QString decoded(const QByteArray& bytes);

// The text of a file that the program writes for Word and encodes twice: as UTF-8, then each byte
// taken for a Latin-1 letter and encoded as UTF-8 once more. Text that was encoded only once is
// recognised and comes out right too; bytes that are no UTF-8 stand for Latin-1 letters. A letter
// that the file's end cuts off is dropped.
QString decodedTwice(const QByteArray& bytes);

// The text without the characters that XML 1.0 has no room for.
QString allowedInXml(const QString& text);

} // namespace wordbridge
