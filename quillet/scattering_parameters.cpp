#include "quillet/scattering_parameters.h"

#include "quillet/cif_text.h"
#include "quillet/scattering_sample.h"

namespace quillet
{

namespace
{

const Html en_dash = escape("\u2013");

Cell number_of_result(const Measurement& m, std::string_view tag)
{
    return number_cell_of(m, of_result(m, {tag}), as_given);
}

// "value +- error", or the value alone without zeros at its end. What does not fit that form is
// printed as it stands.
Cell with_error(const Measurement& m, Tags value_tags, std::string_view error_tag)
{
    const Item value = of_result(m, value_tags);
    const Item error = of_result(m, {error_tag});
    const auto uncertainty = parse_number(error.text);
    if (!value.is_given() || !error.is_given() || (uncertainty && uncertainty->decimal.is_zero()))
        return number_cell_of(m, value, trimmed_zeros);
    if (const auto html = format_with_error(value.text, error.text))
        return given_cell(*html, value.tag);
    if (uncertainty && uncertainty->decimal.negative) {
        m.notes->add(error.where(), std::string(error.tag) +
                                        " is negative; the value is printed without an error.");
        return number_cell_of(m, value, trimmed_zeros);
    }
    Cell cell = number_cell_of(m, value, as_given);
    cell.html += escape(" \u00B1 ") + format_number_text(error.text, as_given);
    return cell;
}

Cell with_text(Cell cell, const Item& text)
{
    if (cell.state == State::given && text.is_given())
        cell.html += escape("\u00A0(") + text_to_html(text.text) + ")"_html;
    return cell;
}

// The momentum transfer of a point of the curve, in reciprocal nanometres.
std::optional<double> momentum_at(const Measurement& m, std::string_view point_tag)
{
    const Item point = of_result(m, {point_tag});
    const auto index = parse_integer(point.text);
    const auto rows = rows_of_curve(m);
    if (!index || rows.empty())
        return std::nullopt;
    if (*index < 1 || static_cast<std::size_t>(*index) > rows.size()) {
        m.notes->add(point.where(), std::string(point.tag) +
                                        " is no point of the curve, which has " +
                                        std::to_string(rows.size()) + " of them.");
        return std::nullopt;
    }
    const Column& curve = *m.block->find("_sas_scan_intensity.momentum_transfer");
    const auto q = parse_number(curve.values[rows[static_cast<std::size_t>(*index) - 1]].text);
    const double per_nm = q ? units_of(m).momentum_per_nm : 0;
    return per_nm > 0 ? std::optional(q->value() * per_nm) : std::nullopt;
}

Cell guinier_range(const Measurement& m)
{
    const Item radius =
        of_result(m, {"_sas_result.Rg_from_Guinier", "_sas_result.reciprocal_space_Rg"});
    const auto rg = parse_number(radius.text);
    const auto low = momentum_at(m, "_sas_result.Guinier_point_min");
    const auto high = momentum_at(m, "_sas_result.Guinier_point_max");
    if (!rg || !low || !high)
        return unknown_cell({});
    return given_cell(format_computed(*low * rg->value(), 2) + en_dash +
                      format_computed(*high * rg->value(), 2));
}

Cell number_of_distribution(const Measurement& m, std::string_view tag, NumberFormat format)
{
    return number_cell_of(m, of_distance_distribution(m, {tag}), format);
}

Cell distribution_points(const Measurement& m)
{
    const auto find = [&](std::string_view tag) {
        return number_of_distribution(m, tag, as_given);
    };
    return with_shell(range_in_unit(find("_sas_p_of_R_details.p_of_R_point_min"),
                                    find("_sas_p_of_R_details.p_of_R_point_max"), {}),
                      find("_sas_p_of_R_details.number_of_points"));
}

Cell distribution_range(const Measurement& m, std::string_view low_tag, std::string_view high_tag,
                        NumberFormat format, Html ScatteringUnits::*unit)
{
    const Cell low = number_of_distribution(m, low_tag, format);
    const Cell high = number_of_distribution(m, high_tag, format);
    const bool has_value = low.state == State::given || high.state == State::given;
    return range_in_unit(low, high, has_value ? units_of(m).*unit : Html());
}

Cell mass_ratio(const Measurement& m)
{
    const auto measured = parse_number(of_result(m, {"_sas_result.experimental_MW"}).text);
    const auto composition = mass_from_composition(m);
    if (!measured || !composition || composition->is_zero())
        return unknown_cell({});
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
    {"C4.gpt", optional,
     [](const Measurement& m) {
         return range_in_unit(number_of_result(m, "_sas_result.Guinier_point_min"),
                              number_of_result(m, "_sas_result.Guinier_point_max"), {});
     }},
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
         return distribution_range(m, "_sas_p_of_R_details.qmin", "_sas_p_of_R_details.qmax",
                                   as_given, &ScatteringUnits::momentum);
     }},
    {"C4.pn", optional, distribution_points},
    {"C4.prr", optional,
     [](const Measurement& m) {
         return distribution_range(m, "_sas_p_of_R_details.Rmin", "_sas_p_of_R_details.Rmax",
                                   trimmed_zeros, &ScatteringUnits::length);
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
     [](const Measurement& m) { return text_cell(of_result(m, {"_sas_result.comments"})); }},
    {"C6.code", optional,
     [](const Measurement& m) { return text_cell(of_result(m, {"_sas_result.SASBDB_code"})); }},
};

} // namespace

Table structural_parameters(const std::vector<Measurement>& measurements)
{
    return measurement_table(row_specs, measurements);
}

std::set<std::string_view> structural_parameter_row_keys()
{
    return row_keys_of(row_specs);
}

} // namespace quillet
