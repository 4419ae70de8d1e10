// The table of crystallization: what was mixed, how and where crystals grew.
#pragma once

#include "quillet/cells.h"
#include "quillet/deposition_items.h"
#include "quillet/document.h"

#include <set>
#include <string_view>
#include <vector>

namespace quillet
{

// A component of one of the solutions.
struct SolutionComponent {
    std::string_view solution; // its id; empty if the file gives none
    Html name;                 // each of the three empty if not given
    Html amount;               // with unit
    Html volume;
    bool is_macromolecule = false;
};

// What crystals were grown from. A column of the table.
struct CrystalGrowth {
    Subject crystal;
    Rows rows; // of _exptl_crystal_grow
    std::size_t row = 0;
    std::vector<SolutionComponent> components; // in file order
};

// The crystals of a block; at least one, if only of unknown values. Units that are not known go to
// `notes`.
std::vector<CrystalGrowth> crystal_growths_of(const Block& block, Notes& notes);

Table crystallization(const std::vector<CrystalGrowth>& crystals);

std::set<std::string_view> crystallization_row_keys();

// The method as an article calls it: "VAPOR DIFFUSION, HANGING DROP" as "Vapour diffusion, hanging
// drop". Text that is not all in capitals comes back as it is.
Html format_crystallization_method(std::string_view text);

// A quantity, which may be a range, with its unit: one of the words of the dictionary
// ("percent_weight_by_volume") or a symbol. A unit that is not known is printed as it is.
Html format_quantity(std::string_view value, std::string_view unit);
bool is_known_unit(std::string_view unit);

} // namespace quillet
