// The table of structural parameters from small-angle scattering, and what it shares with the
// other tables of a scattering article.
#pragma once

#include "quillet/cells.h"
#include "quillet/document.h"

#include <optional>
#include <set>
#include <string_view>
#include <vector>

namespace quillet
{

// A measured curve and what was derived from it: a column of the tables.
struct Measurement {
    const Block* block; // not null; lives as long as the document
    Notes* notes;
    Rows scans;
    std::size_t scan = 0;
};

// The measurements of all blocks, in file order; at least one, if only of unknown values.
std::vector<Measurement> measurements_of(const Document& document, Notes& notes);

// An item of a category that belongs to the measurement: of the row whose `id_tag` is what
// `link_tag` of the scan says, or the only one in the block.
Item linked_item(const Measurement& m, std::string_view link_tag, std::string_view id_tag,
                 Tags tags);

// In scattering files "." means "not given" far more often than "not applicable".
Cell unknown_unless_given(Cell cell);

// The units that a file states for a curve.
struct ScatteringUnits {
    Html momentum;              // of momentum transfer, with a blank before it
    Html length;                // of distances in real space, with a blank before it
    double momentum_per_nm = 0; // reciprocal nanometres in one unit of momentum transfer
};
// From the text of _sas_scan.unit; nothing if it is not known.
std::optional<ScatteringUnits> units_from_text(std::string_view text);

// The molecular mass in kDa that the composition of the sample gives.
std::optional<Decimal> mass_from_composition(const Measurement& m);

Table structural_parameters(const std::vector<Measurement>& measurements);

std::set<std::string_view> structural_parameter_row_keys();

} // namespace quillet
