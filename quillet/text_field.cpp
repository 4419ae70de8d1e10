#include "quillet/text_field.h"

#include "quillet/unicode.h"

#include <algorithm>
#include <vector>

namespace quillet
{

namespace
{

std::string_view without_blanks_at_end(std::string_view text)
{
    while (!text.empty() && is_ascii_blank(text.back()))
        text.remove_suffix(1);
    return text;
}

std::vector<std::string_view> split_lines(std::string_view text)
{
    std::vector<std::string_view> lines;
    std::size_t start = 0;
    for (;;) {
        const std::size_t end = text.find('\n', start);
        if (end == std::string_view::npos)
            break;
        lines.push_back(text.substr(start, end - start));
        start = end + 1;
    }
    lines.push_back(text.substr(start));
    return lines;
}

std::string join_lines(const std::vector<std::string_view>& lines, std::size_t first, bool folded,
                       std::size_t prefix_size)
{
    std::string result;
    for (std::size_t i = first; i < lines.size(); ++i) {
        std::string_view line = lines[i].substr(std::min(prefix_size, lines[i].size()));
        const std::string_view stripped = without_blanks_at_end(line);
        const bool goes_on = folded && !stripped.empty() && stripped.back() == '\\';
        if (goes_on) {
            result += stripped.substr(0, stripped.size() - 1);
            continue;
        }
        result += line;
        if (i + 1 < lines.size())
            result += '\n';
    }
    return result;
}

bool is_triple_quoted(std::string_view raw)
{
    return raw.size() >= 6 && raw[1] == raw[0] && raw[2] == raw[0];
}

} // namespace

std::string decode_value(std::string_view raw, bool is_text_field, CifVersion version)
{
    if (is_text_field && raw.size() >= 2) {
        raw.remove_prefix(1);
        raw.remove_suffix(1);
        if (!raw.empty() && raw.back() == '\n')
            raw.remove_suffix(1);
        return std::string(without_blanks_at_end(unfold_text_field(raw)));
    }
    if (raw.size() >= 2 && (raw.front() == '\'' || raw.front() == '"')) {
        const std::size_t size = version == CifVersion::cif_2_0 && is_triple_quoted(raw) ? 3 : 1;
        raw.remove_prefix(size);
        raw.remove_suffix(size);
    }
    return std::string(without_blanks_at_end(raw));
}

std::string unfold_text_field(std::string_view content)
{
    if (content.find('\\') == std::string_view::npos)
        return std::string(content);
    const auto lines = split_lines(content);
    std::string_view first = without_blanks_at_end(lines.front());
    if (first.empty() || first.back() != '\\' || lines.size() == 1)
        return std::string(content);
    first.remove_suffix(1);
    if (first.empty())
        return join_lines(lines, 1, true, 0);
    const bool folded = first.back() == '\\';
    if (folded)
        first.remove_suffix(1);
    const bool is_prefix = !first.empty() && first.find('\\') == std::string_view::npos &&
                           std::all_of(lines.begin() + 1, lines.end(), [&](std::string_view line) {
                               return begins_with(line, first);
                           });
    return is_prefix ? join_lines(lines, 1, folded, first.size()) : std::string(content);
}

} // namespace quillet
