// The measurements of a sasCIF and how its categories hang together.
#pragma once

#include "quillet/cells.h"
#include "quillet/document.h"

#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace quillet
{

// A measured curve and what was derived from it: a column of the tables.
struct Measurement {
    const Document* document; // not null; it must live as long as this object
    const Block* block;       // not null; one of the document
    Notes* notes;
    Rows scans; // none if the block tells only results
    std::size_t scan = 0;
    bool is_only_one = true; // of the document
};

// The measurements of all blocks, in file order; at least one, if only of unknown values.
std::vector<Measurement> measurements_of(const Document& document, Notes& notes);

// What the columns of a table are called: nothing if there is only one, else the titles of the
// scans; what would be the same title gets the name of the block or the id of the scan.
std::vector<Html> headings_of(const std::vector<Measurement>& measurements);

// Items of the categories that belong to a measurement. Rows are found by their ids, in the block
// of the measurement and then in the others. If there is nothing to choose from, ids are not
// needed. Ids that lead nowhere are reported.
Item of_scan(const Measurement& m, Tags tags);
Item of_result(const Measurement& m, Tags tags);
Item of_sample(const Measurement& m, Tags tags);
Item of_buffer(const Measurement& m, Tags tags);
Item of_beam(const Measurement& m, Tags tags);
Item of_detector(const Measurement& m, Tags tags);
Item of_distance_distribution(const Measurement& m, Tags tags);

// The entities that the sample consists of, as row numbers of `entities`. All entities if the
// sample names none.
struct SampleEntities {
    Rows entities;
    std::vector<std::size_t> rows;

    Item item(std::size_t row, std::string_view tag) const { return entities.item(row, tag); }
    std::string_view id(std::size_t row) const { return item(row, "_entity.id").text; }
};
SampleEntities entities_of(const Measurement& m);

// The given values of `tag` in rows whose `id_tag` is `id`, or in the only row there is.
std::vector<Item> items_of_id(const Block& block, std::string_view id_tag, std::string_view id,
                              Tags tags);

// The rows of the column `tag` whose `id_tag` is `id`: of one curve, where a loop holds several.
// All rows if the loop has no such ids.
std::vector<std::size_t> rows_of_id(const Block& block, std::string_view tag,
                                    std::string_view id_tag, std::string_view id);

// The rows of _sas_scan_intensity that are the measured curve; none if there are several scans and
// nothing tells whose curve it is.
std::vector<std::size_t> rows_of_curve(const Measurement& m);

// The units that a file states for a curve.
struct ScatteringUnits {
    Html momentum;              // of momentum transfer, with a blank before it
    Html length;                // of distances in real space, with a blank before it
    double momentum_per_nm = 0; // reciprocal nanometres in one unit of momentum transfer; 0 if
                                // the unit is not known
};
// From the text of _sas_scan.unit; nothing if it is not known.
std::optional<ScatteringUnits> units_from_text(std::string_view text);

// The units of an item that states one. Units without names, and a note at the item or at `where`,
// if it does not state any or none that is known.
ScatteringUnits units_of_item(const Item& unit, Position where, Notes& notes);

// Those of the measured curve.
ScatteringUnits units_of(const Measurement& m);

// In scattering files "." means "not given" far more often than "not applicable".
Cell unknown_unless_given(Cell cell);

// A number as a cell.
Cell number_cell_of(const Measurement& m, const Item& item, NumberFormat format);

// "low-high unit"; without the unit if there is no number. What is missing at one end is unknown.
Cell range_in_unit(const Cell& low, const Cell& high, const Html& unit);

// A table of measurements. In rows that are always printed "." is unknown.
template<std::size_t Size>
Table measurement_table(const RowSpec<Measurement> (&specs)[Size],
                        const std::vector<Measurement>& measurements)
{
    Table table = make_table(specs, measurements);
    for (std::size_t i = 0; i < Size; ++i) {
        if (specs[i].row_class != RowClass::mandatory)
            continue;
        for (Cell& cell : table.rows[i].cells)
            cell = unknown_unless_given(std::move(cell));
    }
    return table;
}

} // namespace quillet
