#include "wordbridge/tablelayout.h"

#include <algorithm>
#include <numeric>
#include <QStringList>

namespace wordbridge
{

namespace
{

constexpr int allShares = 65535;
constexpr int mostColumns = 1000; // of one span; as browsers have it
constexpr int mostRows = 65534;

// In widths of a digit, of which a line of the page holds that many in the size of the table's
// text.
constexpr double lineLength = 95;
constexpr double longestText = 43; // longer text is broken into lines anyway
constexpr double longestWord = 25;
constexpr double cellMargin = 2;
constexpr double boldness = 1.1; // how much wider bold letters are

bool isCell(const HtmlNode& node)
{
    return node.name == QLatin1String("td") || node.name == QLatin1String("th");
}

bool isHeading(const TableCell& cell)
{
    return cell.node != nullptr && cell.node->name == QLatin1String("th");
}

struct RowSources {
    std::vector<const HtmlNode*> head;
    std::vector<const HtmlNode*> body;
    std::vector<const HtmlNode*> foot;
};

void collectRows(const HtmlNode& node, std::vector<const HtmlNode*>& rows, RowSources& sources)
{
    for (const HtmlNode& child : node.children) {
        if (child.name == QLatin1String("tr"))
            rows.push_back(&child);
        else if (child.name == QLatin1String("thead"))
            collectRows(child, sources.head, sources);
        else if (child.name == QLatin1String("tfoot"))
            collectRows(child, sources.foot, sources);
        else if (child.name == QLatin1String("tbody"))
            collectRows(child, sources.body, sources);
    }
}

int span(const HtmlNode& cell, const char* attribute, int most)
{
    const int count = cell.attributes.value(QLatin1String(attribute)).toInt();
    return std::clamp(count, 1, most);
}

TableCell& cellAt(TableRow& row, std::size_t column)
{
    if (row.cells.size() <= column)
        row.cells.resize(column + 1);
    return row.cells[column];
}

// Puts a cell into the grid and marks what it covers.
void placeCell(std::vector<TableRow>& rows, std::size_t rowIndex, std::size_t column,
               const HtmlNode& node)
{
    TableCell cell;
    cell.node = &node;
    cell.columns = span(node, "colspan", mostColumns);
    cell.rows = std::min(span(node, "rowspan", mostRows), static_cast<int>(rows.size() - rowIndex));
    // A span ends where a cell from above is in the way.
    for (int i = 1; i < cell.columns; ++i) {
        if (cellAt(rows[rowIndex], column + static_cast<std::size_t>(i)).isCovered)
            cell.columns = i;
    }
    for (int r = 0; r < cell.rows; ++r) {
        for (int c = 0; c < cell.columns; ++c)
            cellAt(rows[rowIndex + static_cast<std::size_t>(r)],
                   column + static_cast<std::size_t>(c))
                .isCovered = true;
    }
    cellAt(rows[rowIndex], column) = cell;
}

void placeRow(std::vector<TableRow>& rows, std::size_t rowIndex, const HtmlNode& source)
{
    std::size_t column = 0;
    for (const HtmlNode& child : source.children) {
        if (!isCell(child))
            continue;
        while (cellAt(rows[rowIndex], column).isCovered)
            ++column;
        placeCell(rows, rowIndex, column, child);
        column += static_cast<std::size_t>(rows[rowIndex].cells[column].columns);
    }
}

// Columns that no cell starts in exist only through spans that are too wide.
std::size_t usedColumns(const std::vector<TableRow>& rows)
{
    std::size_t used = 0;
    for (const TableRow& row : rows) {
        for (std::size_t c = 0; c < row.cells.size(); ++c) {
            if (row.cells[c].node != nullptr)
                used = std::max(used, c + 1);
        }
    }
    return used;
}

void trimRow(TableRow& row, std::size_t columns)
{
    row.cells.resize(columns);
    for (std::size_t c = 0; c < columns; ++c)
        row.cells[c].columns = std::min(row.cells[c].columns, static_cast<int>(columns - c));
    row.isGroupHeading = isHeading(row.cells.front()) &&
                         row.cells.front().columns == static_cast<int>(columns) && columns > 1;
}

bool isHeaderRow(const TableRow& row)
{
    return row.cells.size() > 1 && !row.isGroupHeading &&
           std::all_of(row.cells.cbegin(), row.cells.cend(),
                       [](const TableCell& cell) { return cell.isCovered || isHeading(cell); });
}

// The width of a letter of the manuscript's serif, roughly: enough to tell HOH from ill.
double letterWidth(QChar letter)
{
    static const QString narrow = QStringLiteral("fijlrtI .,;:'|!()[]/-");
    static const QString wide = QStringLiteral("mwMW%@+<>=");
    if (letter.isMark())
        return 0;
    if (narrow.contains(letter))
        return 0.65;
    if (wide.contains(letter))
        return letter.isUpper() ? 1.85 : 1.5;
    if (letter == QChar(0x2014)) // em dash
        return 2;
    return letter.isUpper() ? 1.4 : 1;
}

double textWidth(const QString& text)
{
    return std::accumulate(text.cbegin(), text.cend(), 0.0,
                           [](double sum, QChar letter) { return sum + letterWidth(letter); });
}

double longestWordWidth(const QString& text)
{
    const QStringList words = text.split(QLatin1Char(' '));
    double longest = 0;
    for (const QString& word : words)
        longest = std::max(longest, textWidth(word));
    return longest;
}

// How wide each column should be, and how wide it has to be.
struct Wishes {
    std::vector<double> wanted;
    std::vector<double> needed;
};

Wishes columnWishes(const TableLayout& layout, std::size_t columns)
{
    // A column of short values, or one still to be filled in, is not squeezed to the page's edge.
    const double fairShare = lineLength * 2 / (5 * static_cast<double>(columns));
    Wishes wishes{std::vector<double>(columns, std::max(fairShare, 1 + cellMargin)),
                  std::vector<double>(columns, 1 + cellMargin)};
    for (std::size_t r = 0; r < layout.rows.size(); ++r) {
        const double weight = static_cast<int>(r) < layout.headerRows ? boldness : 1;
        for (std::size_t c = 0; c < columns; ++c) {
            const TableCell& cell = layout.rows[r].cells[c];
            if (cell.node == nullptr || cell.columns > 1)
                continue;
            const QString text = cell.node->plainText().simplified();
            const double wanted = std::min(textWidth(text) * weight, longestText) + cellMargin;
            const double needed =
                std::min(longestWordWidth(text) * weight, longestWord) + cellMargin;
            wishes.wanted[c] = std::max(wishes.wanted[c], wanted);
            wishes.needed[c] = std::max(wishes.needed[c], needed);
        }
    }
    return wishes;
}

double total(const std::vector<double>& widths)
{
    return std::accumulate(widths.cbegin(), widths.cend(), 0.0);
}

// Where the longest words do not fit side by side, the widest columns are cut to one width and
// break their words, so that the others need not.
void cutWidest(std::vector<double>& widths)
{
    std::vector<double> ascending = widths;
    std::sort(ascending.begin(), ascending.end());
    double left = lineLength;
    for (std::size_t i = 0; i < ascending.size(); ++i) {
        const double most = left / static_cast<double>(ascending.size() - i);
        if (ascending[i] > most) {
            for (double& width : widths)
                width = std::min(width, most);
            return;
        }
        left -= ascending[i];
    }
}

std::vector<int> sharedOut(Wishes wishes)
{
    cutWidest(wishes.needed);
    const double wanted = total(wishes.wanted);
    const double needed = total(wishes.needed);
    // 1: every column as it wants; 0: every column as it needs
    double ease = 1;
    if (wanted > lineLength && wanted > needed)
        ease = std::max(0.0, (lineLength - needed) / (wanted - needed));

    std::vector<int> shares;
    const double all = needed + ease * (wanted - needed);
    for (std::size_t c = 0; c < wishes.wanted.size(); ++c) {
        const double width = wishes.needed[c] + ease * (wishes.wanted[c] - wishes.needed[c]);
        shares.push_back(std::max(1, static_cast<int>(allShares * width / all)));
    }
    if (!shares.empty())
        shares.back() += allShares - std::accumulate(shares.cbegin(), shares.cend(), 0);
    return shares;
}

} // namespace

TableLayout layOutTable(const HtmlNode& table)
{
    RowSources sources;
    collectRows(table, sources.body, sources);

    std::vector<const HtmlNode*> order = sources.head;
    order.insert(order.end(), sources.body.cbegin(), sources.body.cend());
    order.insert(order.end(), sources.foot.cbegin(), sources.foot.cend());

    TableLayout layout;
    layout.rows.resize(order.size());
    for (std::size_t r = 0; r < order.size(); ++r)
        placeRow(layout.rows, r, *order[r]);

    const std::size_t columns = usedColumns(layout.rows);
    if (columns == 0)
        return {};
    for (TableRow& row : layout.rows)
        trimRow(row, columns);
    layout.headerRows = static_cast<int>(sources.head.size());
    if (layout.headerRows == 0 && isHeaderRow(layout.rows.front()))
        layout.headerRows = 1;
    if (layout.headerRows == static_cast<int>(layout.rows.size()))
        layout.headerRows = 0; // there is nothing that they could be repeated over
    layout.columnWidths = sharedOut(columnWishes(layout, columns));
    return layout;
}

} // namespace wordbridge
