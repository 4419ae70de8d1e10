#include "quillet/formula.h"

#include "quillet/cif_text.h"
#include "quillet/unicode.h"

#include <algorithm>
#include <gemmi/elem.hpp>
#include <string>
#include <vector>

namespace quillet
{

namespace
{

const Html minus_sign = escape("\u2212");

bool is_element(const std::string& symbol)
{
    return symbol == "T" || gemmi::find_element(symbol.c_str()) != gemmi::El::X;
}

std::vector<std::string> split_blanks(std::string_view text)
{
    std::vector<std::string> tokens;
    std::string token;
    for (const char c : text) {
        if (!is_ascii_blank(c)) {
            token += c;
        } else if (!token.empty()) {
            tokens.push_back(std::move(token));
            token.clear();
        }
    }
    if (!token.empty())
        tokens.push_back(std::move(token));
    return tokens;
}

// "12", "0.5"; at the start of `text`.
std::size_t size_of_count(std::string_view text)
{
    std::size_t size = 0;
    while (size < text.size() && (is_ascii_digit(text[size]) || text[size] == '.'))
        ++size;
    const auto points = std::count(text.begin(), text.begin() + static_cast<long>(size), '.');
    return points > 1 || text.substr(0, size) == "." ? 0 : size;
}

// A count, with its s.u. if it has one: "2", "5.87(2)".
bool is_count(std::string_view text)
{
    text.remove_prefix(size_of_count(text));
    if (text.empty())
        return true;
    const bool in_parentheses = text.size() > 2 && text.front() == '(' && text.back() == ')';
    return in_parentheses && std::all_of(text.begin() + 1, text.end() - 1, is_ascii_digit);
}

// "+", "2-", "1+", "+2": sign and number in either order. Empty Html if it is none.
Html format_charge(std::string_view text)
{
    if (text.empty())
        return {};
    char sign = 0;
    if (text.back() == '+' || text.back() == '-') {
        sign = text.back();
        text.remove_suffix(1);
    } else if (text.front() == '+' || text.front() == '-') {
        sign = text.front();
        text.remove_prefix(1);
    }
    if (sign == 0 || !std::all_of(text.begin(), text.end(), is_ascii_digit))
        return {};
    Html charge = text == "1" ? Html() : escape(text);
    charge += sign == '+' ? "+"_html : minus_sign;
    return superscript(charge);
}

struct Token {
    std::string symbol;
    std::string count;
};

// The letters at the start as an element's symbol, what follows as its count.
Token split_token(const std::string& text)
{
    std::size_t letters = 0;
    while (letters < text.size() && is_ascii_letter(text[letters]))
        ++letters;
    return {text.substr(0, letters), text.substr(letters)};
}

// "CL" of files in capital letters is "Cl", unless the formula has both letters as elements of
// their own and "CO" could be two of them.
bool settle_symbol(std::string& symbol, const std::vector<std::string>& tokens)
{
    if (symbol.empty() || symbol.size() > 2 || !is_ascii_upper(symbol.front()))
        return false;
    if (symbol.size() == 2 && is_ascii_upper(symbol.back())) {
        const auto stands_alone = [&](char letter) {
            return std::any_of(tokens.begin(), tokens.end(), [&](const std::string& token) {
                return split_token(token).symbol == std::string(1, letter);
            });
        };
        if (stands_alone(symbol.front()) && stands_alone(symbol.back()))
            return false;
        symbol.back() = static_cast<char>(symbol.back() - 'A' + 'a');
    }
    return is_element(symbol);
}

std::optional<Html> format_elements(const std::vector<std::string>& tokens)
{
    Html result;
    for (const std::string& text : tokens) {
        Token token = split_token(text);
        if (!settle_symbol(token.symbol, tokens) || !is_count(token.count))
            return std::nullopt;
        result += escape(token.symbol);
        if (!token.count.empty() && token.count != "1")
            result += subscript(escape(token.count));
    }
    return tokens.empty() ? std::nullopt : std::optional(result);
}

// Elements with a charge as the last token, if there is one.
std::optional<Html> format_ion(std::string_view text)
{
    auto tokens = split_blanks(text);
    const Html charge = tokens.size() > 1 ? format_charge(tokens.back()) : Html();
    if (!charge.empty())
        tokens.pop_back();
    auto result = format_elements(tokens);
    if (result)
        *result += charge;
    return result;
}

std::vector<std::string_view> split_moieties(std::string_view text)
{
    std::vector<std::string_view> parts;
    std::size_t start = 0;
    int depth = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '(')
            ++depth;
        else if (text[i] == ')')
            --depth;
        else if (text[i] == ',' && depth == 0) {
            parts.push_back(trimmed(text.substr(start, i - start)));
            start = i + 1;
        }
    }
    parts.push_back(trimmed(text.substr(start)));
    return parts;
}

// What may stand behind a closing parenthesis: "n", "0.5", then a charge.
std::optional<Html> format_tail(std::string_view text, bool& has_multiplier)
{
    Html result;
    const std::size_t size = text.substr(0, 1) == "n" ? 1 : size_of_count(text);
    const std::string_view after = text.substr(size);
    // "(C4 H4) 2+" has a charge, no multiplier.
    has_multiplier = size > 0 && (after.empty() || is_ascii_blank(after.front()));
    if (has_multiplier) {
        result += subscript(text.front() == 'n' ? italic("n"_html) : escape(text.substr(0, size)));
        text = after;
    }
    text = trimmed(text);
    if (text.empty())
        return result;
    const Html charge = format_charge(text);
    return charge.empty() ? std::nullopt : std::optional(result + charge);
}

std::optional<Html> format_moiety(std::string_view text)
{
    const std::size_t multiplier_size = size_of_count(text);
    const std::string_view multiplier = text.substr(0, multiplier_size);
    text = trimmed(text.substr(multiplier_size));
    Html result = multiplier == "1" ? Html() : escape(multiplier);
    if (text.empty() || text.front() != '(') {
        const auto ion = format_ion(text);
        return ion ? std::optional(result + *ion) : std::nullopt;
    }
    const std::size_t end = text.find(')');
    if (end == std::string_view::npos)
        return std::nullopt;
    bool has_multiplier = false;
    const auto inner = format_ion(text.substr(1, end - 1));
    const auto tail = format_tail(text.substr(end + 1), has_multiplier);
    if (!inner || !tail)
        return std::nullopt;
    return has_multiplier ? result + "("_html + *inner + ")"_html + *tail : result + *inner + *tail;
}

} // namespace

std::optional<Html> format_formula(std::string_view text)
{
    auto tokens = split_blanks(text);
    if (tokens.size() > 1) {
        const std::string last = tokens.back();
        const bool is_bare_number = std::all_of(last.begin(), last.end(), is_ascii_digit);
        if (is_bare_number) {
            tokens.pop_back();
            const auto elements = format_elements(tokens);
            if (!elements || last == "0")
                return elements;
            return *elements + format_charge(last + "+");
        }
    }
    return format_ion(text);
}

std::optional<Html> format_moiety_formula(std::string_view text)
{
    const std::string collapsed = collapse_blanks(text);
    Html result;
    for (const std::string_view part : split_moieties(collapsed)) {
        const auto moiety = format_moiety(part);
        if (!moiety)
            return std::nullopt;
        if (!result.empty())
            result += escape("\u00B7");
        result += *moiety;
    }
    return result;
}

} // namespace quillet
