// HTML as a type of its own, so that text from a CIF cannot become markup by oversight: the only
// ways from characters to Html are escape(), literals of this program and templates.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace quillet
{

class Html
{
public:
    Html() = default;

    const std::string& str() const { return m_text; }
    bool empty() const { return m_text.empty(); }

    Html& operator+=(const Html& other)
    {
        m_text += other.m_text;
        return *this;
    }
    friend Html operator+(Html left, const Html& right) { return left += right; }
    friend bool operator==(const Html& left, const Html& right)
    {
        return left.m_text == right.m_text;
    }
    friend bool operator!=(const Html& left, const Html& right) { return !(left == right); }

private:
    explicit Html(std::string text) : m_text(std::move(text)) {}
    friend Html escape(std::string_view utf8);
    friend Html html_of_template(std::string utf8_html);
    friend Html operator""_html(const char* text, std::size_t size);

    std::string m_text; // UTF-8
};

// Plain text as HTML, safe in elements and in double-quoted attributes. Characters that neither
// HTML nor XML 1.0 allows are dropped; a carriage return becomes a line feed.
Html escape(std::string_view utf8);

// HTML written in this program's source.
inline Html operator""_html(const char* text, std::size_t size)
{
    return Html(std::string(text, size));
}

// HTML that an article template has made. Never for text from a CIF.
inline Html html_of_template(std::string utf8_html)
{
    return Html(std::move(utf8_html));
}

Html italic(const Html& content);
Html superscript(const Html& content);
Html subscript(const Html& content);

// With `separator` between; empty parts are left out.
Html join(const std::vector<Html>& parts, const Html& separator);

// All but ASCII as decimal character references. Bytes that are not UTF-8 become U+FFFD.
std::string to_ascii(std::string_view utf8_html);

} // namespace quillet
