#include "quillet/cells.h"

#include "quillet/cif_text.h"

#include <algorithm>

namespace quillet
{

namespace
{

const Html no_break_space = escape("\u00A0");
const Html en_dash = escape("\u2013");

// The value of the item that goes by the same name with a suffix, in the same row.
Item companion(const Block& block, const Item& item, const char* suffix)
{
    if (!item.column)
        return {};
    const Column* column = block.find(item.column->tag + suffix);
    if (!column || column->loop != item.column->loop)
        return {};
    return block.rows(column->tag).item(item.row, column->tag);
}

} // namespace

Html Cell::shown() const
{
    if (!html.empty())
        return html;
    return state == State::unknown ? "?"_html : en_dash;
}

Cell given_cell(Html html, std::string_view item)
{
    return {State::given, std::move(html), item, true};
}

Cell unknown_cell(std::string_view item)
{
    return {State::unknown, {}, item, false};
}

Cell not_applicable_cell(std::string_view item)
{
    return {State::not_applicable, {}, item, false};
}

Cell text_cell(const Item& item)
{
    if (!item.is_given())
        return {item.state, {}, item.tag, false};
    return given_cell(text_to_html(item.text), item.tag);
}

Cell number_cell(const Block& block, const Item& item, NumberFormat format)
{
    if (!item.is_given())
        return {item.state, {}, item.tag, false};
    const auto number = number_of(block, item);
    return number ? given_cell(format_number(*number, format), item.tag) : text_cell(item);
}

Cell number_cell(const Block& block, Tags tags, NumberFormat format)
{
    return number_cell(block, block.item(tags), format);
}

std::optional<Number> number_of(const Block& block, const Item& item)
{
    auto number = parse_number(item.text);
    if (!number || !number->su.empty())
        return number;
    for (const char* suffix : {"_su", "_esd"}) {
        const auto su = parse_number(companion(block, item, suffix).text);
        if (const auto joined_number = su ? with_su(*number, *su) : std::nullopt)
            return joined_number;
    }
    return number;
}

Cell joined(const std::vector<Cell>& parts, const Html& separator)
{
    Cell result;
    result.item = parts.empty() ? std::string_view() : parts.front().item;
    for (const Cell& part : parts) {
        if (static_cast<int>(part.state) > static_cast<int>(result.state))
            result.state = part.state;
        result.is_reason |= part.is_reason;
    }
    if (result.state == State::unknown)
        return result;
    for (const Cell& part : parts) {
        if (!result.html.empty())
            result.html += separator;
        result.html += part.shown();
    }
    return result;
}

Cell range_cell(const Cell& low, const Cell& high)
{
    return joined({low, high}, en_dash);
}

Cell with_shell(Cell overall, const Cell& shell)
{
    if (shell.state != State::given)
        return overall;
    overall.html = overall.shown() + no_break_space + "("_html + shell.html + ")"_html;
    overall.state = State::given;
    overall.is_reason = true;
    return overall;
}

const TableRow* Table::find(std::string_view key) const
{
    const auto row = std::find_if(rows.begin(), rows.end(),
                                  [&](const TableRow& candidate) { return candidate.key == key; });
    return row == rows.end() ? nullptr : &*row;
}

bool Table::has_value() const
{
    return std::any_of(rows.begin(), rows.end(), [](const TableRow& row) {
        return row.is_printed && std::any_of(row.cells.begin(), row.cells.end(),
                                             [](const Cell& c) { return c.state == State::given; });
    });
}

void report_missing_rows(const Table& table, std::string_view table_name, Notes& notes)
{
    std::string items;
    for (const TableRow& row : table.rows) {
        const bool is_missing =
            !row.is_printed && std::all_of(row.cells.begin(), row.cells.end(), [](const Cell& c) {
                return c.state == State::unknown && c.html.empty();
            });
        const auto named = std::find_if(row.cells.begin(), row.cells.end(),
                                        [](const Cell& c) { return !c.item.empty(); });
        if (is_missing && named != row.cells.end())
            items += (items.empty() ? "" : ", ") + std::string(named->item);
    }
    if (!items.empty())
        notes.add({},
                  "Rows left out of the table \u201c" + std::string(table_name) +
                      "\u201d because the CIF has no value for them: " + items + ".",
                  Note::Severity::remark);
}

} // namespace quillet
