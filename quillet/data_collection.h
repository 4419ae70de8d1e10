// The table of data collection and processing of macromolecular crystals.
#pragma once

#include "quillet/cells.h"
#include "quillet/document.h"
#include "quillet/html.h"

#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace quillet
{

// One data set of a crystal: a row of _reflns with what belongs to it. A column of the table.
struct DataSet {
    const Block* block; // not null; lives as long as the document
    Notes* notes;
    Rows reflns;
    std::size_t row = 0;
    // Which experiments (_diffrn.id) it comes from; empty: those that the file has.
    std::set<std::string> diffrn_ids;
    // In its block. What names no experiment belongs to the first.
    bool is_first = true;
    bool is_only_one = true;
};

// The data sets of a block, by their ordinal numbers; at least one, if only of unknown values.
std::vector<DataSet> data_sets_of(const Block& block, Notes& notes);

// What was scattered: "x-ray", "neutron"; unknown if the file does not say.
Item radiation_of(const DataSet& data_set);

// The row of `shells` with the smallest numeric value of `high_resolution_tag` among those that
// `belongs` accepts; shells.size() if there is none. Files list shells in either order.
template<typename Belongs>
std::size_t outer_shell(const Rows& shells, std::string_view high_resolution_tag, Belongs belongs);

Table data_collection(const std::vector<DataSet>& data_sets);

std::set<std::string_view> data_collection_row_keys();

// How merging R factors are called in the table: R merge, or R sym where the file has only that.
Html merging_r_label(const std::vector<DataSet>& data_sets);

// Whether the table has values for an outer shell.
bool tells_outer_shell(const std::vector<DataSet>& data_sets);

template<typename Belongs>
std::size_t outer_shell(const Rows& shells, std::string_view high_resolution_tag, Belongs belongs)
{
    std::size_t best = shells.size();
    double best_limit = 0;
    for (std::size_t row = 0; row < shells.size(); ++row) {
        const auto limit = parse_number(shells.item(row, high_resolution_tag).text);
        if (!limit || !belongs(row))
            continue;
        if (best == shells.size() || limit->value() < best_limit) {
            best = row;
            best_limit = limit->value();
        }
    }
    return best;
}

} // namespace quillet
