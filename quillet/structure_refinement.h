// The table of structure solution and refinement of macromolecular crystals.
#pragma once

#include "quillet/cells.h"
#include "quillet/deposition_items.h"
#include "quillet/document.h"
#include "quillet/html.h"

#include <set>
#include <string_view>
#include <vector>

namespace quillet
{

// A refinement: a row of _refine with what belongs to it. A column of the table.
struct Refinement {
    Subject subject; // by _refine.pdbx_refine_id
    Rows refine;     // none if the file tells of no refinement
    std::size_t row = 0;
    Item pdb_code; // of the structure
};

// The refinements of a block; at least one, if only of unknown values.
std::vector<Refinement> refinements_of(const Block& block, const Item& pdb_code);

Table structure_refinement(const std::vector<Refinement>& refinements);

std::set<std::string_view> structure_refinement_row_keys();

// Whether the counts of reflections are those of the working set: programs differ on whether other
// counts include the test set. Also true if there are no counts.
bool counts_working_set(const std::vector<Refinement>& refinements);

// "Protein", "Nucleic acid" or both: what the polymers of the structures are.
Html polymer_kinds(const std::vector<Refinement>& refinements);

// Whether the table has values for an outer shell.
bool tells_outer_shell(const std::vector<Refinement>& refinements);

} // namespace quillet
