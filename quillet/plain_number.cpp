#include "quillet/plain_number.h"

#include <charconv>
#include <gemmi/atof.hpp>

namespace quillet
{

double parse_plain_number(std::string_view text)
{
    double value = 0;
    gemmi::fast_from_chars(text.data(), text.data() + text.size(), value);
    return value;
}

std::string plain_number(double value, int decimals)
{
    char buffer[400]; // the largest double has 309 digits
    const auto end =
        std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::fixed, decimals);
    return {buffer, end.ptr};
}

} // namespace quillet
