#include "quillet/cif_text.h"

#include "quillet/unicode.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace quillet
{

namespace
{

struct Code {
    std::string_view code;
    std::string_view character;
};

// After two backslashes. A longer word stands before the one that it begins with.
constexpr Code words[] = {{"simeq", "\u2243"},    {"sim", "\u223C"},    {"infty", "\u221E"},
                          {"times", "\u00D7"},    {"square", "\u25A1"}, {"neq", "\u2260"},
                          {"rangle", "\u27E9"},   {"langle", "\u27E8"}, {"rightarrow", "\u2192"},
                          {"leftarrow", "\u2190"}};

// After two backslashes; the blank after these belongs to the code.
constexpr Code bonds[] = {{"ddb", "\u2248"}, {"db", "="}, {"tb", "\u2261"}};

// After one backslash.
constexpr Code letters[] = {{"%a", "\u00E5"}, {"%A", "\u00C5"}, {"?i", "\u0131"}, {"&s", "\u00DF"},
                            {"&S", "\u1E9E"}, {"/o", "\u00F8"}, {"/O", "\u00D8"}, {"/l", "\u0142"},
                            {"/L", "\u0141"}, {"/d", "\u0111"}, {"/D", "\u0110"}};

// After one backslash, before a letter; the combining mark that goes after it.
constexpr Code accents[] = {{"'", "\u0301"},  {"`", "\u0300"}, {"^", "\u0302"}, {",", "\u0327"},
                            {"\"", "\u0308"}, {"~", "\u0303"}, {";", "\u0328"}, {">", "\u030B"},
                            {"=", "\u0304"},  {".", "\u0307"}, {"<", "\u030C"}, {"(", "\u0306"}};

// After one backslash.
constexpr Code greek[] = {
    {"a", "\u03B1"}, {"b", "\u03B2"}, {"c", "\u03C7"}, {"d", "\u03B4"}, {"e", "\u03B5"},
    {"f", "\u03C6"}, {"g", "\u03B3"}, {"h", "\u03B7"}, {"i", "\u03B9"}, {"k", "\u03BA"},
    {"l", "\u03BB"}, {"m", "\u03BC"}, {"n", "\u03BD"}, {"o", "\u03BF"}, {"p", "\u03C0"},
    {"q", "\u03B8"}, {"r", "\u03C1"}, {"s", "\u03C3"}, {"t", "\u03C4"}, {"u", "\u03C5"},
    {"w", "\u03C9"}, {"x", "\u03BE"}, {"y", "\u03C8"}, {"z", "\u03B6"}, {"A", "\u0391"},
    {"B", "\u0392"}, {"C", "\u03A7"}, {"D", "\u0394"}, {"E", "\u0395"}, {"F", "\u03A6"},
    {"G", "\u0393"}, {"H", "\u0397"}, {"I", "\u0399"}, {"K", "\u039A"}, {"L", "\u039B"},
    {"M", "\u039C"}, {"N", "\u039D"}, {"O", "\u039F"}, {"P", "\u03A0"}, {"Q", "\u0398"},
    {"R", "\u03A1"}, {"S", "\u03A3"}, {"T", "\u03A4"}, {"U", "\u03A5"}, {"W", "\u03A9"},
    {"X", "\u039E"}, {"Y", "\u03A8"}, {"Z", "\u0396"}};

constexpr std::string_view elements[] = {"i", "b", "sup", "sub", "em", "strong"};

constexpr Code named_references[] = {
    {"&amp;", "&"}, {"&lt;", "<"}, {"&gt;", ">"}, {"&quot;", "\""}, {"&nbsp;", "\u00A0"}};

template<std::size_t Size>
const Code* find_code(const Code (&codes)[Size], std::string_view text)
{
    const auto found = std::find_if(std::begin(codes), std::end(codes),
                                    [&](const Code& code) { return begins_with(text, code.code); });
    return found == std::end(codes) ? nullptr : found;
}

// [-+]?[0-9./]*[-+]?
bool is_charge_or_exponent(std::string_view text)
{
    const auto is_sign = [](char c) { return c == '-' || c == '+'; };
    if (!text.empty() && is_sign(text.front()))
        text.remove_prefix(1);
    if (!text.empty() && is_sign(text.back()))
        text.remove_suffix(1);
    return std::all_of(text.begin(), text.end(),
                       [](char c) { return is_ascii_digit(c) || c == '.' || c == '/'; });
}

// The character that a numeric reference at the start of `text` stands for, and its length.
std::optional<std::pair<char32_t, std::size_t>> numeric_reference(std::string_view text)
{
    const std::size_t end = text.find(';');
    if (!begins_with(text, "&#") || end == std::string_view::npos || end > 10)
        return std::nullopt;
    std::string digits(text.substr(2, end - 2));
    const bool is_hex = !digits.empty() && (digits.front() == 'x' || digits.front() == 'X');
    if (is_hex)
        digits.erase(0, 1);
    const std::string_view allowed = is_hex ? "0123456789abcdefABCDEF" : "0123456789";
    if (digits.empty() || digits.find_first_not_of(allowed) != std::string::npos)
        return std::nullopt;
    const unsigned long c = std::stoul(digits, nullptr, is_hex ? 16 : 10);
    const bool is_character = (c >= 0x20 && c < 0xD800) || (c >= 0xE000 && c <= 0x10FFFF);
    if (!is_character)
        return std::nullopt;
    return std::pair{static_cast<char32_t>(c), end + 1};
}

} // namespace

// One left-to-right pass over one paragraph. Contents of ^...^ and ~...~ are passes of their own,
// so that tags cannot cross them.
class MarkedTextParser
{
public:
    explicit MarkedTextParser(std::string_view text, std::string_view forbidden_marks = {})
        : m_text(text),
          m_forbidden(forbidden_marks)
    {
    }

    std::vector<MarkedText::Piece> parse()
    {
        while (m_at < m_text.size()) {
            if (!(take_backslash_code() || take_script() || take_signs() || take_tag() ||
                  take_reference()))
                add_text(m_text.substr(m_at, 1), 1);
        }
        for (const std::size_t open : m_open)
            m_pieces[open] = {Type::text, m_open_as_written[open]};
        return std::move(m_pieces);
    }

private:
    using Piece = MarkedText::Piece;
    using Type = MarkedText::Piece::Type;

    std::string_view rest(std::size_t skip = 0) const
    {
        return m_text.substr(std::min(m_at + skip, m_text.size()));
    }

    // Adds `characters` in place of the next `size` bytes of the text.
    void add_text(std::string_view characters, std::size_t size)
    {
        if (m_pieces.empty() || m_pieces.back().type != Type::text)
            m_pieces.push_back({Type::text, {}});
        m_pieces.back().text += characters;
        m_at += size;
    }

    bool take_backslash_code()
    {
        if (m_text[m_at] != '\\')
            return false;
        if (begins_with(rest(), "\\\\"))
            return take_word();
        if (const Code* letter = find_code(letters, rest(1))) {
            add_text(letter->character, 3);
            return true;
        }
        if (begins_with(rest(1), "%")) {
            add_text("\u00B0", 2);
            return true;
        }
        if (take_accent())
            return true;
        if (const Code* letter = find_code(greek, rest(1))) {
            add_text(letter->character, 2);
            return true;
        }
        return false;
    }

    bool take_word()
    {
        if (const Code* bond = find_code(bonds, rest(2))) {
            const std::size_t size = 2 + bond->code.size();
            add_text(bond->character, size + (begins_with(rest(size), " ") ? 1 : 0));
            return true;
        }
        const Code* word = find_code(words, rest(2));
        if (word)
            add_text(word->character, 2 + word->code.size());
        return word != nullptr;
    }

    bool take_accent()
    {
        const Code* accent = find_code(accents, rest(1));
        if (!accent)
            return false;
        const std::string_view after = rest(2);
        std::string letter;
        std::size_t size = 0;
        if (!after.empty() && is_ascii_letter(after.front())) {
            letter = after.front();
            size = 1;
        } else if (begins_with(after, "\\")) {
            const Code* special = find_code(letters, after.substr(1));
            if (!special)
                return false;
            // The accent takes the place of the dot that the dotless i lacks.
            letter = special->code == "?i" ? "i" : special->character;
            size = 3;
        } else {
            return false;
        }
        add_text(to_nfc(letter + std::string(accent->character)), 2 + size);
        return true;
    }

    // Where the mark that opens at m_at closes; npos if it does not.
    std::size_t find_closing_mark(char mark) const
    {
        constexpr std::size_t farthest = 60;
        for (std::size_t i = m_at + 1; i < m_text.size() && i - m_at <= farthest + 1; ++i) {
            if (m_text[i] == '\\')
                ++i; // the mark may be an accent's
            else if (m_text[i] == mark && !(mark == '~' && m_text[i - 1] == '/'))
                return i;
        }
        return std::string_view::npos;
    }

    bool take_script()
    {
        const char mark = m_text[m_at];
        if ((mark != '^' && mark != '~') || m_forbidden.find(mark) != std::string_view::npos)
            return false;
        if (mark == '~' && m_at > 0 && m_text[m_at - 1] == '/')
            return false; // a home page's address
        const std::size_t end = find_closing_mark(mark);
        if (end == std::string_view::npos || end == m_at + 1)
            return false;
        const std::string_view content = m_text.substr(m_at + 1, end - m_at - 1);
        const char* const element = mark == '^' ? "sup" : "sub";
        m_pieces.push_back({Type::open, element});
        if (is_charge_or_exponent(content))
            add_charge(content);
        else
            add_nested(content, mark);
        m_pieces.push_back({Type::close, element});
        m_at = end + 1;
        return true;
    }

    void add_charge(std::string_view content)
    {
        std::string text;
        for (const char c : content)
            text += c == '-' ? std::string("\u2212") : std::string(1, c);
        m_pieces.push_back({Type::text, text});
    }

    void add_nested(std::string_view content, char mark)
    {
        const std::string forbidden = std::string(m_forbidden) + mark;
        auto pieces = MarkedTextParser(content, forbidden).parse();
        std::move(pieces.begin(), pieces.end(), std::back_inserter(m_pieces));
    }

    bool take_signs()
    {
        const std::size_t size = std::min(rest().find_first_not_of("+-"), rest().size());
        if (size == 0)
            return false;
        const std::string_view run = rest().substr(0, size);
        if (run == "---")
            add_text("\u2014", size);
        else if (run == "--")
            add_text("\u2013", size);
        else if (run == "+-")
            add_text("\u00B1", size);
        else if (run == "-+")
            add_text("\u2213", size);
        else
            add_text(run, size);
        return true;
    }

    bool take_tag()
    {
        const std::size_t end = rest().find('>');
        if (m_text[m_at] != '<' || end == std::string_view::npos)
            return false;
        const std::string written(rest().substr(0, end + 1));
        std::string name = ascii_lower(written.substr(1, end - 1));
        if (name == "br" || name == "br/" || name == "br /") {
            m_pieces.push_back({Type::line_break, {}});
            m_at += end + 1;
            return true;
        }
        const bool closes = begins_with(name, "/");
        if (closes)
            name.erase(0, 1);
        if (std::find(std::begin(elements), std::end(elements), name) == std::end(elements))
            return false;
        if (closes && (m_open.empty() || m_pieces[m_open.back()].text != name))
            return false;
        if (closes) {
            m_open.pop_back();
        } else {
            m_open.push_back(m_pieces.size());
            m_open_as_written.resize(m_pieces.size() + 1);
            m_open_as_written.back() = written;
        }
        m_pieces.push_back({closes ? Type::close : Type::open, name});
        m_at += end + 1;
        return true;
    }

    bool take_reference()
    {
        if (const Code* reference = find_code(named_references, rest())) {
            add_text(reference->character, reference->code.size());
            return true;
        }
        const auto reference = numeric_reference(rest());
        if (!reference)
            return false;
        std::string character;
        append_character(character, reference->first);
        add_text(character, reference->second);
        return true;
    }

    std::string_view m_text;
    std::string_view m_forbidden; // marks whose content this is
    std::size_t m_at = 0;
    std::vector<Piece> m_pieces;
    std::vector<std::size_t> m_open; // pieces that opened an element from a tag in the text
    std::vector<std::string> m_open_as_written; // by index of the piece
};

MarkedText MarkedText::from_cif(std::string_view text)
{
    MarkedText result;
    result.m_pieces = MarkedTextParser(collapse_blanks(text)).parse();
    return result;
}

Html MarkedText::html() const
{
    // The names are those of `elements`; a literal for each keeps Html closed to other text.
    const auto tag = [](const std::string& name, bool closes) {
        if (name == "i")
            return closes ? "</i>"_html : "<i>"_html;
        if (name == "b")
            return closes ? "</b>"_html : "<b>"_html;
        if (name == "sup")
            return closes ? "</sup>"_html : "<sup>"_html;
        if (name == "sub")
            return closes ? "</sub>"_html : "<sub>"_html;
        if (name == "em")
            return closes ? "</em>"_html : "<em>"_html;
        return closes ? "</strong>"_html : "<strong>"_html;
    };
    Html result;
    for (const Piece& piece : m_pieces) {
        switch (piece.type) {
        case Piece::Type::text:
            result += escape(piece.text);
            break;
        case Piece::Type::open:
            result += tag(piece.text, false);
            break;
        case Piece::Type::close:
            result += tag(piece.text, true);
            break;
        case Piece::Type::line_break:
            result += "<br>"_html;
            break;
        }
    }
    return result;
}

std::string MarkedText::plain() const
{
    std::string result;
    for (const Piece& piece : m_pieces) {
        if (piece.type == Piece::Type::text)
            result += piece.text;
        else if (piece.type == Piece::Type::line_break)
            result += ' ';
    }
    return to_nfc(collapse_blanks(result));
}

Html text_to_html(std::string_view text)
{
    return MarkedText::from_cif(text).html();
}

std::string text_to_plain(std::string_view text)
{
    return MarkedText::from_cif(text).plain();
}

std::vector<Html> text_to_paragraphs(std::string_view text)
{
    std::vector<Html> paragraphs;
    for (const std::string& part : split_paragraphs(text))
        paragraphs.push_back(text_to_html(part));
    return paragraphs;
}

std::vector<std::string> split_paragraphs(std::string_view text)
{
    std::vector<std::string> parts;
    std::string part;
    const auto end_part = [&] {
        if (!trimmed(part).empty())
            parts.push_back(part);
        part.clear();
    };
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        const std::string_view line = text.substr(0, end);
        text.remove_prefix(std::min(end + 1, text.size()));
        if (trimmed(line).empty())
            end_part();
        else
            part.append(part.empty() ? "" : "\n").append(line);
    }
    end_part();
    return parts;
}

std::string collapse_blanks(std::string_view text)
{
    std::string result;
    for (const char c : trimmed(text)) {
        if (!is_ascii_blank(c))
            result += c;
        else if (result.back() != ' ')
            result += ' ';
    }
    return result;
}

} // namespace quillet
