#include "quillet/diagnostics.h"

#include <algorithm>

namespace quillet
{

void Notes::add(Position where, std::string text, Note::Severity severity)
{
    const bool known = std::any_of(m_notes.begin(), m_notes.end(), [&](const Note& note) {
        return note.where.line == where.line && note.where.column == where.column &&
               note.text == text;
    });
    if (!known)
        m_notes.push_back({where, std::move(text), severity});
}

void Notes::add_once(Position where, std::string text, Note::Severity severity)
{
    const bool known = std::any_of(m_notes.begin(), m_notes.end(),
                                   [&](const Note& note) { return note.text == text; });
    if (!known)
        m_notes.push_back({where, std::move(text), severity});
}

bool has_warnings(const std::vector<Note>& notes)
{
    return std::any_of(notes.begin(), notes.end(),
                       [](const Note& note) { return note.severity == Note::Severity::warning; });
}

std::string format_message(const std::string& file, Position where, const char* severity,
                           const std::string& text)
{
    std::string message = file + ":";
    if (where.line > 0)
        message += std::to_string(where.line) + ":" + std::to_string(where.column) + ":";
    return message + " " + severity + ": " + text;
}

std::string format_position(Position where)
{
    if (where.line == 0)
        return {};
    return "line " + std::to_string(where.line) + ", column " + std::to_string(where.column);
}

} // namespace quillet
