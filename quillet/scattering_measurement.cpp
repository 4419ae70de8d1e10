#include "quillet/scattering_measurement.h"

#include "quillet/cif_text.h"
#include "quillet/unicode.h"

#include <algorithm>

namespace quillet
{

namespace
{

Rows scans_of(const Block& block)
{
    return block.rows({"_sas_scan.id", "_sas_scan.title", "_sas_scan.result_id",
                       "_sas_scan.sample_id", "_sas_scan.unit", "_sas_scan.qmin"});
}

// The results of a block that some scan of another block refers to.
bool is_result_of_another_block(const Document& document, const Block& block)
{
    const Item id = block.item("_sas_result.id");
    return id.is_given() &&
           std::any_of(document.blocks.begin(), document.blocks.end(), [&](const Block& other) {
               const Rows scans = scans_of(other);
               for (std::size_t row = 0; row < scans.size(); ++row) {
                   if (scans.item(row, "_sas_scan.result_id").text == id.text &&
                       other.count("_sas_result.id") == 0)
                       return true;
               }
               return false;
           });
}

bool has_any_tag_of(const Block& block, std::initializer_list<const char*> categories)
{
    return std::any_of(block.columns().begin(), block.columns().end(), [&](const Column& column) {
        const std::string tag = ascii_lower(column.tag);
        return std::any_of(categories.begin(), categories.end(),
                           [&](const char* category) { return begins_with(tag, category); });
    });
}

void add_measurements_of(const Document& document, const Block& block, Notes& notes,
                         std::vector<Measurement>& measurements)
{
    const Rows scans = scans_of(block);
    for (std::size_t scan = 0; scan < std::max<std::size_t>(scans.size(), 1); ++scan)
        measurements.push_back({&document, &block, &notes, scans, scan});
}

bool has(const std::vector<std::string_view>& ids, std::string_view id)
{
    return std::find(ids.begin(), ids.end(), id) != ids.end();
}

// The different ids in a column, in file order.
std::vector<std::string_view> ids_in(const Block& block, std::string_view id_tag)
{
    std::vector<std::string_view> ids;
    std::set<std::string_view> known;
    const Rows rows = block.rows(id_tag);
    for (std::size_t row = 0; row < rows.size(); ++row) {
        const Item id = rows.item(row, id_tag);
        if (id.is_given() && known.insert(id.text).second)
            ids.push_back(id.text);
    }
    return ids;
}

Item unknown_item(Tags tags)
{
    Item item;
    item.tag = *tags.begin();
    return item;
}

// Of the row with that id; the id need not be looked at if all rows have the same.
Item item_in(const Block& block, std::string_view id_tag, std::string_view id, Tags tags)
{
    if (ids_in(block, id_tag).size() < 2)
        return block.item(tags);
    const auto items = items_of_id(block, id_tag, id, tags);
    return items.empty() ? unknown_item(tags) : items.front();
}

void report_broken_link(const Measurement& m, const Item& link, std::string_view link_tag,
                        std::string_view id_tag)
{
    if (link.is_given())
        m.notes->add(link.where(), "There is no " + std::string(id_tag) + " \u201c" +
                                       std::string(link.text) + "\u201d, which " +
                                       std::string(link_tag) + " refers to.");
    else
        m.notes->add(m.block->where(), "There are several " + std::string(id_tag) + ", but " +
                                           std::string(link_tag) +
                                           " does not tell which one belongs to the scan.");
}

Item linked_item(const Measurement& m, std::string_view link_tag, std::string_view id_tag,
                 Tags tags)
{
    const Item link = of_scan(m, {link_tag});
    const auto ids = ids_in(*m.block, id_tag);
    if (has(ids, link.text))
        return item_in(*m.block, id_tag, link.text, tags);
    for (const Block& block : m.document->blocks) {
        if (link.is_given() && has(ids_in(block, id_tag), link.text))
            return item_in(block, id_tag, link.text, tags);
    }
    if (ids.empty())
        return m.block->item(tags);
    const bool is_clear = ids.size() == 1 && (m.is_only_one || !link.is_given());
    if (link.is_given() || !is_clear)
        report_broken_link(m, link, link_tag, id_tag);
    return is_clear ? m.block->item(tags) : unknown_item(tags);
}

} // namespace

std::vector<Measurement> measurements_of(const Document& document, Notes& notes)
{
    std::vector<Measurement> measurements;
    for (const Block& block : document.blocks) {
        const bool has_scan = scans_of(block).size() > 0;
        const bool has_result =
            block.count("_sas_result.id") > 0 && !is_result_of_another_block(document, block);
        if (has_scan || has_result)
            add_measurements_of(document, block, notes, measurements);
    }
    for (const Block& block : document.blocks) {
        if (measurements.empty() &&
            has_any_tag_of(block, {"_sas_sample.", "_sas_result.", "_sas_scan", "_sas_beam.",
                                   "_sas_buffer.", "_sas_detc.", "_sas_p_of_r"}))
            add_measurements_of(document, block, notes, measurements);
    }
    if (measurements.empty())
        add_measurements_of(document, document.blocks.front(), notes, measurements);
    for (Measurement& m : measurements)
        m.is_only_one = measurements.size() == 1;
    return measurements;
}

std::vector<Html> headings_of(const std::vector<Measurement>& measurements)
{
    std::vector<Html> headings;
    if (measurements.size() < 2)
        return headings;
    for (const Measurement& m : measurements) {
        const Item title = of_scan(m, {"_sas_scan.title"});
        headings.push_back(title.is_given() ? text_to_html(title.text) : escape(m.block->name()));
    }
    const std::vector<Html> plain = headings;
    for (std::size_t i = 0; i < plain.size(); ++i) {
        if (std::count(plain.begin(), plain.end(), plain[i]) == 1)
            continue;
        const Measurement& m = measurements[i];
        const Item id = of_scan(m, {"_sas_scan.id"});
        const bool names_block = m.scans.size() < 2 && plain[i] != escape(m.block->name());
        const Html detail = names_block || !id.is_given() ? escape(m.block->name())
                                                          : "scan "_html + text_to_html(id.text);
        headings[i] += " ("_html + detail + ")"_html;
    }
    return headings;
}

Item of_scan(const Measurement& m, Tags tags)
{
    return m.scans.size() > 0 ? m.scans.item(m.scan, tags) : m.block->item(tags);
}

Item of_result(const Measurement& m, Tags tags)
{
    return linked_item(m, "_sas_scan.result_id", "_sas_result.id", tags);
}

Item of_sample(const Measurement& m, Tags tags)
{
    return linked_item(m, "_sas_scan.sample_id", "_sas_sample.id", tags);
}

Item of_buffer(const Measurement& m, Tags tags)
{
    return linked_item(m, "_sas_scan.sample_id", "_sas_buffer.sample_id", tags);
}

Item of_beam(const Measurement& m, Tags tags)
{
    return linked_item(m, "_sas_scan.beam_id", "_sas_beam.id", tags);
}

Item of_detector(const Measurement& m, Tags tags)
{
    return linked_item(m, "_sas_scan.detc_id", "_sas_detc.id", tags);
}

Item of_distance_distribution(const Measurement& m, Tags tags)
{
    return linked_item(m, "_sas_scan.id", "_sas_p_of_R_details.intensity_id", tags);
}

SampleEntities entities_of(const Measurement& m)
{
    SampleEntities result;
    result.entities = m.block->rows(
        {"_entity.id", "_entity.pdbx_description", "_entity.formula_weight", "_entity.type"});
    const Item sample = of_scan(m, {"_sas_scan.sample_id"});
    const Rows samples = m.block->rows("_sas_sample.entity_id");
    std::vector<std::string_view> wanted;
    for (const std::size_t row :
         rows_of_id(*m.block, "_sas_sample.entity_id", "_sas_sample.id", sample.text)) {
        const Item id = samples.item(row, "_sas_sample.entity_id");
        if (id.is_given())
            wanted.push_back(id.text);
    }
    for (std::size_t row = 0; row < result.entities.size(); ++row) {
        if (wanted.empty() || has(wanted, result.id(row)))
            result.rows.push_back(row);
    }
    const auto ids = ids_in(*m.block, "_entity.id");
    for (const std::string_view id : wanted) {
        if (!has(ids, id))
            m.notes->add(m.block->find("_sas_sample.entity_id")->where,
                         "There is no _entity.id \u201c" + std::string(id) +
                             "\u201d, which _sas_sample.entity_id refers to.");
    }
    return result;
}

std::vector<Item> items_of_id(const Block& block, std::string_view id_tag, std::string_view id,
                              Tags tags)
{
    std::vector<Item> items;
    const Rows rows = block.rows(tags);
    for (std::size_t row = 0; row < rows.size(); ++row) {
        const Item row_id = rows.item(row, id_tag);
        const bool is_only_row = rows.size() == 1 && !row_id.is_given();
        const Item item = rows.item(row, tags);
        if (item.is_given() && (is_only_row || row_id.text == id))
            items.push_back(item);
    }
    return items;
}

std::vector<std::size_t> rows_of_id(const Block& block, std::string_view tag,
                                    std::string_view id_tag, std::string_view id)
{
    std::vector<std::size_t> rows;
    const Column* column = block.find(tag);
    if (!column)
        return rows;
    const Column* ids = block.find(id_tag);
    const bool has_ids = ids && ids->loop == column->loop && !id.empty() &&
                         ids->values.size() == column->values.size();
    for (std::size_t row = 0; row < column->values.size(); ++row) {
        if (!has_ids || trimmed(ids->values[row].text) == id)
            rows.push_back(row);
    }
    return rows;
}

std::vector<std::size_t> rows_of_curve(const Measurement& m)
{
    constexpr std::string_view q = "_sas_scan_intensity.momentum_transfer";
    constexpr std::string_view scan_id = "_sas_scan_intensity.scan_id";
    const Item id = of_scan(m, {"_sas_scan.id"});
    if (m.scans.size() > 1 && (!id.is_given() || m.block->count(scan_id) == 0))
        return {};
    const auto rows = rows_of_id(*m.block, q, scan_id, id.text);
    // A single scan has the curve whatever its id.
    return rows.empty() && m.scans.size() < 2 ? rows_of_id(*m.block, q, {}, {}) : rows;
}

std::optional<ScatteringUnits> units_from_text(std::string_view text)
{
    const std::string unit = ascii_lower(trimmed(text));
    const auto is_one_of = [&](std::initializer_list<const char*> names) {
        return std::find(names.begin(), names.end(), unit) != names.end();
    };
    const Html inverse = superscript(escape("\u22121"));
    if (is_one_of({"1/a", "a^-1", "a-1", "\u00C5^-1", "1/\u00C5", "1/\u212B", "1/angstrom",
                   "angstrom", "angstroms", "angstrom^-1", "reciprocal_angstroms"}))
        return ScatteringUnits{escape(" \u00C5") + inverse, escape(" \u00C5"), 10};
    if (is_one_of({"1/nm", "nm^-1", "nm-1", "1/nanometer", "nanometer", "nanometers", "nm",
                   "nanometer^-1", "reciprocal_nanometers"}))
        return ScatteringUnits{" nm"_html + inverse, " nm"_html, 1};
    return std::nullopt;
}

ScatteringUnits units_of_item(const Item& unit, Position where, Notes& notes)
{
    const auto units = units_from_text(unit.text);
    if (!units) {
        const std::string trouble =
            unit.is_given() ? "The unit \u201c" + std::string(unit.text) + "\u201d is not known"
                            : "No unit is stated (" + std::string(unit.tag) + ")";
        notes.add(unit.column ? unit.where() : where,
                  trouble + "; values that have it are printed without a unit.");
    }
    return units.value_or(ScatteringUnits());
}

ScatteringUnits units_of(const Measurement& m)
{
    return units_of_item(of_scan(m, {"_sas_scan.unit"}), m.block->where(), *m.notes);
}

Cell unknown_unless_given(Cell cell)
{
    if (cell.state == State::not_applicable)
        cell.state = State::unknown;
    return cell;
}

Cell number_cell_of(const Measurement& m, const Item& item, NumberFormat format)
{
    return number_cell(*m.block, item, format);
}

Cell range_in_unit(const Cell& low, const Cell& high, const Html& unit)
{
    const bool has_value = low.state == State::given || high.state == State::given;
    Cell cell = has_value ? range_cell(unknown_unless_given(low), unknown_unless_given(high))
                          : range_cell(low, high);
    if (has_value)
        cell.html += unit;
    else
        cell.html = {}; // one sign for both ends
    return cell;
}

} // namespace quillet
