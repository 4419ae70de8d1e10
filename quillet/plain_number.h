// Numbers as they stand in files, with a point whatever the locale: programs that use the library
// may have set one with a comma.
#pragma once

#include <string>
#include <string_view>

namespace quillet
{

// "12", "1.5", ".5", "2e-3", with "-" before it or not. 0 for what does not begin with a number.
double parse_plain_number(std::string_view text);

// With exactly that many decimals, at most 17.
std::string plain_number(double value, int decimals);

} // namespace quillet
