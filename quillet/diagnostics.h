// What quillet has to say about its input: one exception for what stops it, one list for what
// does not.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

namespace quillet
{

// A place in a text file. Lines and columns count from 1; 0 means the file as a whole. Columns
// count bytes of UTF-8 until a message is shown: people are told characters (see
// use_character_columns()).
struct Position {
    std::uint32_t line = 0;
    std::uint32_t column = 0;
};

// The input (a CIF or a template) cannot be used. Caught once, in run().
class InputError : public std::runtime_error
{
public:
    InputError(std::string file, Position where, const std::string& message)
        : std::runtime_error(message),
          m_file(std::move(file)),
          m_where(where)
    {
    }

    const std::string& file() const { return m_file; }
    Position where() const { return m_where; }

    // The line of the file that the message is about, for a listing with a caret; may be empty.
    const std::string& source_line() const { return m_source_line; }
    void set_source_line(std::string line) { m_source_line = std::move(line); }

private:
    std::string m_file;
    Position m_where;
    std::string m_source_line;
};

// Something the author should know about the CIF, though the article could be made. Plain UTF-8.
struct Note {
    Position where;
    std::string text;
};

// The one channel for warnings, in the order in which they arose; the same warning about the same
// place is kept once.
class Notes
{
public:
    void add(Position where, std::string text);
    const std::vector<Note>& all() const { return m_notes; }
    std::vector<Note>& all() { return m_notes; }
    bool empty() const { return m_notes.empty(); }

private:
    std::vector<Note> m_notes;
};

// "FILE:LINE:COLUMN: SEVERITY: text", without the parts of `where` that are 0.
std::string format_message(const std::string& file, Position where, const char* severity,
                           const std::string& text);

// "line 3, column 7", or "" when `where` is no place.
std::string format_position(Position where);

} // namespace quillet
