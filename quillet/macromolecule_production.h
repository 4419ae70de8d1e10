// The table of macromolecule production: where each polymer comes from.
#pragma once

#include "quillet/cells.h"
#include "quillet/deposition_items.h"
#include "quillet/document.h"

#include <set>
#include <string_view>
#include <vector>

namespace quillet
{

enum class Origin { unstated, recombinant, natural, synthetic };

// A polymer entity. A column of the table.
struct Polymer {
    Subject entity;
    Notes* notes = nullptr; // not null; lives as long as the document
    Rows entities;          // of _entity; none if the file does not list its entities
    std::size_t row = 0;
    Origin origin = Origin::unstated;
    bool is_nucleic_acid = false;
};

// The polymers of a block; at least one, if only of unknown values.
std::vector<Polymer> polymers_of(const Block& block, Notes& notes);

// What the polymer is called; empty if the file does not say.
Html description_of(const Polymer& polymer);

Table macromolecule_production(const std::vector<Polymer>& polymers);

std::set<std::string_view> macromolecule_production_row_keys();

// A sequence in one-letter code, set so that lines can end every ten letters, but not inside
// "(MSE)". Blanks and line ends in it do not count.
Html format_sequence(std::string_view text);

} // namespace quillet
