// A text file as a grammar wants to see it. Programs, editors and mail leave files that a grammar
// would refuse though every reader can tell what is meant; those are made readable here, and what
// was done is reported.
#pragma once

#include "quillet/diagnostics.h"

#include <array>
#include <cstdio>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <string_view>

namespace quillet
{

// Gives out a file as UTF-8 with line feeds as line ends. Lines keep their number and characters
// their place, so that positions in the text are positions in the file. In detail:
// - byte-order marks are left out, UTF-16 (with a mark, or plain to see without) is decoded;
// - CR LF and lone CR become LF;
// - bytes that are not UTF-8 are taken as Windows-1252;
// - NUL bytes are left out, other control characters become blanks.
// Reads piece by piece, in memory that does not depend on the size of the file.
class TextSource
{
public:
    // Throws InputError if `path` cannot be opened.
    explicit TextSource(const std::string& path);

    // Fills `buffer` with up to `size` bytes and returns how many; 0 only at the end of the file.
    // Throws InputError if the file cannot be read.
    std::size_t read(char* buffer, std::size_t size);

    // Whether the text begins with these characters. Before the first read(); takes nothing.
    bool begins_with(std::string_view text);

    // No more bytes than this will ever be given out.
    std::size_t size_limit() const;

    // After the end was reached: reports what had to be repaired.
    void report_repairs(Notes& notes) const;

private:
    enum class Encoding { utf8, utf16_little_endian, utf16_big_endian };
    struct Repair {
        std::size_t count = 0;
        Position first;
    };
    struct CloseFile {
        void operator()(std::FILE* file) const { std::fclose(file); }
    };

    std::size_t read_plain(char* buffer, std::size_t size);
    std::size_t read_bytes(char* buffer, std::size_t size);
    void read_piece();
    void recognise_encoding();
    void convert_utf8(std::string_view bytes, bool at_end);
    void convert_utf16(std::string_view bytes, bool at_end);
    std::size_t convert_plain_run(std::string_view bytes);
    void note_lines(std::string_view run);
    bool convert_line_end(char byte);
    void convert_control_character(char byte);
    void end_line(std::size_t style);
    void note(Repair& repair) const;

    std::string m_path;
    std::unique_ptr<std::FILE, CloseFile> m_file;
    std::string m_raw;       // read, not yet converted: at most a piece and an unfinished character
    std::string m_converted; // not yet given out, from m_given on
    std::size_t m_given = 0;
    bool m_at_end = false;
    bool m_started = false;
    bool m_after_cr = false;

    Encoding m_encoding = Encoding::utf8;
    Position m_here{1, 1};

    bool m_had_byte_order_mark = false;
    Repair m_windows_1252;
    Repair m_nul;
    Repair m_control;
    Repair m_unpaired_surrogate;
    static constexpr std::size_t lf = 0, cr_lf = 1, cr = 2;
    std::array<std::size_t, 3> m_line_ends{};
    std::size_t m_first_style = lf;
    Repair m_other_style;
};

// The whole file, which should be small.
std::string read_text(const std::string& path);

// Those lines of the file, by number, as TextSource gives them out, without their line ends.
std::map<std::uint32_t, std::string> read_lines_of(const std::string& path,
                                                   const std::set<std::uint32_t>& wanted);

// Columns count bytes of UTF-8 while a file is read; people count characters. `line` is the line
// that the column is in.
std::uint32_t column_in_characters(const std::string& line, std::uint32_t column);

// The same for all notes about the file. To be done once, when there will be no more of them.
void use_character_columns(const std::string& path, Notes& notes);

} // namespace quillet
