// The table of experimental details of small-molecule structures.
#pragma once

#include "quillet/cells.h"
#include "quillet/document.h"
#include "quillet/html.h"

#include <optional>
#include <set>
#include <string_view>
#include <vector>

namespace quillet
{

// A block of a core CIF that describes a structure: a column of the table.
struct Structure {
    const Block* block; // not null; lives as long as the document
    Notes* notes;
    // Cells tell when a reflection counts as observed, because the columns differ in that.
    bool tells_criterion = false;
};

// What the labels of the table's rows say about all its columns.
struct ExperimentalLabels {
    Html criterion; // of observed reflections: "I > 2 sigma(I)"; empty if the columns differ
    Html threshold; // the "2" in it; empty for 1
    Html quantity;  // what was refined on: F or F squared
};

// When a reflection counts as observed.
struct ObservedCriterion {
    Html html;      // "I > 2 sigma(I)"
    Html threshold; // "2"; empty for 1
};

// From the text of _reflns_threshold_expression; nothing if it has an unusual form.
std::optional<ObservedCriterion> parse_criterion(std::string_view text);

// "Mo K alpha" in its printed form, from the many ways in which files write it; nothing if the
// text is none of them.
std::optional<Html> format_characteristic_radiation(std::string_view text);

// The phrase for a code of _refine_ls_hydrogen_treatment; other text as it is.
Html format_hydrogen_treatment(std::string_view text);

// Looks at all columns before the table is made: sets `tells_criterion` of each.
ExperimentalLabels experimental_labels(std::vector<Structure>& structures);

Table experimental_details(const std::vector<Structure>& structures);

std::set<std::string_view> experimental_row_keys();

} // namespace quillet
