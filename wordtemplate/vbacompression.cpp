#include "wordtemplate/vbacompression.h"

#include "wordbridge/error.h"

#include <algorithm>
#include <vector>

namespace wordtemplate
{

namespace
{

constexpr int chunkSize = 4096;
constexpr char containerSignature = 1;
constexpr int shortestCopy = 3;

// One step of the decompressor: a byte to append, or a stretch of what was written before.
struct Token {
    int length = 0; // 0: a literal byte
    int offset = 0; // of a copy, backwards from the place it is written to
    char literal = 0;
};

// How many bits of a copy token hold the offset; it grows as the chunk fills
// ([MS-OVBA] 2.4.1.3.19.1).
int offsetBits(int position)
{
    int bits = 4;
    while ((1 << bits) < position)
        ++bits;
    return bits;
}

int longestCopy(int position)
{
    return (0xFFFF >> offsetBits(position)) + shortestCopy;
}

// The longest earlier stretch of `chunk` that equals what stands at `position`.
Token bestMatch(const QByteArray& chunk, int position)
{
    Token best;
    best.literal = chunk[position];
    const int limit = std::min(longestCopy(position), chunk.size() - position);
    for (int candidate = position - 1; candidate >= 0 && best.length < limit; --candidate) {
        int length = 0;
        while (length < limit && chunk[candidate + length] == chunk[position + length])
            ++length;
        if (length >= shortestCopy && length > best.length) {
            best.length = length;
            best.offset = position - candidate;
        }
    }
    return best;
}

std::vector<Token> tokenize(const QByteArray& chunk)
{
    std::vector<Token> tokens;
    for (int position = 0; position < chunk.size();) {
        tokens.push_back(bestMatch(chunk, position));
        position += std::max(1, tokens.back().length);
    }
    return tokens;
}

// Makes the number of tokens differ from a multiple of eight by writing the end of the last copy as
// literals.
void avoidFullLastGroup(std::vector<Token>& tokens, const QByteArray& chunk)
{
    const auto isCopy = [](const Token& token) { return token.length > 0; };
    const auto lastCopy = std::find_if(tokens.rbegin(), tokens.rend(), isCopy);
    if (tokens.size() % 8 != 0 || lastCopy == tokens.rend())
        return;
    const auto literalsBehind = static_cast<int>(lastCopy - tokens.rbegin());
    const int spelledOut = lastCopy->length > shortestCopy ? 1 : shortestCopy;
    const int start = chunk.size() - literalsBehind - spelledOut;

    std::vector<Token> literals(static_cast<std::size_t>(spelledOut));
    for (int i = 0; i < spelledOut; ++i)
        literals[static_cast<std::size_t>(i)].literal = chunk[start + i];
    auto place = lastCopy.base(); // behind the copy
    lastCopy->length -= spelledOut;
    if (lastCopy->length == 0)
        place = tokens.erase(place - 1);
    tokens.insert(place, literals.cbegin(), literals.cend());
}

void appendUint16(QByteArray& bytes, int value)
{
    bytes.append(static_cast<char>(value & 0xFF));
    bytes.append(static_cast<char>(value >> 8));
}

QByteArray encode(const std::vector<Token>& tokens)
{
    QByteArray bytes;
    int position = 0;
    int flagsAt = 0;
    for (std::size_t i = 0; i < tokens.size(); ++i) {
        if (i % 8 == 0) {
            flagsAt = bytes.size();
            bytes.append('\0');
        }
        const Token& token = tokens[i];
        if (token.length == 0) {
            bytes.append(token.literal);
            position += 1;
        } else {
            bytes[flagsAt] = static_cast<char>(bytes.at(flagsAt) | (1 << (i % 8)));
            const int shift = 16 - offsetBits(position);
            appendUint16(bytes, ((token.offset - 1) << shift) | (token.length - shortestCopy));
            position += token.length;
        }
    }
    return bytes;
}

QByteArray compressChunk(const QByteArray& chunk)
{
    std::vector<Token> tokens = tokenize(chunk);
    avoidFullLastGroup(tokens, chunk);
    QByteArray data = encode(tokens);
    const bool compressed = data.size() < chunkSize;
    if (!compressed)
        data = chunk.leftJustified(chunkSize, '\0');

    QByteArray bytes;
    const int size = data.size() + 2;
    appendUint16(bytes, (size - 3) | 0x3000 | (compressed ? 0x8000 : 0));
    return bytes + data;
}

// Reads a container byte by byte and complains when it ends too early.
class Reader
{
public:
    explicit Reader(const QByteArray& bytes) : m_bytes(bytes) {}

    bool atEnd() const { return m_position >= m_bytes.size(); }
    int position() const { return m_position; }

    int byte()
    {
        if (atEnd())
            throw wordbridge::Error(QStringLiteral("the compressed VBA text ends too early"));
        return static_cast<unsigned char>(m_bytes[m_position++]);
    }

    int uint16()
    {
        const int low = byte();
        return low | byte() << 8;
    }

private:
    const QByteArray& m_bytes;
    int m_position = 0;
};

void appendCopy(QByteArray& chunk, int token)
{
    const int lengthBits = 16 - offsetBits(chunk.size());
    const int length = (token & ((1 << lengthBits) - 1)) + shortestCopy;
    const int from = chunk.size() - (token >> lengthBits) - 1;
    if (from < 0)
        throw wordbridge::Error(QStringLiteral("the compressed VBA text refers to nothing"));
    for (int i = 0; i < length; ++i)
        chunk.append(chunk[from + i]);
}

QByteArray decompressChunk(Reader& reader)
{
    const int header = reader.uint16();
    const int end = reader.position() + (header & 0x0FFF) + 1;
    QByteArray chunk;
    if ((header & 0x8000) == 0) {
        while (reader.position() < end)
            chunk.append(static_cast<char>(reader.byte()));
        return chunk;
    }
    while (reader.position() < end) {
        const int flags = reader.byte();
        for (int bit = 0; bit < 8 && reader.position() < end; ++bit) {
            if ((flags >> bit & 1) == 0)
                chunk.append(static_cast<char>(reader.byte()));
            else
                appendCopy(chunk, reader.uint16());
        }
    }
    return chunk;
}

} // namespace

QByteArray compressVba(const QByteArray& data)
{
    QByteArray container(1, containerSignature);
    for (int start = 0; start < data.size(); start += chunkSize)
        container += compressChunk(data.mid(start, chunkSize));
    return container;
}

QByteArray decompressVba(const QByteArray& container)
{
    Reader reader(container);
    if (reader.byte() != containerSignature)
        throw wordbridge::Error(QStringLiteral("this is not compressed VBA text"));
    QByteArray data;
    while (!reader.atEnd())
        data += decompressChunk(reader);
    return data;
}

} // namespace wordtemplate
