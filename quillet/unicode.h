// UTF-8 and Unicode: the little that quillet needs beyond bytes.
#pragma once

#include <string>
#include <string_view>

namespace quillet
{

// Takes the first character off `utf8` (not empty) and returns it. A byte that begins no valid
// UTF-8 sequence is taken off alone and comes back as `invalid_byte + byte`.
char32_t take_character(std::string_view& utf8);

constexpr char32_t invalid_byte = 0x8000'0000;

// True for values that take_character() returns for bytes that are not UTF-8.
constexpr bool is_invalid_byte(char32_t c)
{
    return c >= invalid_byte;
}

// `c` must be a Unicode scalar value.
void append_character(std::string& utf8, char32_t c);

// The character that a byte of 0x80 or more stands for in Windows-1252. The five codes that
// Windows-1252 leaves open come back as the control characters of Latin-1.
char32_t from_windows_1252(unsigned char byte);

// Normalisation form C. Bytes that are not UTF-8 are left as they are.
std::string to_nfc(std::string_view utf8);

// What remains of a name when case, accents, blanks and punctuation are ignored: lower-case
// letters without accents. For comparing names, never for printing.
std::string letters_only(std::string_view utf8);

// Lower-case letters, with their accents, and digits. For comparing addresses.
std::string letters_and_digits_only(std::string_view utf8);

// First letter in upper case, all else as it is.
std::string capitalized(std::string_view utf8);

// Number of characters, each byte that is not UTF-8 counting as one.
std::size_t count_characters(std::string_view utf8);

// ASCII only; bytes of other characters are left as they are.
std::string ascii_lower(std::string_view text);

bool begins_with(std::string_view text, std::string_view prefix);

// Without blanks, tabs and line ends at both ends.
std::string_view trimmed(std::string_view text);

constexpr bool is_ascii_blank(char c)
{
    return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}
constexpr bool is_ascii_digit(char c)
{
    return c >= '0' && c <= '9';
}
constexpr bool is_ascii_upper(char c)
{
    return c >= 'A' && c <= 'Z';
}
constexpr bool is_ascii_lower(char c)
{
    return c >= 'a' && c <= 'z';
}
constexpr bool is_ascii_letter(char c)
{
    return is_ascii_upper(c) || is_ascii_lower(c);
}

} // namespace quillet
