#include "quillet/html.h"

#include "quillet/unicode.h"

namespace quillet
{

namespace
{

// XML 1.0 forbids the C0 controls and two code points; HTML reads references to the C1 controls
// as Windows-1252 characters.
bool is_allowed(char32_t c)
{
    if (c < 0x20)
        return c == '\t' || c == '\n';
    return !(c >= 0x7F && c < 0xA0) && c != 0xFFFE && c != 0xFFFF;
}

} // namespace

Html escape(std::string_view utf8)
{
    std::string result;
    result.reserve(utf8.size());
    while (!utf8.empty()) {
        const char32_t c = take_character(utf8);
        if (is_invalid_byte(c))
            append_character(result, U'\uFFFD');
        else if (c == '&')
            result += "&amp;";
        else if (c == '<')
            result += "&lt;";
        else if (c == '>')
            result += "&gt;";
        else if (c == '"')
            result += "&quot;";
        else if (c == '\r')
            result += '\n'; // HTML reads it so, too
        else if (is_allowed(c))
            append_character(result, c);
    }
    return Html(std::move(result));
}

Html italic(const Html& content)
{
    return "<i>"_html + content + "</i>"_html;
}

Html superscript(const Html& content)
{
    return "<sup>"_html + content + "</sup>"_html;
}

Html subscript(const Html& content)
{
    return "<sub>"_html + content + "</sub>"_html;
}

Html join(const std::vector<Html>& parts, const Html& separator)
{
    Html result;
    for (const Html& part : parts)
        result += (result.empty() || part.empty() ? Html() : separator) + part;
    return result;
}

std::string to_ascii(std::string_view utf8_html)
{
    std::string result;
    result.reserve(utf8_html.size());
    while (!utf8_html.empty()) {
        const char32_t c = take_character(utf8_html);
        if (c < 0x80) {
            result += static_cast<char>(c);
        } else {
            const char32_t shown = is_invalid_byte(c) ? U'\uFFFD' : c;
            result += "&#" + std::to_string(static_cast<unsigned long>(shown)) + ";";
        }
    }
    return result;
}

} // namespace quillet
