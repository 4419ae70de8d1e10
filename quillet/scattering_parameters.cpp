#include "quillet/scattering_parameters.h"

#include "quillet/cif_text.h"
#include "quillet/unicode.h"

#include <algorithm>

namespace quillet
{

namespace
{

const Html en_dash = escape("\u2013");

Item of_result(const Measurement& m, Tags tags)
{
    return linked_item(m, "_sas_scan.result_id", "_sas_result.id", tags);
}

Item of_distance_distribution(const Measurement& m, Tags tags)
{
    return linked_item(m, "_sas_scan.id", "_sas_p_of_R_details.intensity_id", tags);
}

Cell number(const Measurement& m, const Item& item, NumberFormat format)
{
    return unknown_unless_given(number_cell(*m.block, item, format));
}

// "value +- error", or the value alone without zeros at its end.
Cell with_error(const Measurement& m, Tags value_tags, std::string_view error_tag)
{
    const Item value = of_result(m, value_tags);
    const Item error = of_result(m, {error_tag});
    if (value.is_given() && error.is_given()) {
        if (const auto html = format_with_error(value.text, error.text))
            return given_cell(*html, value.tag);
    }
    return number(m, value, trimmed_zeros);
}

Cell with_text(Cell cell, const Item& text)
{
    if (cell.state == State::given && text.is_given())
        cell.html += " ("_html + text_to_html(text.text) + ")"_html;
    return cell;
}

ScatteringUnits units_of(const Measurement& m)
{
    const Item unit = m.scans.size() > 0 ? m.scans.item(m.scan, "_sas_scan.unit")
                                         : m.block->item("_sas_scan.unit");
    if (!unit.is_given())
        return {};
    if (const auto units = units_from_text(unit.text))
        return *units;
    m.notes->add(unit.where(), "The unit \u201c" + std::string(unit.text) +
                                   "\u201d is not known; values that have it are printed "
                                   "without a unit.");
    return {};
}

Cell in_unit(Cell cell, const Html& unit)
{
    if (cell.state == State::given)
        cell.html += unit;
    return cell;
}

Cell guinier_points(const Measurement& m)
{
    return range_cell(number(m, of_result(m, {"_sas_result.Guinier_point_min"}), as_given),
                      number(m, of_result(m, {"_sas_result.Guinier_point_max"}), as_given));
}

// The momentum transfer of a point of the curve, in reciprocal nanometres.
std::optional<double> momentum_at(const Measurement& m, const Item& point)
{
    const auto index = parse_number(point.text);
    const Rows curve = m.block->rows("_sas_scan_intensity.momentum_transfer");
    const double per_nm = units_of(m).momentum_per_nm;
    if (!index || index->value() < 1 || index->value() > static_cast<double>(curve.size()) ||
        per_nm == 0)
        return std::nullopt;
    const auto q = parse_number(curve
                                    .item(static_cast<std::size_t>(index->value()) - 1,
                                          "_sas_scan_intensity.momentum_transfer")
                                    .text);
    return q ? std::optional(q->value() * per_nm) : std::nullopt;
}

Cell guinier_range(const Measurement& m)
{
    const Item radius =
        of_result(m, {"_sas_result.Rg_from_Guinier", "_sas_result.reciprocal_space_Rg"});
    const auto rg = parse_number(radius.text);
    const auto low = momentum_at(m, of_result(m, {"_sas_result.Guinier_point_min"}));
    const auto high = momentum_at(m, of_result(m, {"_sas_result.Guinier_point_max"}));
    if (!rg || !low || !high)
        return unknown_cell("_sas_result.Guinier_point_min");
    return given_cell(format_computed(*low * rg->value(), 2) + en_dash +
                      format_computed(*high * rg->value(), 2));
}

Cell distribution_points(const Measurement& m)
{
    const auto find = [&](std::string_view tag) {
        return number(m, of_distance_distribution(m, {tag}), as_given);
    };
    return with_shell(range_cell(find("_sas_p_of_R_details.p_of_R_point_min"),
                                 find("_sas_p_of_R_details.p_of_R_point_max")),
                      find("_sas_p_of_R_details.number_of_points"));
}

Cell distribution_range(const Measurement& m, std::string_view low, std::string_view high,
                        NumberFormat format)
{
    return range_cell(number(m, of_distance_distribution(m, {low}), format),
                      number(m, of_distance_distribution(m, {high}), format));
}

Cell mass_ratio(const Measurement& m)
{
    const auto measured = parse_number(of_result(m, {"_sas_result.experimental_MW"}).text);
    const auto composition = mass_from_composition(m);
    if (!measured || !composition || composition->is_zero())
        return unknown_cell("_sas_result.experimental_MW");
    return given_cell(format_computed(measured->value() / composition->value(), 2));
}

constexpr RowClass mandatory = RowClass::mandatory;
constexpr RowClass optional = RowClass::optional;

const RowSpec<Measurement> row_specs[] = {
    {"C4.gI0", mandatory,
     [](const Measurement& m) {
         return with_error(m, {"_sas_result.I0_from_Guinier", "_sas_result.reciprocal_space_I0"},
                           "_sas_result.I0_from_Guinier_error");
     }},
    {"C4.gRg", mandatory,
     [](const Measurement& m) {
         return with_error(m, {"_sas_result.Rg_from_Guinier", "_sas_result.reciprocal_space_Rg"},
                           "_sas_result.Rg_from_Guinier_error");
     }},
    {"C4.gpt", optional, guinier_points},
    {"C4.qRg", optional, guinier_range},
    {"C4.pI0", mandatory,
     [](const Measurement& m) {
         return with_error(m, {"_sas_result.I0_from_PR"}, "_sas_result.I0_from_PR_error");
     }},
    {"C4.pRg", mandatory,
     [](const Measurement& m) {
         return with_error(m, {"_sas_result.Rg_from_PR"}, "_sas_result.Rg_from_PR_error");
     }},
    {"C4.dmax", mandatory,
     [](const Measurement& m) {
         return with_error(m, {"_sas_result.D_max"}, "_sas_result.Dmax_error");
     }},
    {"C4.pq", mandatory,
     [](const Measurement& m) {
         return in_unit(distribution_range(m, "_sas_p_of_R_details.qmin",
                                           "_sas_p_of_R_details.qmax", as_given),
                        units_of(m).momentum);
     }},
    {"C4.pn", optional, distribution_points},
    {"C4.prr", optional,
     [](const Measurement& m) {
         return in_unit(distribution_range(m, "_sas_p_of_R_details.Rmin",
                                           "_sas_p_of_R_details.Rmax", trimmed_zeros),
                        units_of(m).length);
     }},
    {"C4.vp", mandatory,
     [](const Measurement& m) {
         return with_error(m, {"_sas_result.Porod_volume"}, "_sas_result.Porod_volume_error");
     }},
    {"C4.vest", optional,
     [](const Measurement& m) {
         return with_text(
             with_error(m, {"_sas_result.estimated_volume"}, "_sas_result.estimated_volume_error"),
             of_result(m, {"_sas_result.estimated_volume_method"}));
     }},
    {"C4.mexp", mandatory,
     [](const Measurement& m) {
         return with_error(m, {"_sas_result.experimental_MW"}, "_sas_result.experimental_MW_error");
     }},
    {"C4.mstd", optional,
     [](const Measurement& m) {
         return with_error(m, {"_sas_result.MW_standard"}, "_sas_result.MW_standard_error");
     }},
    {"C4.mpor", optional,
     [](const Measurement& m) {
         return with_error(m, {"_sas_result.MW_Porod"}, "_sas_result.MW_Porod_error");
     }},
    {"C4.ratio", optional, mass_ratio},
    {"C4.com", optional,
     [](const Measurement& m) {
         return unknown_unless_given(text_cell(of_result(m, {"_sas_result.comments"})));
     }},
};

// The mass of one entity in kDa, all its copies together.
std::optional<Decimal> mass_of_entity(const Rows& entities, std::size_t row)
{
    const auto weight = parse_number(entities.item(row, "_entity.formula_weight").text);
    if (!weight || weight->exponent || weight->decimal.negative)
        return std::nullopt;
    constexpr double heaviest_in_kda = 1000; // a larger number is in Da
    const Decimal mass =
        weight->value() > heaviest_in_kda ? divided_by_thousand(weight->decimal) : weight->decimal;
    const auto copies = parse_number(entities.item(row, "_entity.pdbx_number_of_molecules").text);
    constexpr double most_copies = 1e6;
    const bool is_count = copies && copies->value() >= 1 && copies->value() < most_copies;
    return product(mass, is_count ? static_cast<unsigned>(copies->value()) : 1);
}

} // namespace

std::vector<Measurement> measurements_of(const Document& document, Notes& notes)
{
    std::vector<Measurement> measurements;
    for (const Block& block : document.blocks) {
        if (!block.find("_sas_result.id") && !block.find("_sas_scan.id"))
            continue;
        const Rows scans = block.rows("_sas_scan.id");
        for (std::size_t scan = 0; scan < std::max<std::size_t>(scans.size(), 1); ++scan)
            measurements.push_back({&block, &notes, scans, scan});
    }
    if (measurements.empty())
        measurements.push_back({&document.blocks.front(), &notes, {}, 0});
    return measurements;
}

Item linked_item(const Measurement& m, std::string_view link_tag, std::string_view id_tag,
                 Tags tags)
{
    const Rows rows = m.block->rows(id_tag);
    const Item link = m.scans.size() > 0 ? m.scans.item(m.scan, link_tag) : Item();
    for (std::size_t row = 0; row < rows.size() && rows.size() > 1 && link.is_given(); ++row) {
        if (rows.item(row, id_tag).text == link.text)
            return rows.item(row, tags);
    }
    return m.block->item(tags);
}

Cell unknown_unless_given(Cell cell)
{
    if (cell.state == State::not_applicable)
        cell.state = State::unknown;
    return cell;
}

std::optional<ScatteringUnits> units_from_text(std::string_view text)
{
    const std::string unit = ascii_lower(trimmed(text));
    const auto is_one_of = [&](std::initializer_list<const char*> names) {
        return std::find(names.begin(), names.end(), unit) != names.end();
    };
    const Html inverse = superscript(escape("\u22121"));
    if (is_one_of({"1/a", "a^-1", "1/angstrom", "angstrom", "angstrom^-1"}))
        return ScatteringUnits{escape(" \u00C5") + inverse, escape(" \u00C5"), 10};
    if (is_one_of({"1/nm", "nm^-1", "1/nanometer", "nanometer", "nm", "nanometer^-1"}))
        return ScatteringUnits{" nm"_html + inverse, " nm"_html, 1};
    return std::nullopt;
}

std::optional<Decimal> mass_from_composition(const Measurement& m)
{
    std::set<std::string_view> wanted;
    const Rows samples = m.block->rows("_sas_sample.entity_id");
    for (std::size_t row = 0; row < samples.size(); ++row) {
        const Item id = samples.item(row, "_sas_sample.entity_id");
        if (id.is_given())
            wanted.insert(id.text);
    }
    std::optional<Decimal> total;
    const Rows entities = m.block->rows({"_entity.id", "_entity.formula_weight"});
    for (std::size_t row = 0; row < entities.size(); ++row) {
        const bool is_meant =
            wanted.empty() || wanted.count(entities.item(row, "_entity.id").text) > 0;
        if (!is_meant)
            continue;
        const auto mass = mass_of_entity(entities, row);
        if (!mass)
            return std::nullopt;
        total = total ? sum(*total, *mass) : *mass;
    }
    return total;
}

Table structural_parameters(const std::vector<Measurement>& measurements)
{
    return make_table(row_specs, measurements);
}

std::set<std::string_view> structural_parameter_row_keys()
{
    std::set<std::string_view> keys;
    for (const auto& spec : row_specs)
        keys.insert(spec.key);
    return keys;
}

} // namespace quillet
