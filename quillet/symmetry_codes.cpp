#include "quillet/symmetry_codes.h"

#include "quillet/plain_number.h"
#include "quillet/unicode.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace quillet
{

namespace
{

constexpr int denominator = 24;
const std::string minus_sign = "\u2212";

std::string without_blanks(std::string_view text)
{
    std::string result;
    for (const char c : text) {
        if (!is_ascii_blank(c) && c != '\'' && c != '"')
            result += c;
    }
    return result;
}

std::optional<int> take_integer(std::string_view& text)
{
    std::size_t size = 0;
    while (size < text.size() && is_ascii_digit(text[size]))
        ++size;
    constexpr std::size_t most_digits = 6;
    if (size == 0 || size > most_digits)
        return std::nullopt;
    const int value = std::stoi(std::string(text.substr(0, size)));
    text.remove_prefix(size);
    return value;
}

// "1/2", "3", "0.5", ".333" in 24ths. Decimal fractions must be close to one of them.
std::optional<int> take_constant(std::string_view& text)
{
    std::string number;
    while (!text.empty() && (is_ascii_digit(text.front()) || text.front() == '.')) {
        number += text.front();
        text.remove_prefix(1);
    }
    if (number.empty() || number == "." || std::count(number.begin(), number.end(), '.') > 1 ||
        number.size() > 8)
        return std::nullopt;
    double value = parse_plain_number(number);
    if (!text.empty() && text.front() == '/') {
        text.remove_prefix(1);
        const auto divisor = take_integer(text);
        if (!divisor || *divisor == 0)
            return std::nullopt;
        value /= *divisor;
    }
    constexpr double largest = 100;
    constexpr double tolerance = 0.05; // in 24ths: 0.333 is a third
    if (value > largest)
        return std::nullopt;
    const double parts = value * denominator;
    const int rounded = static_cast<int>(std::lround(parts));
    return std::abs(parts - rounded) > tolerance ? std::nullopt : std::optional(rounded);
}

char axis_letter(char c)
{
    const char lower = is_ascii_upper(c) ? static_cast<char>(c - 'A' + 'a') : c;
    return lower == 'x' || lower == 'y' || lower == 'z' ? lower : '\0';
}

std::optional<SymmetryOperation::Axis> parse_axis(std::string_view text)
{
    SymmetryOperation::Axis axis;
    bool is_first = true;
    while (!text.empty()) {
        const bool negative = text.front() == '-';
        if (negative || text.front() == '+')
            text.remove_prefix(1);
        else if (!is_first)
            return std::nullopt;
        is_first = false;
        if (text.empty())
            return std::nullopt;
        if (const char letter = axis_letter(text.front())) {
            if (negative || !axis.variables.empty())
                axis.variables += negative ? '-' : '+';
            axis.variables += letter;
            text.remove_prefix(1);
            continue;
        }
        const auto constant = take_constant(text);
        if (!constant)
            return std::nullopt;
        axis.constant += negative ? -*constant : *constant;
    }
    return is_first ? std::nullopt : std::optional(axis);
}

Html format_constant(int parts, bool needs_sign)
{
    const int divisor = std::gcd(parts, denominator);
    const int numerator = std::abs(parts) / divisor;
    std::string text = parts < 0 ? minus_sign : needs_sign ? "+" : "";
    text += std::to_string(numerator);
    if (divisor != denominator)
        text += "/" + std::to_string(denominator / divisor);
    return escape(text);
}

Html format_axis(const SymmetryOperation::Axis& axis)
{
    Html html;
    for (const char c : axis.variables) {
        if (c == '-')
            html += escape(minus_sign);
        else if (c == '+')
            html += "+"_html;
        else
            html += italic(escape(std::string_view(&c, 1)));
    }
    if (axis.constant != 0 || html.empty())
        html += format_constant(axis.constant, !html.empty());
    return html;
}

} // namespace

bool SymmetryOperation::is_identity() const
{
    return axes[0] == Axis{"x", 0} && axes[1] == Axis{"y", 0} && axes[2] == Axis{"z", 0};
}

Html SymmetryOperation::html() const
{
    return format_axis(axes[0]) + ", "_html + format_axis(axes[1]) + ", "_html +
           format_axis(axes[2]);
}

std::optional<SymmetryOperation> parse_symmetry_operation(std::string_view text)
{
    constexpr std::size_t longest = 100;
    const std::string compact = without_blanks(text);
    if (compact.size() > longest)
        return std::nullopt;
    std::string_view rest = compact;
    SymmetryOperation operation;
    for (std::size_t i = 0; i < 3; ++i) {
        const std::size_t end = std::min(rest.find(','), rest.size());
        const auto axis = parse_axis(rest.substr(0, end));
        const bool is_last = end == rest.size();
        if (!axis || is_last != (i == 2))
            return std::nullopt;
        operation.axes[i] = *axis;
        rest.remove_prefix(is_last ? end : end + 1);
    }
    return operation;
}

std::string lower_roman_numeral(std::size_t number)
{
    static constexpr std::pair<std::size_t, const char*> digits[] = {
        {1000, "m"}, {900, "cm"}, {500, "d"}, {400, "cd"}, {100, "c"}, {90, "xc"}, {50, "l"},
        {40, "xl"},  {10, "x"},   {9, "ix"},  {5, "v"},    {4, "iv"},  {1, "i"}};
    std::string numeral;
    for (const auto& [value, letters] : digits) {
        for (; number >= value; number -= value)
            numeral += letters;
    }
    return numeral;
}

SymmetryCodes::SymmetryCodes(const Block& block, Notes& notes) : m_notes(notes)
{
    const Tags names = {"_space_group_symop_operation_xyz", "_symmetry_equiv_pos_as_xyz"};
    const Rows rows = block.rows(names);
    for (std::size_t row = 0; row < rows.size(); ++row) {
        const Item id = rows.item(row, {"_space_group_symop_id", "_symmetry_equiv_pos_site_id"});
        const Item operation = rows.item(row, names);
        m_operations.emplace_back(id.is_given() ? std::string(id.text) : std::to_string(row + 1),
                                  parse_symmetry_operation(operation.text));
    }
}

Html SymmetryCodes::superscript_of(const Item& code)
{
    if (!code.is_given() || code.text == "1_555" || code.text == "1")
        return {};
    const auto operation = operation_of(code.text);
    if (operation && operation->is_identity())
        return {};
    const Html explanation = operation ? operation->html() : escape(code.text);
    const auto known = std::find(m_explanations.begin(), m_explanations.end(), explanation);
    const auto index = static_cast<std::size_t>(known - m_explanations.begin());
    if (known == m_explanations.end()) {
        m_explanations.push_back(explanation);
        if (!operation)
            m_notes.add(code.where(), "Symmetry code \u201c" + std::string(code.text) +
                                          "\u201d could not be resolved and is printed as it "
                                          "stands.");
    }
    m_used.insert(index);
    return superscript(escape(lower_roman_numeral(index + 1)));
}

Html SymmetryCodes::take_footnote()
{
    Html footnote;
    for (const std::size_t index : m_used) {
        footnote += (footnote.empty() ? Html() : "; "_html) + "("_html +
                    escape(lower_roman_numeral(index + 1)) + ") "_html + m_explanations[index];
    }
    m_used.clear();
    return footnote;
}

// Translations are added to the operation as the file has it: lists need not be reduced to the
// unit cell.
std::optional<SymmetryOperation> SymmetryCodes::operation_of(std::string_view code) const
{
    const std::size_t underscore = std::min(code.find('_'), code.size());
    const std::string_view number = code.substr(0, underscore);
    const std::string_view translation =
        underscore < code.size() ? code.substr(underscore + 1) : std::string_view("555");
    const bool is_translation = translation.size() == 3 &&
                                std::all_of(translation.begin(), translation.end(), is_ascii_digit);
    const auto found =
        std::find_if(m_operations.begin(), m_operations.end(),
                     [&](const auto& operation) { return operation.first == number; });
    if (!is_translation || found == m_operations.end() || !found->second)
        return std::nullopt;
    SymmetryOperation operation = *found->second;
    for (std::size_t i = 0; i < 3; ++i)
        operation.axes[i].constant += (translation[i] - '5') * denominator;
    return operation;
}

} // namespace quillet
