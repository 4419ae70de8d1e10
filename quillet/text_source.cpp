#include "quillet/text_source.h"

#include "quillet/unicode.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>

namespace quillet
{

namespace
{

constexpr std::size_t piece_size = std::size_t{1} << 16U;

constexpr bool is_plain(char c)
{
    const auto byte = static_cast<unsigned char>(c);
    return (byte >= 0x20 && byte < 0x7F) || byte == '\n' || byte == '\t';
}

// How many bytes at the start of `bytes` need no conversion. Nearly all of most files, so it goes
// by blocks, in loops that compilers turn into vector instructions.
std::size_t plain_size(std::string_view bytes)
{
    constexpr std::size_t block = 64;
    std::size_t size = 0;
    for (; size + block <= bytes.size(); size += block) {
        unsigned char others = 0;
        for (std::size_t i = 0; i < block; ++i)
            others |= static_cast<unsigned char>(!is_plain(bytes[size + i]));
        if (others != 0)
            break;
    }
    while (size < bytes.size() && is_plain(bytes[size]))
        ++size;
    return size;
}

std::string count_of(std::size_t count, const char* one, const char* several)
{
    return count == 1 ? std::string("One ") + one : std::to_string(count) + " " + several;
}

} // namespace

TextSource::TextSource(const std::string& path) : m_path(path)
{
    std::error_code ignored;
    if (std::filesystem::is_directory(path, ignored))
        throw InputError(path, {}, "cannot be read: it is a folder");
    m_file.reset(std::fopen(path.c_str(), "rb"));
    if (!m_file)
        throw InputError(path, {}, std::string("cannot be read: ") + std::strerror(errno));
}

std::size_t TextSource::size_limit() const
{
    std::error_code error;
    const auto size = std::filesystem::file_size(m_path, error);
    constexpr std::size_t assumed_for_pipes = std::size_t{1} << 30U;
    // A Windows-1252 byte grows to at most three bytes of UTF-8.
    return 3 * (error ? assumed_for_pipes : static_cast<std::size_t>(size)) + piece_size;
}

std::size_t TextSource::read(char* buffer, std::size_t size)
{
    const bool is_between_pieces = m_started && m_given == m_converted.size() && m_raw.empty();
    if (is_between_pieces && !m_after_cr && m_encoding == Encoding::utf8 && !m_at_end) {
        if (const std::size_t count = read_plain(buffer, size))
            return count;
    }
    while (m_given == m_converted.size() && !m_at_end)
        read_piece();
    const std::size_t count = std::min(size, m_converted.size() - m_given);
    std::memcpy(buffer, m_converted.data() + m_given, count);
    m_given += count;
    return count;
}

bool TextSource::begins_with(std::string_view text)
{
    if (!m_started)
        read_piece();
    return std::string_view(m_converted).substr(0, text.size()) == text;
}

// Reads what needs no conversion straight to where it goes. What follows it is left in m_raw.
std::size_t TextSource::read_plain(char* buffer, std::size_t size)
{
    const std::size_t count = read_bytes(buffer, size);
    const std::size_t plain = plain_size({buffer, count});
    note_lines({buffer, plain});
    m_raw.assign(buffer + plain, count - plain);
    return plain;
}

std::size_t TextSource::read_bytes(char* buffer, std::size_t size)
{
    const std::size_t count = std::fread(buffer, 1, size, m_file.get());
    if (count < size && std::ferror(m_file.get()) != 0)
        throw InputError(m_path, {}, std::string("cannot be read: ") + std::strerror(errno));
    return count;
}

void TextSource::read_piece()
{
    m_converted.clear();
    m_given = 0;
    const std::size_t kept = m_raw.size();
    m_raw.resize(kept + piece_size);
    const std::size_t count = read_bytes(m_raw.data() + kept, piece_size);
    m_raw.resize(kept + count);
    m_at_end = count == 0;
    if (!m_started) {
        recognise_encoding();
        m_started = true;
    }
    const std::string bytes = std::move(m_raw);
    m_raw.clear();
    if (m_encoding == Encoding::utf8)
        convert_utf8(bytes, m_at_end);
    else
        convert_utf16(bytes, m_at_end);
    if (m_at_end && m_after_cr)
        end_line(cr);
}

void TextSource::recognise_encoding()
{
    const auto begins_with = [this](std::string_view mark) {
        return std::string_view(m_raw).substr(0, mark.size()) == mark;
    };
    std::size_t mark_size = 0;
    if (begins_with("\xEF\xBB\xBF")) {
        mark_size = 3;
    } else if (begins_with("\xFF\xFE")) {
        m_encoding = Encoding::utf16_little_endian;
        mark_size = 2;
    } else if (begins_with("\xFE\xFF")) {
        m_encoding = Encoding::utf16_big_endian;
        mark_size = 2;
    } else if (m_raw.size() >= 4) {
        // A CIF begins with ASCII: in UTF-16 every other byte of its first characters is NUL.
        const auto is_nul = [this](std::size_t i) { return m_raw[i] == '\0'; };
        if (!is_nul(0) && is_nul(1) && !is_nul(2) && is_nul(3))
            m_encoding = Encoding::utf16_little_endian;
        else if (is_nul(0) && !is_nul(1) && is_nul(2) && !is_nul(3))
            m_encoding = Encoding::utf16_big_endian;
    }
    m_had_byte_order_mark = mark_size > 0;
    m_raw.erase(0, mark_size);
}

void TextSource::convert_utf8(std::string_view bytes, bool at_end)
{
    constexpr std::size_t longest_character = 4;
    while (!bytes.empty()) {
        const std::size_t plain = convert_plain_run(bytes);
        bytes.remove_prefix(plain);
        if (plain > 0 || bytes.empty())
            continue;
        const auto byte = static_cast<unsigned char>(bytes.front());
        if (byte < 0x80) {
            if (!convert_line_end(bytes.front()))
                convert_control_character(bytes.front());
            bytes.remove_prefix(1);
            continue;
        }
        if (bytes.size() < longest_character && !at_end) {
            m_raw = bytes; // the rest of the character is in the next piece
            return;
        }
        convert_line_end('\0');
        char32_t c = take_character(bytes);
        if (is_invalid_byte(c)) {
            note(m_windows_1252);
            c = from_windows_1252(byte);
        }
        const std::size_t size_before = m_converted.size();
        append_character(m_converted, c);
        m_here.column += static_cast<std::uint32_t>(m_converted.size() - size_before);
    }
}

void TextSource::convert_utf16(std::string_view bytes, bool at_end)
{
    const bool little = m_encoding == Encoding::utf16_little_endian;
    const auto unit_at = [&](std::size_t i) {
        const auto first = static_cast<unsigned char>(bytes[i]);
        const auto second = static_cast<unsigned char>(bytes[i + 1]);
        return static_cast<char16_t>(little ? first | (second << 8U) : (first << 8U) | second);
    };
    std::size_t i = 0;
    for (; i + 1 < bytes.size(); i += 2) {
        char32_t c = unit_at(i);
        const bool leads = c >= 0xD800 && c < 0xDC00;
        if (leads && i + 3 >= bytes.size() && !at_end)
            break;
        if (leads && i + 3 < bytes.size() && unit_at(i + 2) >= 0xDC00 && unit_at(i + 2) < 0xE000) {
            c = 0x10000U + ((c - 0xD800U) << 10U) + (unit_at(i + 2) - 0xDC00U);
            i += 2;
        } else if (c >= 0xD800 && c < 0xE000) {
            note(m_unpaired_surrogate);
            c = U'\uFFFD';
        }
        std::string utf8;
        append_character(utf8, c);
        convert_utf8(utf8, true);
    }
    m_raw = bytes.substr(i);
    if (at_end)
        m_raw.clear();
}

// Takes over as many bytes as need no conversion; returns their number.
std::size_t TextSource::convert_plain_run(std::string_view bytes)
{
    const std::size_t size = plain_size(bytes);
    std::string_view run = bytes.substr(0, size);
    if (size > 0 && convert_line_end(run.front()))
        run.remove_prefix(1);
    m_converted += run;
    note_lines(run);
    return size;
}

// Counts the lines of a run that needs no conversion.
void TextSource::note_lines(std::string_view run)
{
    const auto lines = std::count(run.begin(), run.end(), '\n');
    if (lines == 0) {
        m_here.column += static_cast<std::uint32_t>(run.size());
        return;
    }
    if (m_line_ends == decltype(m_line_ends){})
        m_first_style = lf;
    else if (m_first_style != lf && m_other_style.count == 0)
        m_other_style = {1, m_here};
    m_line_ends[lf] += static_cast<std::size_t>(lines);
    m_here.line += static_cast<std::uint32_t>(lines);
    m_here.column = static_cast<std::uint32_t>(run.size() - run.rfind('\n'));
}

// Sees each byte that may follow a CR or be one. True if it belongs to a line end and is done with.
bool TextSource::convert_line_end(char byte)
{
    if (m_after_cr) {
        m_after_cr = false;
        end_line(byte == '\n' ? cr_lf : cr);
        if (byte == '\n')
            return true;
    }
    m_after_cr = byte == '\r';
    return m_after_cr;
}

void TextSource::end_line(std::size_t style)
{
    if (m_line_ends == decltype(m_line_ends){})
        m_first_style = style;
    else if (m_first_style != style && m_other_style.count == 0)
        m_other_style = {1, m_here};
    ++m_line_ends[style];
    m_converted += '\n';
    ++m_here.line;
    m_here.column = 1;
}

void TextSource::convert_control_character(char byte)
{
    if (byte == '\0') {
        note(m_nul);
        return;
    }
    note(m_control);
    m_converted += ' ';
    ++m_here.column;
}

void TextSource::note(Repair& repair) const
{
    if (repair.count++ == 0)
        repair.first = m_here;
}

void TextSource::report_repairs(Notes& notes) const
{
    const Position start{1, 1};
    if (m_encoding != Encoding::utf8)
        notes.add(start, "The file is in UTF-16; it should be in ASCII or UTF-8.");
    else if (m_had_byte_order_mark)
        notes.add(start, "The file begins with a byte-order mark, which it should not have.");
    if (m_line_ends[cr] > 0 && m_line_ends[lf] + m_line_ends[cr_lf] == 0)
        notes.add(start, "The lines of the file end with a carriage return alone.");
    else if (m_other_style.count > 0)
        notes.add(m_other_style.first, "From here on lines end in another way than before.");
    if (m_windows_1252.count > 0)
        notes.add(m_windows_1252.first, count_of(m_windows_1252.count, "byte that is not UTF-8 was",
                                                 "bytes that are not UTF-8 were") +
                                            " read as Windows-1252; please check the letters.");
    if (m_nul.count > 0)
        notes.add(m_nul.first,
                  count_of(m_nul.count, "NUL byte was", "NUL bytes were") + " left out.");
    if (m_control.count > 0)
        notes.add(m_control.first,
                  count_of(m_control.count, "control character was", "control characters were") +
                      " read as a blank.");
    if (m_unpaired_surrogate.count > 0)
        notes.add(m_unpaired_surrogate.first, "Half of a UTF-16 character pair is missing.");
}

std::string read_text(const std::string& path)
{
    TextSource source(path);
    std::string text;
    std::string piece(piece_size, '\0');
    while (const std::size_t count = source.read(piece.data(), piece.size()))
        text.append(piece, 0, count);
    return text;
}

std::map<std::uint32_t, std::string> read_lines_of(const std::string& path,
                                                   const std::set<std::uint32_t>& wanted)
{
    std::map<std::uint32_t, std::string> lines;
    TextSource source(path);
    std::string text(piece_size, '\0');
    std::uint32_t here = 1;
    auto next = wanted.begin();
    while (const std::size_t count = source.read(text.data(), text.size())) {
        for (std::size_t i = 0; i < count && next != wanted.end(); ++i) {
            if (here == *next && text[i] != '\n')
                lines[here] += text[i];
            if (text[i] != '\n')
                continue;
            if (here == *next)
                ++next;
            ++here;
        }
    }
    return lines;
}

std::uint32_t column_in_characters(const std::string& line, std::uint32_t column)
{
    const std::string_view before = std::string_view(line).substr(0, column - 1);
    const std::size_t beyond = column - 1 - before.size();
    return static_cast<std::uint32_t>(count_characters(before) + beyond + 1);
}

void use_character_columns(const std::string& path, Notes& notes)
{
    std::set<std::uint32_t> wanted;
    for (const Note& note : notes.all()) {
        if (note.where.line > 0)
            wanted.insert(note.where.line);
    }
    if (wanted.empty())
        return;
    const auto lines = read_lines_of(path, wanted);
    for (Note& note : notes.all()) {
        const auto line = lines.find(note.where.line);
        if (line != lines.end())
            note.where.column = column_in_characters(line->second, note.where.column);
    }
}

} // namespace quillet
