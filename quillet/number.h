// Numbers of a CIF as decimal strings. No arithmetic here goes through floating point, so no digit
// of the file is changed by it.
#pragma once

#include "quillet/html.h"

#include <optional>
#include <string>
#include <string_view>

namespace quillet
{

// Digits with a decimal point somewhere: value = digits / 10^decimals.
struct Decimal {
    bool negative = false;
    std::string digits; // at least one before the decimal point
    int decimals = 0;   // how many of the digits stand after the point

    bool is_zero() const { return digits.find_first_not_of('0') == std::string::npos; }
    // With U+2212 as minus sign.
    std::string text() const;
    double value() const;
};

// A number as a CIF has it, in parts.
struct Number {
    char relation = 0; // '<', '>' or '~' before it, else 0
    Decimal decimal;
    std::string su; // digits in parentheses (standard uncertainty in the last digits), or empty
    std::optional<int> exponent;

    double value() const; // without regard to relation and s.u.
};

// Nothing if the text is not a number. A zero is put before a leading decimal point, a leading "+"
// is dropped; the Unicode minus sign counts as "-".
std::optional<Number> parse_number(std::string_view text);

// A whole number of at most six digits; nothing for other text.
std::optional<int> parse_integer(std::string_view text);

// The same number without an exponent: 1.2e-3 as 0.0012. Nothing if that would move the decimal
// point by more than 30 places.
std::optional<Number> without_exponent(const Number& number);

// How the digits of a number are printed. A number with an s.u. is always printed as given, and so
// is one with "<", ">" or "~".
struct NumberFormat {
    enum class Kind { as_given, without_su, rounded, trimmed, rounded_and_trimmed } kind;
    int decimals = 0;
};

constexpr NumberFormat as_given{NumberFormat::Kind::as_given, 0};
// Without the s.u., if there is one.
constexpr NumberFormat without_su{NumberFormat::Kind::without_su, 0};
// No zeros at the end after the decimal point.
constexpr NumberFormat trimmed_zeros{NumberFormat::Kind::trimmed, 0};
// At most that many decimals, half away from zero; digits are never added. If a number that is not
// zero would become zero, it is printed as given.
constexpr NumberFormat rounded(int decimals)
{
    return {NumberFormat::Kind::rounded, decimals};
}
constexpr NumberFormat rounded_and_trimmed(int decimals)
{
    return {NumberFormat::Kind::rounded_and_trimmed, decimals};
}

// "1.234 (5)" with a no-break space, "1.2 x 10<sup>-5</sup>" with the proper signs.
Html format_number(const Number& number, NumberFormat format);

// The text as a number in that format or, if it is not one, as CIF text.
Html format_number_text(std::string_view text, NumberFormat format);

// Rounded half away from zero to `decimals` (0 or more), filled up with zeros.
Decimal to_decimals(const Decimal& decimal, int decimals);

// Exact. Negative numbers are not needed and not allowed.
Decimal sum(const Decimal& a, const Decimal& b);
Decimal product(const Decimal& a, unsigned factor);
Decimal divided_by_thousand(const Decimal& a);

// A floating-point result of ours with exactly that many decimals.
Html format_computed(double value, int decimals);

// Value and separate standard uncertainty joined: the s.u. has two digits if they are at most 19,
// else one. Nothing if they do not fit together (no number, s.u. not positive).
std::optional<Number> with_su(const Number& number, const Number& su);

// "value +- error": the error rounded to two significant digits but never to more decimals than it
// is given with, the value to as many decimals. Nothing unless both are numbers without s.u. and
// relation, and the error is positive.
std::optional<Html> format_with_error(std::string_view value, std::string_view error);

} // namespace quillet
