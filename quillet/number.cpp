#include "quillet/number.h"

#include "quillet/cif_text.h"
#include "quillet/plain_number.h"
#include "quillet/unicode.h"

#include <algorithm>
#include <cstdlib>

namespace quillet
{

namespace
{

const std::string minus_sign = "\u2212";

std::string_view take_digits(std::string_view& text)
{
    const auto end = std::find_if_not(text.begin(), text.end(), is_ascii_digit);
    const auto digits = text.substr(0, static_cast<std::size_t>(end - text.begin()));
    text.remove_prefix(digits.size());
    return digits;
}

bool take(std::string_view& text, std::string_view token)
{
    if (text.substr(0, token.size()) != token)
        return false;
    text.remove_prefix(token.size());
    return true;
}

bool take_minus(std::string_view& text)
{
    return take(text, "-") || take(text, minus_sign);
}

// At least one digit somewhere.
std::optional<Decimal> take_decimal(std::string_view& text)
{
    Decimal decimal;
    decimal.negative = take_minus(text);
    if (!decimal.negative)
        take(text, "+");
    decimal.digits = take_digits(text);
    std::string_view fraction;
    if (take(text, "."))
        fraction = take_digits(text);
    if (decimal.digits.empty() && fraction.empty())
        return std::nullopt;
    if (decimal.digits.empty())
        decimal.digits = "0";
    decimal.digits += fraction;
    decimal.decimals = static_cast<int>(fraction.size());
    return decimal;
}

// False if what begins like an exponent is none.
bool take_exponent(std::string_view& text, std::optional<int>& exponent)
{
    if (!take(text, "e") && !take(text, "E"))
        return true;
    const bool negative = take_minus(text);
    if (!negative)
        take(text, "+");
    const std::string digits(take_digits(text));
    if (digits.empty() || digits.size() > 4)
        return false;
    exponent = negative ? -std::stoi(digits) : std::stoi(digits);
    return true;
}

std::string strip_zeros(const Decimal& decimal)
{
    std::string text = decimal.text();
    if (decimal.decimals == 0)
        return text;
    text.erase(text.find_last_not_of('0') + 1);
    if (text.back() == '.')
        text.pop_back();
    return text;
}

// Adds one to a string of digits.
void increment(std::string& digits)
{
    for (std::size_t i = digits.size(); i-- > 0;) {
        if (digits[i] != '9') {
            ++digits[i];
            return;
        }
        digits[i] = '0';
    }
    digits.insert(0, 1, '1');
}

// The rounded number; nothing if it has to be printed as given.
std::optional<Decimal> rounded_decimal(const Number& number, int decimals)
{
    if (!number.su.empty() || number.relation != 0)
        return std::nullopt;
    const auto plain = without_exponent(number);
    if (!plain || number.exponent.value_or(-1) >= 0)
        return std::nullopt;
    const Decimal& decimal = plain->decimal;
    if (decimal.decimals <= decimals)
        return number.exponent ? std::optional(decimal) : std::nullopt;
    const Decimal result = to_decimals(decimal, decimals);
    if (result.is_zero() && !decimal.is_zero())
        return std::nullopt;
    return result;
}

Html format_parts(const Number& number, const std::string& digits, bool with_uncertainty)
{
    Html result;
    if (number.relation != 0)
        result += escape(std::string_view(&number.relation, 1));
    result += escape(digits);
    if (with_uncertainty && !number.su.empty())
        result += escape("\u00A0(" + number.su + ")");
    if (number.exponent) {
        const int exponent = *number.exponent;
        const std::string power =
            (exponent < 0 ? minus_sign : std::string()) + std::to_string(std::abs(exponent));
        result += escape(" \u00D7 10") + superscript(escape(power));
    }
    return result;
}

// But for one before the decimal point.
Decimal without_leading_zeros(Decimal decimal)
{
    const auto first = decimal.digits.find_first_not_of('0');
    const std::size_t most = decimal.digits.size() - static_cast<std::size_t>(decimal.decimals) - 1;
    decimal.digits.erase(0, std::min(first, most));
    return decimal;
}

// Position of the first digit that is not 0, counted in decimals: 2 for 0.04, -1 for 25.
int first_significant_decimal(const Decimal& decimal)
{
    const auto first = decimal.digits.find_first_not_of('0');
    return decimal.decimals - static_cast<int>(decimal.digits.size() - first) + 1;
}

// The first two digits that count, as a number: 12 for 0.0123, 50 for 5.
int leading_two_digits(const Decimal& decimal)
{
    std::string digits = decimal.digits.substr(decimal.digits.find_first_not_of('0')) + "0";
    return std::stoi(digits.substr(0, 2));
}

// A number that is nothing but digits, a moderate exponent worked in.
std::optional<Number> plain_number(std::string_view text)
{
    constexpr int largest_exponent = 9;
    const auto number = parse_number(text);
    if (!number || !number->su.empty() || number->relation != 0 ||
        std::abs(number->exponent.value_or(0)) > largest_exponent)
        return std::nullopt;
    return without_exponent(*number);
}

} // namespace

std::string Decimal::text() const
{
    std::string result = digits;
    if (decimals > 0)
        result.insert(result.size() - static_cast<std::size_t>(decimals), 1, '.');
    return negative ? minus_sign + result : result;
}

double Decimal::value() const
{
    Decimal positive = *this;
    positive.negative = false;
    const double magnitude = parse_plain_number(positive.text());
    return negative ? -magnitude : magnitude;
}

double Number::value() const
{
    if (!exponent)
        return decimal.value();
    Decimal positive = decimal;
    positive.negative = false;
    const std::string text = positive.text() + "e" + std::to_string(*exponent);
    const double magnitude = parse_plain_number(text);
    return decimal.negative ? -magnitude : magnitude;
}

std::optional<Number> parse_number(std::string_view text)
{
    text = trimmed(text);
    Number number;
    if (!text.empty() && (text.front() == '<' || text.front() == '>' || text.front() == '~')) {
        number.relation = text.front();
        text = trimmed(text.substr(1));
    }
    const auto decimal = take_decimal(text);
    if (!decimal)
        return std::nullopt;
    number.decimal = *decimal;
    if (take(text, "(")) {
        number.su = take_digits(text);
        if (number.su.empty() || !take(text, ")"))
            return std::nullopt;
    }
    if (!take_exponent(text, number.exponent) || !text.empty())
        return std::nullopt;
    return number;
}

std::optional<Number> without_exponent(const Number& number)
{
    constexpr int farthest = 30;
    Number plain = number;
    if (!number.exponent)
        return plain;
    if (std::abs(*number.exponent) > farthest)
        return std::nullopt;
    plain.exponent.reset();
    plain.decimal.decimals -= *number.exponent;
    if (plain.decimal.decimals < 0) {
        const auto zeros = static_cast<std::size_t>(-plain.decimal.decimals);
        plain.decimal.digits.append(zeros, '0');
        if (!plain.su.empty())
            plain.su.append(zeros, '0');
        plain.decimal.decimals = 0;
    }
    const int missing = plain.decimal.decimals + 1 - static_cast<int>(plain.decimal.digits.size());
    if (missing > 0)
        plain.decimal.digits.insert(0, static_cast<std::size_t>(missing), '0');
    plain.decimal = without_leading_zeros(plain.decimal);
    return plain;
}

std::optional<int> parse_integer(std::string_view text)
{
    constexpr std::size_t most_digits = 6;
    const auto number = parse_number(text);
    if (!number || number->relation != 0 || number->decimal.decimals > 0 || number->exponent ||
        number->decimal.digits.size() > most_digits)
        return std::nullopt;
    const int value = std::stoi(number->decimal.digits);
    return number->decimal.negative ? -value : value;
}

Html format_number(const Number& number, NumberFormat format)
{
    using Kind = NumberFormat::Kind;
    const bool rounds = format.kind == Kind::rounded || format.kind == Kind::rounded_and_trimmed;
    const bool trims = number.su.empty() &&
                       (format.kind == Kind::trimmed || format.kind == Kind::rounded_and_trimmed);
    if (rounds) {
        if (const auto result = rounded_decimal(number, format.decimals))
            return escape(trims ? strip_zeros(*result) : result->text());
    }
    const std::string digits = trims ? strip_zeros(number.decimal) : number.decimal.text();
    return format_parts(number, digits, format.kind != Kind::without_su);
}

Html format_number_text(std::string_view text, NumberFormat format)
{
    const auto number = parse_number(text);
    return number ? format_number(*number, format) : text_to_html(text);
}

Decimal to_decimals(const Decimal& decimal, int decimals)
{
    Decimal result = decimal;
    result.decimals = decimals;
    if (decimals >= decimal.decimals) {
        result.digits.append(static_cast<std::size_t>(decimals - decimal.decimals), '0');
        return result;
    }
    const auto kept = result.digits.size() - static_cast<std::size_t>(decimal.decimals - decimals);
    const bool away_from_zero = result.digits[kept] >= '5';
    result.digits.resize(kept);
    if (away_from_zero)
        increment(result.digits);
    return result;
}

Decimal sum(const Decimal& a, const Decimal& b)
{
    const int decimals = std::max(a.decimals, b.decimals);
    std::string x = to_decimals(a, decimals).digits;
    std::string y = to_decimals(b, decimals).digits;
    const std::size_t size = std::max(x.size(), y.size()) + 1;
    x.insert(0, size - x.size(), '0');
    y.insert(0, size - y.size(), '0');
    Decimal result{false, std::string(size, '0'), decimals};
    int carry = 0;
    for (std::size_t i = size; i-- > 0;) {
        const int digit = (x[i] - '0') + (y[i] - '0') + carry;
        result.digits[i] = static_cast<char>('0' + digit % 10);
        carry = digit / 10;
    }
    return without_leading_zeros(result);
}

Decimal product(const Decimal& a, unsigned factor)
{
    Decimal result = a;
    unsigned long carry = 0;
    for (std::size_t i = result.digits.size(); i-- > 0;) {
        const unsigned long value =
            static_cast<unsigned long>(result.digits[i] - '0') * factor + carry;
        result.digits[i] = static_cast<char>('0' + value % 10);
        carry = value / 10;
    }
    if (carry > 0)
        result.digits.insert(0, std::to_string(carry));
    return without_leading_zeros(result);
}

Decimal divided_by_thousand(const Decimal& a)
{
    Decimal result = a;
    result.decimals += 3;
    const int missing = result.decimals + 1 - static_cast<int>(result.digits.size());
    if (missing > 0)
        result.digits.insert(0, static_cast<std::size_t>(missing), '0');
    return result;
}

Html format_computed(double value, int decimals)
{
    const std::string text = plain_number(value, decimals);
    const auto number = parse_number(text);
    return number ? format_number(*number, as_given) : escape(text);
}

std::optional<Number> with_su(const Number& number, const Number& su)
{
    const bool is_usable = !number.exponent && !su.exponent && su.su.empty() && su.relation == 0 &&
                           !su.decimal.negative && !su.decimal.is_zero();
    if (!is_usable)
        return std::nullopt;
    const int significant = leading_two_digits(su.decimal) <= 19 ? 2 : 1;
    const int decimals =
        std::max(0, std::min(first_significant_decimal(su.decimal) + significant - 1,
                             std::max(su.decimal.decimals, number.decimal.decimals)));
    Number result = number;
    result.decimal = to_decimals(number.decimal, decimals);
    const std::string rounded_su = to_decimals(su.decimal, decimals).digits;
    const auto first = rounded_su.find_first_not_of('0');
    if (first == std::string::npos)
        return std::nullopt;
    result.su = rounded_su.substr(first);
    return result;
}

std::optional<Html> format_with_error(std::string_view value, std::string_view error)
{
    const auto number = plain_number(value);
    const auto uncertainty = plain_number(error);
    if (!number || !uncertainty || uncertainty->decimal.negative || uncertainty->decimal.is_zero())
        return std::nullopt;
    const int decimals = std::clamp(first_significant_decimal(uncertainty->decimal) + 1, 0,
                                    uncertainty->decimal.decimals);
    return escape(to_decimals(number->decimal, decimals).text() + " \u00B1 " +
                  to_decimals(uncertainty->decimal, decimals).text());
}

} // namespace quillet
