// What quillet has to say about its input: one exception for what stops it, one list for what
// does not. Both are part of the library (quillet.h).
//
// While a file is read columns count bytes of UTF-8; before the caller sees them they are made to
// count characters (see text_source.h).
#pragma once

#include "quillet/quillet.h"

#include <string>
#include <vector>

namespace quillet
{

// The one channel for notes, in the order in which they arose; the same note about the same
// place is kept once.
class Notes
{
public:
    void add(Position where, std::string text, Note::Severity severity = Note::Severity::warning);
    // The same, but not if the text is already there about another place.
    void add_once(Position where, std::string text,
                  Note::Severity severity = Note::Severity::warning);
    const std::vector<Note>& all() const { return m_notes; }
    std::vector<Note>& all() { return m_notes; }
    bool empty() const { return m_notes.empty(); }

private:
    std::vector<Note> m_notes;
};

bool has_warnings(const std::vector<Note>& notes);

// "FILE:LINE:COLUMN: SEVERITY: text", without the parts of `where` that are 0.
std::string format_message(const std::string& file, Position where, const char* severity,
                           const std::string& text);

// "line 3, column 7", or "" when `where` is no place.
std::string format_position(Position where);

} // namespace quillet
