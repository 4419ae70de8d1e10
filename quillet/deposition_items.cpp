#include "quillet/deposition_items.h"

#include "quillet/cif_text.h"
#include "quillet/unicode.h"

#include <algorithm>

namespace quillet
{

namespace
{

bool is_about(const Subject& subject, const Item& id)
{
    if (subject.id.empty())
        return subject.is_first;
    return id.is_given() ? id.text == subject.id : subject.is_first;
}

// The text word by word, each changed by `change`, which is also told whether it is the first.
template<typename Change>
std::string each_word(std::string_view text, Change change)
{
    std::string result;
    while (!text.empty()) {
        const auto start = std::min(text.find_first_not_of(' '), text.size());
        const auto end = std::min(text.find(' ', start), text.size());
        result += text.substr(0, start);
        result += change(text.substr(start, end - start), result.empty());
        text.remove_prefix(end);
    }
    return result;
}

} // namespace

std::vector<std::size_t> rows_about(const Subject& subject, const Rows& rows,
                                    std::string_view id_tag)
{
    std::vector<std::size_t> result;
    for (std::size_t row = 0; row < rows.size(); ++row) {
        if (is_about(subject, rows.item(row, id_tag)))
            result.push_back(row);
    }
    return result;
}

std::string id_tag_for(const Subject& subject, std::string_view tag)
{
    return std::string(tag.substr(0, tag.find('.') + 1)) + std::string(subject.id_name);
}

Values values_about(const Subject& subject, Tags tags)
{
    Values values;
    values.tag = *tags.begin();
    for (const std::string_view tag : tags) {
        const Rows rows = subject.block->rows(tag);
        for (const std::size_t row : rows_about(subject, rows, id_tag_for(subject, tag))) {
            const Item item = rows.item(row, tag);
            if (static_cast<int>(item.state) > static_cast<int>(values.state))
                values.state = item.state;
            const bool is_new = std::none_of(values.items.begin(), values.items.end(),
                                             [&](const Item& i) { return i.text == item.text; });
            if (item.is_given() && is_new)
                values.items.push_back(item);
        }
        if (!values.items.empty())
            break;
    }
    return values;
}

Item item_about(const Subject& subject, Tags tags)
{
    const Values values = values_about(subject, tags);
    if (!values.items.empty())
        return values.items.front();
    Item item;
    item.state = values.state;
    item.tag = values.tag;
    return item;
}

Cell text_cell(const Values& values)
{
    if (values.items.empty())
        return {values.state, {}, values.tag, false};
    Html html;
    for (const Item& item : values.items)
        html += (html.empty() ? Html() : "; "_html) + text_to_html(item.text);
    return given_cell(html, values.tag);
}

Html listed(const std::vector<Html>& parts)
{
    const bool has_commas = std::any_of(parts.begin(), parts.end(), [](const Html& part) {
        return part.str().find(", ") != std::string::npos;
    });
    return join(parts, has_commas ? "; "_html : ", "_html);
}

void add_new(std::vector<Html>& parts, const Html& part)
{
    if (std::find(parts.begin(), parts.end(), part) == parts.end())
        parts.push_back(part);
}

bool is_all_capitals(std::string_view text)
{
    return std::any_of(text.begin(), text.end(), is_ascii_upper) &&
           std::none_of(text.begin(), text.end(), is_ascii_lower);
}

std::string sentence_case(std::string_view text, const std::set<std::string_view>& kept)
{
    if (!is_all_capitals(text))
        return std::string(text);
    return each_word(text, [&](std::string_view word, bool is_first) {
        const auto end = word.find_last_not_of(",;.)");
        const std::string_view bare = word.substr(0, end == std::string_view::npos ? 0 : end + 1);
        if (kept.count(bare) > 0)
            return std::string(word);
        return is_first ? capitalized(ascii_lower(word)) : ascii_lower(word);
    });
}

std::string organism_name(std::string_view text)
{
    if (!is_all_capitals(text))
        return std::string(text);
    return each_word(text, [](std::string_view word, bool is_first) {
        // Strains and types: K12, HB8, A.
        const bool is_code =
            word.size() == 1 || std::any_of(word.begin(), word.end(), is_ascii_digit);
        if (is_code)
            return std::string(word);
        return is_first ? capitalized(ascii_lower(word)) : ascii_lower(word);
    });
}

Html format_range_text(std::string_view text, NumberFormat format)
{
    for (const std::string_view dash : {"-", "\u2013"}) {
        for (auto at = text.find(dash, 1); at < text.size(); at = text.find(dash, at + 1)) {
            const auto low = parse_number(text.substr(0, at));
            const auto high = parse_number(text.substr(at + dash.size()));
            if (!low || !high)
                continue;
            const Html first = format_number(*low, format);
            const Html last = format_number(*high, format);
            return first == last ? first : first + escape("\u2013") + last;
        }
    }
    return format_number_text(text, format);
}

} // namespace quillet
