#include "quillet/diagnostics.h"

#include <algorithm>

namespace quillet
{

void Notes::add(Position where, std::string text)
{
    const bool known = std::any_of(m_notes.begin(), m_notes.end(), [&](const Note& note) {
        return note.where.line == where.line && note.where.column == where.column &&
               note.text == text;
    });
    if (!known)
        m_notes.push_back({where, std::move(text)});
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
