#include "quillet/experimental_details.h"

#include "quillet/cif_text.h"
#include "quillet/formula.h"
#include "quillet/space_group.h"
#include "quillet/unicode.h"

#include <algorithm>
#include <cmath>
#include <regex>

namespace quillet
{

namespace
{

const Html comma = ", "_html;
const Html times = escape(" \u00D7 ");

Item find(const Structure& s, Tags tags)
{
    return s.block->item(tags);
}

Cell text(const Structure& s, Tags tags)
{
    return text_cell(find(s, tags));
}

Cell number(const Structure& s, Tags tags, NumberFormat format)
{
    return number_cell(*s.block, tags, format);
}

void warn(const Structure& s, const Item& item, const std::string& message)
{
    s.notes->add(item.where(), message);
}

// First letter in upper case; codes and markup are left alone.
Cell capitalized_text(const Item& item)
{
    if (!item.is_given())
        return text_cell(item);
    return given_cell(text_to_html(capitalized(item.text)), item.tag);
}

Cell formula(const Structure& s)
{
    const Item moiety = find(s, {"_chemical_formula_moiety"});
    if (moiety.is_given()) {
        if (const auto html = format_moiety_formula(moiety.text))
            return given_cell(*html, moiety.tag);
        warn(s, moiety, "The moiety formula could not be read; the sum formula is printed.");
    }
    for (const char* tag : {"_chemical_formula_sum", "_chemical_formula_iupac"}) {
        const Item item = find(s, {tag});
        if (!item.is_given())
            continue;
        if (const auto html = format_formula(item.text))
            return given_cell(*html, item.tag);
        warn(s, item, "The formula could not be read and is printed as it stands.");
        return text_cell(item);
    }
    return moiety.is_given() ? text_cell(moiety) : unknown_cell("_chemical_formula_sum");
}

SpaceGroup group_from_other_items(const Structure& s)
{
    const Item hall = find(s, {"_space_group_name_Hall", "_symmetry_space_group_name_Hall"});
    if (hall.is_given()) {
        SpaceGroup group = space_group_from_hall(hall.text);
        if (group.number > 0)
            return group;
    }
    return space_group_from_number(
        parse_integer(find(s, {"_space_group_IT_number", "_symmetry_Int_Tables_number"}).text)
            .value_or(0));
}

SpaceGroup space_group_of(const Structure& s)
{
    const Item symbol = find(s, {"_space_group_name_H-M_alt", "_symmetry_space_group_name_H-M",
                                 "_space_group_name_H-M_full", "_space_group_name_H-M_ref"});
    if (!symbol.is_given())
        return group_from_other_items(s);
    SpaceGroup group = space_group_from_symbol(symbol.text);
    if (group.number == 0) {
        warn(s, symbol,
             "The space-group symbol \u201c" + std::string(symbol.text) +
                 "\u201d is not known; please check how it is printed.");
        return group;
    }
    const Item it_number = find(s, {"_space_group_IT_number", "_symmetry_Int_Tables_number"});
    const auto number = parse_integer(it_number.text);
    if (number && *number != group.number)
        warn(s, it_number,
             "Space-group number " + std::string(it_number.text) +
                 " does not agree with the symbol \u201c" + std::string(symbol.text) +
                 "\u201d, which is printed.");
    return group;
}

Cell crystal_system_and_group(const Structure& s)
{
    const SpaceGroup group = space_group_of(s);
    const Item stated = find(s, {"_space_group_crystal_system", "_symmetry_cell_setting"});
    Cell system = unknown_cell("_space_group_crystal_system");
    if (stated.is_given())
        system = given_cell(text_to_html(capitalized(ascii_lower(stated.text))), stated.tag);
    else if (!group.crystal_system.empty())
        system = given_cell(escape(capitalized(group.crystal_system)), stated.tag);
    // Superspace and magnetic groups have names that are printed as they are.
    const Cell symbol = group.symbol.empty()
                            ? text(s, {"_space_group_name_H-M_alt", "_space_group_ssg_name",
                                       "_space_group_ssg_name_IT", "_space_group_magn_name_BNS"})
                            : given_cell(group.symbol);
    return joined({system, symbol}, comma);
}

Cell cell_angle(const Structure& s, std::string_view tag)
{
    return number(s, {tag}, trimmed_zeros);
}

// Of several wavelengths that with the largest weight, else the first.
Item wavelength_item(const Structure& s)
{
    const Rows rows =
        s.block->rows({"_diffrn_radiation_wavelength", "_diffrn_radiation_wavelength_value"});
    Item best;
    double best_weight = 0;
    for (std::size_t row = 0; row < rows.size(); ++row) {
        const Item item =
            rows.item(row, {"_diffrn_radiation_wavelength", "_diffrn_radiation_wavelength_value"});
        const auto weight = parse_number(rows.item(row, "_diffrn_radiation_wavelength_wt").text);
        const double value = weight ? weight->value() : 0;
        if (item.is_given() && (!best.is_given() || value > best_weight)) {
            best = item;
            best_weight = value;
        }
    }
    return best;
}

Cell radiation(const Structure& s)
{
    const Item type = find(s, {"_diffrn_radiation_type"});
    if (type.is_given()) {
        if (const auto html = format_characteristic_radiation(type.text))
            return given_cell(*html, type.tag);
    }
    const Item named = find(s, {"_diffrn_radiation_type", "_diffrn_radiation_probe"});
    const Item wavelength = wavelength_item(s);
    if (!named.is_given() && !wavelength.is_given())
        return text_cell(named);
    Html html = named.is_given() ? capitalized_text(named).html : Html();
    if (wavelength.is_given()) {
        const Cell value = number_cell(*s.block, wavelength, as_given);
        html +=
            (html.empty() ? Html() : comma) + escape("\u03BB = ") + value.html + escape(" \u00C5");
    }
    return given_cell(html, type.tag);
}

Cell crystal_size(const Structure& s)
{
    const NumberFormat format = rounded(2);
    const Cell box = joined({number(s, {"_exptl_crystal_size_max"}, format),
                             number(s, {"_exptl_crystal_size_mid"}, format),
                             number(s, {"_exptl_crystal_size_min"}, format)},
                            times);
    if (box.state != State::unknown)
        return box;
    std::vector<Cell> parts;
    const auto add = [&](std::string_view tag, const char* name) {
        Cell cell = number(s, {tag}, format);
        if (cell.state != State::given)
            return;
        cell.html += escape(std::string("\u00A0(") + name + ")");
        parts.push_back(std::move(cell));
    };
    add("_exptl_crystal_size_rad", "radius");
    add("_exptl_crystal_size_length", "length");
    return parts.empty() ? box : joined(parts, times);
}

bool has_no_absorption_correction(const Structure& s)
{
    return ascii_lower(find(s, {"_exptl_absorpt_correction_type"}).text) == "none";
}

Cell absorption_correction(const Structure& s)
{
    Cell cell = capitalized_text(find(s, {"_exptl_absorpt_correction_type"}));
    const Item details = find(s, {"_exptl_absorpt_process_details"});
    if (!details.is_given() || has_no_absorption_correction(s))
        return cell;
    const bool in_parentheses = details.text.front() == '(';
    cell.html = cell.shown() + (in_parentheses ? " "_html : comma) + text_to_html(details.text);
    cell.state = State::given;
    return cell;
}

Cell transmission(const Structure& s)
{
    if (has_no_absorption_correction(s))
        return not_applicable_cell("_exptl_absorpt_correction_T_min");
    return joined({number(s, {"_exptl_absorpt_correction_T_min"}, rounded(3)),
                   number(s, {"_exptl_absorpt_correction_T_max"}, rounded(3))},
                  comma);
}

Item criterion_item(const Structure& s)
{
    return find(s, {"_reflns_threshold_expression", "_reflns_observed_criterion"});
}

Html criterion_html(const Item& item)
{
    const auto criterion = parse_criterion(item.text);
    return criterion ? criterion->html : text_to_html(item.text);
}

Cell reflections(const Structure& s)
{
    Cell cell = joined({number(s, {"_diffrn_reflns_number"}, as_given),
                        number(s, {"_reflns_number_total", "_reflns_number_all"}, as_given),
                        number(s, {"_reflns_number_gt", "_reflns_number_observed"}, as_given)},
                       comma);
    const Item criterion = criterion_item(s);
    if (s.tells_criterion && criterion.is_given()) {
        cell.html = cell.shown() + " ["_html + criterion_html(criterion) + "]"_html;
        cell.state = State::given;
    }
    return cell;
}

Cell sine_over_wavelength(const Structure& s)
{
    const auto theta = parse_number(find(s, {"_diffrn_reflns_theta_max"}).text);
    const auto wavelength = parse_number(wavelength_item(s).text);
    if (!theta || !wavelength || wavelength->value() <= 0)
        // That the angle is missing is told for the row of its own.
        return unknown_cell(theta ? "_diffrn_radiation_wavelength" : "");
    const double radians = theta->value() * std::acos(-1.0) / 180.0;
    return given_cell(format_computed(std::sin(radians) / wavelength->value(), 3),
                      "_diffrn_reflns_theta_max");
}

Cell residuals(const Structure& s)
{
    return joined({number(s, {"_refine_ls_R_factor_gt", "_refine_ls_R_factor_obs"}, rounded(3)),
                   number(s,
                          {"_refine_ls_wR_factor_ref", "_refine_ls_wR_factor_all",
                           "_refine_ls_wR_factor_gt", "_refine_ls_wR_factor_obs"},
                          rounded(3)),
                   number(s,
                          {"_refine_ls_goodness_of_fit_ref", "_refine_ls_goodness_of_fit_all",
                           "_refine_ls_goodness_of_fit_gt", "_refine_ls_goodness_of_fit_obs"},
                          rounded(2))},
                  comma);
}

Cell restraints(const Structure& s)
{
    Cell cell = number(s, {"_refine_ls_number_restraints"}, as_given);
    const auto count = parse_number(find(s, {"_refine_ls_number_restraints"}).text);
    cell.is_reason = count && count->value() > 0;
    return cell;
}

bool has_hydrogen(const Rows& atoms)
{
    for (std::size_t row = 0; row < atoms.size(); ++row) {
        const std::string_view symbol = atoms.item(row, "_atom_site_type_symbol").text;
        if (symbol == "H" || symbol == "D")
            return true;
    }
    return false;
}

Cell hydrogen_treatment(const Structure& s)
{
    const Item item = find(s, {"_refine_ls_hydrogen_treatment"});
    if (item.is_given())
        return given_cell(format_hydrogen_treatment(item.text), item.tag);
    const Rows atoms = s.block->rows("_atom_site_type_symbol");
    if (item.state == State::unknown && atoms.size() > 0 && !has_hydrogen(atoms))
        return unknown_cell({});
    Cell cell = text_cell(item);
    cell.is_reason = item.state == State::unknown && has_hydrogen(atoms);
    return cell;
}

Cell weighting(const Structure& s)
{
    const Item details = find(s, {"_refine_ls_weighting_details"});
    const Item scheme = find(s, {"_refine_ls_weighting_scheme"});
    const std::string word = ascii_lower(scheme.text);
    const bool is_code = word == "calc" || word == "sigma" || word == "unit";
    const bool use_scheme = details.state == State::unknown && scheme.is_given() && !is_code;
    return text_cell(use_scheme ? scheme : details);
}

Cell largest_shift(const Structure& s)
{
    const Cell cell = number(
        s, {"_refine_ls_shift/su_max", "_refine_ls_shift/esd_max", "_refine_ls_shift_over_su_max"},
        as_given);
    if (cell.state == State::given)
        return cell;
    Cell limit =
        number(s, {"_refine_ls_shift/su_max_lt", "_refine_ls_shift_over_su_max_lt"}, as_given);
    if (limit.state != State::given)
        return cell;
    if (limit.html.str().compare(0, 4, "&lt;") != 0)
        limit.html = escape("<") + limit.html;
    return limit;
}

Cell extinction(const Structure& s)
{
    const Item method = find(s, {"_refine_ls_extinction_method"});
    if (!method.is_given())
        return unknown_cell("_refine_ls_extinction_method");
    if (ascii_lower(method.text) == "none") {
        Cell none = capitalized_text(method);
        none.is_reason = false;
        return none;
    }
    return joined({text_cell(method), number(s, {"_refine_ls_extinction_coef"}, as_given)},
                  "; "_html);
}

// What is not missed where there is a centre of symmetry.
Cell of_noncentrosymmetric(const Structure& s, const Cell& cell)
{
    return cell.state == State::unknown && space_group_of(s).is_centrosymmetric ? unknown_cell({})
                                                                                : cell;
}

// Only the newer dictionary has this item, so no CIF is expected to.
Cell independent_formula_units(const Structure& s)
{
    const Cell cell = number(s, {"_cell_formula_units_Z_prime"}, as_given);
    return cell.state == State::unknown ? unknown_cell({}) : cell;
}

constexpr RowClass mandatory = RowClass::mandatory;
constexpr RowClass optional = RowClass::optional;

const RowSpec<Structure> row_specs[] = {
    {"A.formula", mandatory, formula},
    {"A.Mr", mandatory,
     [](const Structure& s) { return number(s, {"_chemical_formula_weight"}, as_given); }},
    {"A.cs_sg", mandatory, crystal_system_and_group},
    {"A.T", mandatory,
     [](const Structure& s) {
         return number(s,
                       {"_diffrn_ambient_temperature", "_diffrn_ambient_temp",
                        "_cell_measurement_temperature", "_cell_measurement_temp"},
                       without_su);
     }},
    {"A.abc", mandatory,
     [](const Structure& s) {
         return joined({number(s, {"_cell_length_a"}, as_given),
                        number(s, {"_cell_length_b"}, as_given),
                        number(s, {"_cell_length_c"}, as_given)},
                       comma);
     }},
    {"A.ang", mandatory,
     [](const Structure& s) {
         return joined({cell_angle(s, "_cell_angle_alpha"), cell_angle(s, "_cell_angle_beta"),
                        cell_angle(s, "_cell_angle_gamma")},
                       comma);
     }},
    {"A.V", mandatory, [](const Structure& s) { return number(s, {"_cell_volume"}, as_given); }},
    {"A.Z", mandatory,
     [](const Structure& s) { return number(s, {"_cell_formula_units_Z"}, as_given); }},
    {"A.Zp", optional, independent_formula_units},
    {"A.Dx", optional,
     [](const Structure& s) { return number(s, {"_exptl_crystal_density_diffrn"}, rounded(3)); }},
    {"A.F000", optional,
     [](const Structure& s) { return number(s, {"_exptl_crystal_F_000"}, as_given); }},
    {"A.rad", mandatory, radiation},
    {"A.mu", mandatory,
     [](const Structure& s) { return number(s, {"_exptl_absorpt_coefficient_mu"}, rounded(2)); }},
    {"A.col", optional,
     [](const Structure& s) {
         return joined(
             {text(s, {"_exptl_crystal_colour"}), text(s, {"_exptl_crystal_description"})}, comma);
     }},
    {"A.size", mandatory, crystal_size},
    {"A.diff", mandatory,
     [](const Structure& s) {
         return text(s, {"_diffrn_measurement_device_type", "_diffrn_measurement_device_make",
                         "_diffrn_measurement_device", "_diffrn_measurement_device_class"});
     }},
    {"A.abs", mandatory, absorption_correction},
    {"A.Tminmax", optional, transmission},
    {"A.refl", mandatory, reflections},
    {"A.Rint", mandatory,
     [](const Structure& s) { return number(s, {"_diffrn_reflns_av_R_equivalents"}, rounded(3)); }},
    {"A.thmax", optional,
     [](const Structure& s) { return number(s, {"_diffrn_reflns_theta_max"}, rounded(2)); }},
    {"A.stl", optional, sine_over_wavelength},
    {"A.compl", optional,
     [](const Structure& s) {
         return number(
             s,
             {"_diffrn_measured_fraction_theta_full", "_diffrn_reflns_Laue_measured_fraction_full"},
             rounded(3));
     }},
    {"A.Rs", mandatory, residuals},
    {"A.nref", mandatory,
     [](const Structure& s) { return number(s, {"_refine_ls_number_reflns"}, as_given); }},
    {"A.npar", mandatory,
     [](const Structure& s) { return number(s, {"_refine_ls_number_parameters"}, as_given); }},
    {"A.nres", optional, restraints},
    {"A.H", optional, hydrogen_treatment},
    {"A.wt", optional, weighting},
    {"A.shift", optional, largest_shift},
    {"A.drho", mandatory,
     [](const Structure& s) {
         return joined({number(s, {"_refine_diff_density_max"}, rounded(2)),
                        number(s, {"_refine_diff_density_min"}, rounded(2))},
                       comma);
     }},
    {"A.ext", optional, extinction},
    {"A.absst", optional,
     [](const Structure& s) {
         return of_noncentrosymmetric(s, text(s, {"_refine_ls_abs_structure_details"}));
     }},
    {"A.flack", optional,
     [](const Structure& s) {
         return of_noncentrosymmetric(
             s, number(s, {"_refine_ls_abs_structure_Flack", "_refine_ls_abs_structure_Rogers"},
                       as_given));
     }},
    {"A.dep", optional,
     [](const Structure& s) { return text(s, {"_database_code_depnum_ccdc_archive"}); }},
};

// "I" and "F^2^" as printed.
Html quantity_html(const std::string& name)
{
    if (name == "F^2^")
        return "<i>F</i><sup>2</sup>"_html;
    return name == "F" ? "<i>F</i>"_html : "<i>I</i>"_html;
}

Html refined_quantity(const Structure& s)
{
    const bool on_f = ascii_lower(find(s, {"_refine_ls_structure_factor_coef"}).text) == "f";
    return quantity_html(on_f ? "F" : "F^2^");
}

} // namespace

std::optional<ObservedCriterion> parse_criterion(std::string_view text)
{
    static const std::regex form(
        R"(^(I|F|F\^2\^)?>=?([0-9.]*)\*?(\\s|\\sigma|sigma|s|u)\(?(I|F|F\^2\^)?\)?$)");
    std::string compact;
    for (const char c : text) {
        if (!is_ascii_blank(c) && c != '[' && c != ']' && c != '\'' && c != '"')
            compact += c;
    }
    std::smatch match;
    if (!std::regex_match(compact, match, form))
        return std::nullopt;
    std::string name = match[1].matched ? match[1].str() : match[4].str();
    const Html quantity = quantity_html(name);
    ObservedCriterion result;
    if (match[2].length() > 0)
        result.threshold = format_number_text(match[2].str(), trimmed_zeros);
    result.html =
        quantity + escape(" > ") + result.threshold + escape("\u03C3(") + quantity + ")"_html;
    return result;
}

std::optional<Html> format_characteristic_radiation(std::string_view text)
{
    struct Anode {
        const char* name;
        const char* symbol;
    };
    static constexpr Anode anodes[] = {
        {"molybdenum", "Mo"}, {"mo", "Mo"}, {"copper", "Cu"},  {"cu", "Cu"},
        {"silver", "Ag"},     {"ag", "Ag"}, {"tungsten", "W"}, {"w", "W"},
        {"cobalt", "Co"},     {"co", "Co"}, {"iron", "Fe"},    {"fe", "Fe"},
        {"chromium", "Cr"},   {"cr", "Cr"}, {"gallium", "Ga"}, {"ga", "Ga"}};
    static const std::regex line("^k(\\\\a|\\\\alpha|alpha|a|\u03B1)[_~]?([12]?)~?$");
    std::string compact;
    for (const char c : ascii_lower(text)) {
        if (!is_ascii_blank(c) && c != '-' && c != '\'' && c != '"')
            compact += c;
    }
    for (const Anode& anode : anodes) {
        const std::string name = anode.name;
        if (compact.compare(0, name.size(), name) != 0)
            continue;
        std::smatch match;
        const std::string rest = compact.substr(name.size());
        if (!std::regex_match(rest, match, line))
            continue;
        Html html = escape(anode.symbol) + " <i>K</i>"_html + escape("\u03B1");
        if (match[2].length() > 0)
            html += subscript(escape(match[2].str()));
        return html;
    }
    return std::nullopt;
}

Html format_hydrogen_treatment(std::string_view text)
{
    struct Phrase {
        const char* code;
        Html phrase;
    };
    static const Phrase phrases[] = {
        {"constr", "H-atom parameters constrained"_html},
        {"mixed", "H atoms treated by a mixture of independent and constrained refinement"_html},
        {"refall", "All H-atom parameters refined"_html},
        {"refxyz", "Only H-atom coordinates refined"_html},
        {"refu", "Only H-atom displacement parameters refined"_html},
        {"noref", "H-atom parameters not refined"_html},
        {"undef", "H-atom parameters not defined"_html},
        {"hetero", "H on C constrained, all parameters of H on heteroatoms refined"_html},
        {"heteroxyz", "H on C constrained, only coordinates of H on heteroatoms refined"_html},
        {"heterou", "H on C constrained, only <i>U</i> of H on heteroatoms refined"_html},
        {"heteronoref", "H on C constrained, H on heteroatoms not refined"_html},
        {"hetero-mixed",
         "H on C and of some heteroatoms constrained, all parameters of H on remaining "
         "heteroatoms refined"_html},
        {"heteroxyz-mixed",
         "H on C and of some heteroatoms constrained, only coordinates of H on remaining "
         "heteroatoms refined"_html},
        {"heterou-mixed",
         "H on C and of some heteroatoms constrained, only <i>U</i> of H on remaining "
         "heteroatoms refined"_html},
        {"heteronoref-mixed",
         "H on C and of some heteroatoms constrained, H on remaining heteroatoms not "
         "refined"_html}};
    const std::string code = ascii_lower(trimmed(text));
    for (const Phrase& phrase : phrases) {
        if (code == phrase.code)
            return phrase.phrase;
    }
    return text_to_html(text);
}

ExperimentalLabels experimental_labels(std::vector<Structure>& structures)
{
    ExperimentalLabels labels;
    std::optional<Html> common;
    bool differ = false;
    Html threshold = "2"_html;
    for (const Structure& s : structures) {
        const Item item = criterion_item(s);
        if (!item.is_given())
            continue;
        const Html html = criterion_html(item);
        differ |= common && *common != html;
        if (const auto criterion = parse_criterion(item.text); criterion && !common)
            threshold = criterion->threshold;
        else if (!criterion)
            warn(s, item,
                 "The criterion for observed reflections has an unusual form and is "
                 "printed as it stands.");
        if (!common)
            common = html;
    }
    if (!common) {
        common = parse_criterion("I>2s(I)")->html;
        structures.front().notes->add({}, "The CIF does not say when a reflection counts as "
                                          "observed; I > 2\u03C3(I) is assumed in the table.");
    }
    if (!differ)
        labels.criterion = *common;
    labels.threshold = differ ? "<i>n</i>"_html : threshold;
    labels.quantity = refined_quantity(structures.front());
    for (Structure& s : structures)
        s.tells_criterion = differ;
    const auto other = std::find_if(structures.begin(), structures.end(), [&](const Structure& s) {
        return refined_quantity(s) != labels.quantity;
    });
    if (other != structures.end())
        warn(*other, find(*other, {"_refine_ls_structure_factor_coef"}),
             "Not all structures were refined on the same quantity; the label of the R factors "
             "is right for the first.");
    return labels;
}

Table experimental_details(const std::vector<Structure>& structures)
{
    return make_table(row_specs, structures);
}

std::set<std::string_view> experimental_row_keys()
{
    return row_keys_of(row_specs);
}

} // namespace quillet
