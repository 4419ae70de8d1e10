#include "quillet/unicode.h"

#include <array>
#include <cstdlib>
#include <utf8proc.h>

namespace quillet
{

namespace
{

const utf8proc_uint8_t* bytes_of(std::string_view text)
{
    return reinterpret_cast<const utf8proc_uint8_t*>(text.data());
}

// Valid UTF-8 only; on failure (there is none but lack of memory) the text comes back unchanged.
std::string mapped(std::string_view utf8, int options)
{
    utf8proc_uint8_t* out = nullptr;
    const auto size = utf8proc_map(bytes_of(utf8), static_cast<utf8proc_ssize_t>(utf8.size()), &out,
                                   static_cast<utf8proc_option_t>(options));
    if (size < 0)
        return std::string(utf8);
    std::string result(reinterpret_cast<const char*>(out), static_cast<std::size_t>(size));
    std::free(out); // utf8proc allocates with malloc
    return result;
}

template<typename Keep>
std::string filtered(const std::string& utf8, Keep keep)
{
    std::string result;
    std::string_view rest = utf8;
    while (!rest.empty()) {
        const char32_t c = take_character(rest);
        if (!is_invalid_byte(c) && keep(utf8proc_category(static_cast<utf8proc_int32_t>(c))))
            append_character(result, c);
    }
    return result;
}

bool is_letter(utf8proc_category_t category)
{
    return category >= UTF8PROC_CATEGORY_LU && category <= UTF8PROC_CATEGORY_LO;
}

} // namespace

char32_t take_character(std::string_view& utf8)
{
    utf8proc_int32_t c = -1;
    const auto size =
        utf8proc_iterate(bytes_of(utf8), static_cast<utf8proc_ssize_t>(utf8.size()), &c);
    if (size <= 0) {
        const auto byte = static_cast<unsigned char>(utf8.front());
        utf8.remove_prefix(1);
        return invalid_byte + byte;
    }
    utf8.remove_prefix(static_cast<std::size_t>(size));
    return static_cast<char32_t>(c);
}

void append_character(std::string& utf8, char32_t c)
{
    std::array<utf8proc_uint8_t, 4> buffer{};
    const auto size = utf8proc_encode_char(static_cast<utf8proc_int32_t>(c), buffer.data());
    utf8.append(reinterpret_cast<const char*>(buffer.data()), static_cast<std::size_t>(size));
}

char32_t from_windows_1252(unsigned char byte)
{
    static constexpr std::array<char16_t, 32> upper_controls = {
        0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
        0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
        0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};
    if (byte >= 0x80 && byte < 0xA0)
        return upper_controls[byte - 0x80U];
    return byte;
}

std::string to_nfc(std::string_view utf8)
{
    return mapped(utf8, UTF8PROC_STABLE | UTF8PROC_COMPOSE);
}

std::string letters_only(std::string_view utf8)
{
    return filtered(
        mapped(utf8, UTF8PROC_STABLE | UTF8PROC_DECOMPOSE | UTF8PROC_CASEFOLD | UTF8PROC_STRIPMARK),
        is_letter);
}

std::string letters_and_digits_only(std::string_view utf8)
{
    return filtered(mapped(utf8, UTF8PROC_STABLE | UTF8PROC_COMPOSE | UTF8PROC_CASEFOLD),
                    [](utf8proc_category_t category) {
                        return is_letter(category) || category == UTF8PROC_CATEGORY_ND;
                    });
}

std::string capitalized(std::string_view utf8)
{
    if (utf8.empty())
        return {};
    std::string_view rest = utf8;
    const char32_t first = take_character(rest);
    if (is_invalid_byte(first))
        return std::string(utf8);
    std::string result;
    append_character(result,
                     static_cast<char32_t>(utf8proc_toupper(static_cast<utf8proc_int32_t>(first))));
    return result.append(rest);
}

std::size_t count_characters(std::string_view utf8)
{
    std::size_t count = 0;
    while (!utf8.empty()) {
        take_character(utf8);
        ++count;
    }
    return count;
}

std::string ascii_lower(std::string_view text)
{
    std::string result(text);
    for (char& c : result) {
        if (is_ascii_upper(c))
            c = static_cast<char>(c - 'A' + 'a');
    }
    return result;
}

bool begins_with(std::string_view text, std::string_view prefix)
{
    return text.substr(0, prefix.size()) == prefix;
}

std::string_view trimmed(std::string_view text)
{
    while (!text.empty() && is_ascii_blank(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && is_ascii_blank(text.back()))
        text.remove_suffix(1);
    return text;
}

} // namespace quillet
