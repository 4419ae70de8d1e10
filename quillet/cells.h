// Cells of the article's tables: how data items become what is printed.
#pragma once

#include "quillet/document.h"
#include "quillet/html.h"
#include "quillet/number.h"

#include <optional>
#include <set>
#include <string_view>
#include <vector>

namespace quillet
{

struct Cell {
    State state = State::unknown;
    Html html;             // what is printed of a value, or of a composite cell
    std::string_view item; // data name asked for first, for messages
    // An optional row is printed when one of its cells is a reason to: normally any value.
    bool is_reason = false;

    // Never empty: "?" for what is unknown, an en dash for what is not applicable.
    Html shown() const;
};

// A cell with that content.
Cell given_cell(Html html, std::string_view item = {});

// A cell that is unknown but names the item that would fill it; none if nobody misses the value.
Cell unknown_cell(std::string_view item);

// An en dash.
Cell not_applicable_cell(std::string_view item);

// Text on one line, marks converted.
Cell text_cell(const Item& item);

// The item as a number in that format, or as text if it is none. A separate item for the standard
// uncertainty (the same name with _su or _esd) is taken into account.
Cell number_cell(const Block& block, const Item& item, NumberFormat format);
Cell number_cell(const Block& block, Tags tags, NumberFormat format);

// The number of an item with the s.u. of its companion item; nothing if it is none.
std::optional<Number> number_of(const Block& block, const Item& item);

// Each part by its own state, with `separator` between; unknown if all parts are.
Cell joined(const std::vector<Cell>& parts, const Html& separator);

// "low-high" with an en dash.
Cell range_cell(const Cell& low, const Cell& high);

// The overall value and, in parentheses, that of the outer shell, if there is one.
Cell with_shell(Cell overall, const Cell& shell);

enum class RowClass { mandatory, optional };

// One row of a table whose columns are of type Column: `make` fills the cell of one column.
template<typename Column>
struct RowSpec {
    std::string_view key; // of the quantity, as in `data-row`
    RowClass row_class;
    Cell (*make)(const Column& column);
};

struct TableRow {
    std::string_view key;
    std::vector<Cell> cells;
    bool is_printed = true;
};

// A table with a column for each thing compared.
struct Table {
    std::vector<Html> heads; // of the columns; empty if the table needs no heading row
    std::vector<TableRow> rows;

    const TableRow* find(std::string_view key) const;
    // Whether any cell holds a value.
    bool has_value() const;
};

// One note that names the rows left out of the table because nothing in the CIF fills them.
void report_missing_rows(const Table& table, std::string_view table_name, Notes& notes);

template<typename Column, std::size_t Size>
Table make_table(const RowSpec<Column> (&specs)[Size], const std::vector<Column>& columns)
{
    Table table;
    for (const RowSpec<Column>& spec : specs) {
        TableRow row;
        row.key = spec.key;
        row.is_printed = spec.row_class == RowClass::mandatory;
        for (const Column& column : columns) {
            row.cells.push_back(spec.make(column));
            row.is_printed |= row.cells.back().is_reason;
        }
        table.rows.push_back(std::move(row));
    }
    return table;
}

template<typename Column, std::size_t Size>
std::set<std::string_view> row_keys_of(const RowSpec<Column> (&specs)[Size])
{
    std::set<std::string_view> keys;
    for (const RowSpec<Column>& spec : specs)
        keys.insert(spec.key);
    return keys;
}

} // namespace quillet
