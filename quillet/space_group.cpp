#include "quillet/space_group.h"

#include "quillet/cif_text.h"
#include "quillet/unicode.h"

#include <algorithm>
#include <gemmi/symmetry.hpp>
#include <vector>

namespace quillet
{

namespace
{

// "P 21/n" and ":1" of "P 21/n :1".
struct Symbol {
    std::string text;
    std::string extension;
};

std::string without_blanks(std::string_view text)
{
    std::string result(text);
    result.erase(std::remove_if(result.begin(), result.end(), is_ascii_blank), result.end());
    return result;
}

// Marks that some files put around the second digit of a screw axis. An underscore anywhere else
// stays: "P_1" means P -1, and dropping it would give P 1.
std::string without_marks(std::string_view text)
{
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        const bool is_mark = c == '\'' || c == '"' || c == '~' || c == '(' || c == ')';
        const bool between_digits = i > 0 && i + 1 < text.size() && is_ascii_digit(text[i - 1]) &&
                                    is_ascii_digit(text[i + 1]);
        if (!is_mark && !(c == '_' && between_digits))
            result += c;
    }
    return std::string(trimmed(result));
}

Symbol split_extension(std::string text)
{
    Symbol symbol;
    const auto colon = text.find(':');
    if (colon != std::string::npos) {
        symbol.extension = ":" + without_blanks(text.substr(colon + 1));
        symbol.text = trimmed(text.substr(0, colon));
        return symbol;
    }
    // "R -3 m H", "F d -3 m S", as written by some programs.
    constexpr std::string_view letters = "HRSZ";
    constexpr std::string_view extensions[] = {":H", ":R", ":1", ":2"};
    const auto size = text.size();
    if (size > 3 && text[size - 2] == ' ' && letters.find(text.back()) != std::string::npos) {
        symbol.extension = extensions[letters.find(text.back())];
        text.resize(size - 2);
    }
    symbol.text = trimmed(text);
    return symbol;
}

std::vector<std::string> split_tokens(std::string_view text)
{
    std::vector<std::string> tokens(1);
    for (const char c : text) {
        if (!is_ascii_blank(c))
            tokens.back() += c;
        else if (!tokens.back().empty())
            tokens.emplace_back();
    }
    if (tokens.back().empty())
        tokens.pop_back();
    return tokens;
}

// "P 1 21/c 1" is P21/c.
void shorten_monoclinic(std::vector<std::string>& tokens)
{
    if (tokens.size() == 4 && tokens[1] == "1" && tokens[3] == "1" && tokens[2] != "1" &&
        tokens[2] != "-1")
        tokens = {tokens[0], tokens[2]};
}

bool is_screw_axis(char first, char second)
{
    const bool is_axis = first == '2' || first == '3' || first == '4' || first == '6';
    return is_axis && second >= '1' && second < first;
}

// Letters italic (neighbours in one <i>), the second digit of a screw axis as subscript,
// rotoinversions with a bar over the digit: the combining overline, which word processors keep.
class SymbolFormatter
{
public:
    Html format(const std::vector<std::string>& tokens)
    {
        for (const std::string& token : tokens)
            add(token);
        end_letters();
        return m_result;
    }

private:
    void add(std::string_view token)
    {
        for (std::size_t i = 0; i < token.size(); ++i) {
            const char c = token[i];
            if (is_ascii_letter(c)) {
                m_letters += c;
                continue;
            }
            end_letters();
            const char next = i + 1 < token.size() ? token[i + 1] : '\0';
            const bool is_bar = c == '-' && is_ascii_digit(next);
            const bool is_screw = is_screw_axis(c, next);
            if (is_bar)
                m_result += escape(std::string(1, next) + "\u0305");
            else
                m_result += escape(std::string_view(&c, 1));
            if (is_screw)
                m_result += subscript(escape(std::string_view(&next, 1)));
            if (is_bar || is_screw)
                ++i;
        }
    }

    void end_letters()
    {
        if (!m_letters.empty())
            m_result += italic(escape(m_letters));
        m_letters.clear();
    }

    Html m_result;
    std::string m_letters;
};

// A lattice letter, then symmetry elements.
bool is_well_formed(const std::vector<std::string>& tokens)
{
    constexpr std::string_view lattices = "PABCIFRHS";
    constexpr std::string_view allowed = "0123456789/-abcdemn";
    return tokens.size() > 1 && tokens.front().size() == 1 &&
           lattices.find(tokens.front().front()) != std::string_view::npos &&
           std::all_of(tokens.begin() + 1, tokens.end(), [&](const std::string& token) {
               return token.find_first_not_of(allowed) == std::string::npos;
           });
}

// "212121" in one token: which digits make a screw axis is for the table of groups to say.
bool is_ambiguous(std::string_view token)
{
    for (std::size_t i = 0; i + 2 < token.size(); ++i) {
        if (is_ascii_digit(token[i]) && is_ascii_digit(token[i + 1]) &&
            is_ascii_digit(token[i + 2]))
            return true;
    }
    return false;
}

// gemmi reads "_" as a blank, which would make P 1 of "P_1".
const gemmi::SpaceGroup* look_up(const Symbol& symbol)
{
    if (symbol.text.find('_') != std::string::npos)
        return nullptr;
    return gemmi::find_spacegroup_by_name(symbol.text + symbol.extension);
}

Html format_tokens(std::vector<std::string> tokens, const std::string& extension)
{
    shorten_monoclinic(tokens);
    return SymbolFormatter().format(tokens) + escape(extension);
}

SpaceGroup known_group(const gemmi::SpaceGroup& group)
{
    SpaceGroup result;
    result.crystal_system = group.crystal_system_str();
    result.number = group.number;
    result.is_centrosymmetric = group.is_centrosymmetric();
    return result;
}

SpaceGroup reference_symbol(const gemmi::SpaceGroup* group)
{
    if (!group)
        return {};
    SpaceGroup result = known_group(*group);
    result.symbol = format_tokens(split_tokens(group->hm), {});
    return result;
}

} // namespace

SpaceGroup space_group_from_symbol(std::string_view text)
{
    const Symbol symbol = split_extension(without_marks(text));
    const gemmi::SpaceGroup* group = look_up(symbol);
    SpaceGroup result = group ? known_group(*group) : SpaceGroup();

    auto tokens = split_tokens(symbol.text);
    const bool needs_splitting =
        tokens.size() == 1 || std::any_of(tokens.begin(), tokens.end(), is_ambiguous);
    if (needs_splitting && group) {
        const std::string lattice(1, symbol.text.front()); // H stays H
        tokens = split_tokens(group->hm);
        tokens.front() = lattice;
    }
    if (is_well_formed(tokens) && !(needs_splitting && !group))
        result.symbol = format_tokens(tokens, symbol.extension);
    else if (!symbol.text.empty())
        result.symbol = italic(escape(symbol.text.substr(0, 1))) +
                        escape(symbol.text.substr(1) + symbol.extension);
    return result;
}

// By comparison with the tabulated symbols: gemmi's parser of Hall symbols reads out of bounds on
// some that are wrong ("C13 13 22").
SpaceGroup space_group_from_hall(std::string_view text)
{
    const std::string wanted = ascii_lower(collapse_blanks(text));
    for (const gemmi::SpaceGroup& group : gemmi::spacegroup_tables::main) {
        if (ascii_lower(group.hall) != wanted)
            continue;
        SpaceGroup result = reference_symbol(&group);
        if (group.ext != 0)
            result.symbol += ":"_html + escape(std::string_view(&group.ext, 1));
        return result;
    }
    return {};
}

SpaceGroup space_group_from_number(int number)
{
    return number > 0 ? reference_symbol(gemmi::find_spacegroup_by_number(number)) : SpaceGroup();
}

} // namespace quillet
