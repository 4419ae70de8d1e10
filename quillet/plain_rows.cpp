#include "quillet/plain_rows.h"

#include <gemmi/cifdoc.hpp>

namespace quillet
{

namespace
{

// Of characters, as gemmi's grammar tells them apart. Ordinary ones do not include "_", which every
// keyword has.
bool is_ordinary(char c)
{
    return gemmi::cif::char_table(c) == 1;
}

bool is_blank(char c)
{
    return gemmi::cif::char_table(c) == 2;
}

// The closing quotation mark, which is followed by a blank; nullptr if it is not in this line.
const char* find_closing_mark(const char* at, const char* end, char mark)
{
    for (; at != end && *at != '\n'; ++at) {
        if (*at == mark && at + 1 != end && is_blank(at[1]))
            return at;
    }
    return nullptr;
}

bool read_plain_value(const char*& at, const char* end, std::string_view& value)
{
    while (at != end && is_blank(*at))
        ++at;
    if (at == end)
        return false;
    const char* start = at;
    if (*start == '\'' || *start == '"') {
        const char* const close = find_closing_mark(start + 1, end, *start);
        if (!close)
            return false;
        value = {start + 1, static_cast<std::size_t>(close - start - 1)};
        at = close + 1;
        return true;
    }
    while (at != end && is_ordinary(*at))
        ++at;
    value = {start, static_cast<std::size_t>(at - start)};
    return at != start && at != end && is_blank(*at);
}

} // namespace

bool read_plain_row(const char*& at, const char* end, std::vector<std::string_view>& row)
{
    const char* here = at;
    for (std::string_view& value : row) {
        if (!read_plain_value(here, end, value))
            return false;
    }
    at = here;
    return true;
}

} // namespace quillet
