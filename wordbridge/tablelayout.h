// The geometry of an HTML table: which cell starts where, which rows repeat, how wide columns are.
#pragma once

#include "wordbridge/htmltree.h"

#include <vector>

namespace wordbridge
{

// What stands at one place of the grid.
struct TableCell {
    const HtmlNode* node = nullptr; // td or th; null where the table has no cell, or a covered one
    bool isCovered = false;         // by a cell that starts further left or above
    int columns = 1;                // how many columns and rows the cell takes
    int rows = 1;
};

struct TableRow {
    std::vector<TableCell> cells; // one for each column
    bool isGroupHeading = false;  // one heading over all columns
};

struct TableLayout {
    std::vector<TableRow> rows;
    int headerRows = 0;            // at the top; they repeat on every page
    std::vector<int> columnWidths; // shares, 65535 in all

    int columns() const { return static_cast<int>(columnWidths.size()); }
};

// Lays out a <table>. Header rows are those of <thead>, or else the first row where it consists of
// several <th> alone. Rows of <tfoot> come last. Spans end at the table's edges. Columns are as
// wide as their text wants, long text giving way first. A table without cells has no rows.
TableLayout layOutTable(const HtmlNode& table);

} // namespace wordbridge
