#include "text/textpieces.h"

#include "text/textfile.h"

#include <QTextCodec>

#include <algorithm>
#include <cstring>

namespace
{
// A text stream decodes this many bytes at a time. What becomes of a broken character depends on
// where such a stretch ends, so the decoder must get the same ones here.
constexpr int streamBuffer = 16384;
constexpr int pieceSize = 16 * streamBuffer; // fits a processor's cache
constexpr int utf8Mib = 106;                 // the codec's number in the registry of character sets

// Eight bytes at a time: every byte of every CIF comes past here.
bool isPlainAscii(const QByteArray& bytes)
{
    const char* next = bytes.constData();
    const char* const end = next + bytes.size();
    quint64 allBits = 0;
    for (quint64 eight; end - next >= 8; next += 8) {
        std::memcpy(&eight, next, 8);
        allBits |= eight;
    }
    for (; next < end; ++next)
        allBits |= static_cast<unsigned char>(*next);
    return (allBits & 0x8080808080808080u) == 0;
}

void removeCarriageReturns(QByteArray* bytes)
{
    // By the C library, which looks at many bytes at a time: most files have none.
    if (std::memchr(bytes->constData(), '\r', static_cast<size_t>(bytes->size())))
        bytes->resize(
            static_cast<int>(std::remove(bytes->begin(), bytes->end(), '\r') - bytes->begin()));
}
} // namespace

bool TextReader::open(const QString& path)
{
    if (!isRegularFile(path))
        return false;
    file.setFileName(path);
    return file.open(QIODevice::ReadOnly);
}

bool TextReader::next(TextPiece* piece)
{
    piece->ascii.resize(pieceSize);
    piece->ascii.resize(
        static_cast<int>(std::max<qint64>(0, file.read(piece->ascii.data(), pieceSize))));
    if (piece->ascii.isEmpty())
        return false;

    const bool isFirst = !decoder;
    if (isFirst) {
        const QTextCodec* codec =
            QTextCodec::codecForUtfText(piece->ascii, QTextCodec::codecForLocale());
        decoder = std::make_unique<QTextDecoder>(codec);
        isUtf8 = codec->mibEnum() == utf8Mib;
    }
    const bool isAscii = isPlainAscii(piece->ascii);
    // The first piece always goes through the decoder, which looks for a byte-order mark there.
    piece->isAscii = isUtf8 && isAscii && isBetweenCharacters;
    if (piece->isAscii) {
        removeCarriageReturns(&piece->ascii);
        return true;
    }
    piece->characters.clear();
    for (int start = 0; start < piece->ascii.size(); start += streamBuffer)
        piece->characters += decoder->toUnicode(
            piece->ascii.constData() + start, std::min(streamBuffer, piece->ascii.size() - start));
    piece->characters.remove(QLatin1Char('\r'));
    isBetweenCharacters = !decoder->needsMoreData();
    return true;
}

TextReplacement::TextReplacement() : encoder(QTextCodec::codecForLocale(), QTextCodec::IgnoreHeader)
{
}

bool TextReplacement::open(const QString& path)
{
    if (!isRegularFileOrMissing(path))
        return false;
    file.setFileName(path);
    file.setDirectWriteFallback(true);
    return file.open(QIODevice::WriteOnly);
}

void TextReplacement::write(const TextPiece& piece)
{
    const QByteArray bytes = piece.isAscii ? piece.ascii : encoder.fromUnicode(piece.characters);
    // A full disk may take a part without calling that an error.
    if (file.write(bytes) != bytes.size())
        file.cancelWriting();
}

bool TextReplacement::commit()
{
    return file.commit();
}

bool copyTextFile(const QString& from, const QString& to)
{
    TextReader reader;
    TextReplacement replacement;
    if (!reader.open(from) || !replacement.open(to))
        return false;
    TextPiece piece;
    while (reader.next(&piece))
        replacement.write(piece);
    return !reader.failed() && replacement.commit();
}

bool replaceTextFile(const QString& path, const QString& text)
{
    TextReplacement replacement;
    if (!replacement.open(path))
        return false;
    TextPiece piece;
    piece.isAscii = false;
    piece.characters = text;
    replacement.write(piece);
    return replacement.commit();
}
