#include "quillet/geometry.h"

#include "quillet/cells.h"
#include "quillet/structure_model.h"
#include "quillet/unicode.h"

#include <algorithm>
#include <set>

namespace quillet
{

namespace
{

const Html em_dash = escape("\u2014");
const Html dots = escape("\u00B7\u00B7\u00B7");

// The data names of a loop of geometric parameters.
struct GeometryLoop {
    std::string value;
    std::string other_value; // in the newer dictionary
    std::string flag;
    std::vector<std::string> labels; // of the atoms
    std::vector<std::string> symmetries;
};

GeometryLoop make_loop(const std::string& prefix, std::string value, std::string other_value,
                       int atom_count)
{
    GeometryLoop loop{std::move(value), std::move(other_value), prefix + "_publ_flag", {}, {}};
    for (int i = 1; i <= atom_count; ++i) {
        loop.labels.push_back(prefix + "_atom_site_label_" + std::to_string(i));
        loop.symmetries.push_back(prefix + "_site_symmetry_" + std::to_string(i));
    }
    return loop;
}

const GeometryLoop bond_loop =
    make_loop("_geom_bond", "_geom_bond_distance", "_geom_bond_distance", 2);
const GeometryLoop angle_loop = make_loop("_geom_angle", "_geom_angle", "_geom_angle_value", 3);
const GeometryLoop torsion_loop =
    make_loop("_geom_torsion", "_geom_torsion", "_geom_torsion_angle", 4);

bool is_yes(const Item& flag)
{
    const std::string word = ascii_lower(flag.text);
    return word == "y" || word == "yes";
}

bool is_no(const Item& flag)
{
    const std::string word = ascii_lower(flag.text);
    return word == "n" || word == "no";
}

// The atom's label as in the file, with the numeral of its symmetry code.
Html atom_html(const Item& label, const Item& code, SymmetryCodes& codes)
{
    if (!label.is_given())
        return text_cell(label).shown();
    return escape(label.text) + codes.superscript_of(code);
}

GeometricParameter read_parameter(const Block& block, const Rows& rows, std::size_t row,
                                  const GeometryLoop& loop, SymmetryCodes& codes)
{
    GeometricParameter parameter;
    for (std::size_t i = 0; i < loop.labels.size(); ++i) {
        if (i > 0)
            parameter.label += em_dash;
        parameter.label +=
            atom_html(rows.item(row, loop.labels[i]), rows.item(row, loop.symmetries[i]), codes);
    }
    const Item value = rows.item(row, {loop.value, loop.other_value});
    parameter.value = number_cell(block, value, as_given).shown();
    return parameter;
}

// Labels of the block's hydrogen atoms.
std::set<std::string_view> hydrogen_labels(const Block& block)
{
    std::set<std::string_view> labels;
    const Rows rows = block.rows("_atom_site_label");
    for (std::size_t row = 0; row < rows.size(); ++row) {
        const Item label = rows.item(row, "_atom_site_label");
        const Item type = rows.item(row, "_atom_site_type_symbol");
        const gemmi::El element = element_of_atom(type.text, label.text);
        if (label.is_given() && gemmi::is_hydrogen(element))
            labels.insert(label.text);
    }
    return labels;
}

// Which rows of the loops are wanted.
struct Wanted {
    GeometrySelection selection;
    std::set<std::string_view> hydrogen;

    bool operator()(const Rows& rows, std::size_t row, const GeometryLoop& loop) const
    {
        if (selection == GeometrySelection::marked)
            return is_yes(rows.item(row, loop.flag));
        return std::none_of(loop.labels.begin(), loop.labels.end(), [&](const std::string& label) {
            return hydrogen.count(rows.item(row, label).text) > 0;
        });
    }
};

void add_parameters(std::vector<GeometricParameter>& parameters, const Block& block,
                    const GeometryLoop& loop, const Wanted& wanted, SymmetryCodes& codes)
{
    const Rows rows = block.rows({loop.value, loop.other_value});
    std::set<std::pair<std::string, std::string>> known;
    for (std::size_t row = 0; row < rows.size(); ++row) {
        if (!wanted(rows, row, loop))
            continue;
        const auto parameter = read_parameter(block, rows, row, loop, codes);
        if (known.emplace(parameter.label.str(), parameter.value.str()).second)
            parameters.push_back(parameter);
    }
}

Html parameter_cells(const GeometricParameter& parameter, bool is_first)
{
    const Html label = is_first ? "<th scope=\"row\">"_html + parameter.label + "</th>"_html
                                : "<td>"_html + parameter.label + "</td>"_html;
    return label + "<td>"_html + parameter.value + "</td>"_html;
}

// Forms that nobody filled in have a row of question marks.
bool tells_anything(const Rows& rows, std::size_t row)
{
    return rows
        .item(row, {"_geom_hbond_atom_site_label_D", "_geom_hbond_atom_site_label_A",
                    "_geom_hbond_distance_DA"})
        .is_given();
}

bool is_published(const Rows& rows, std::size_t row, bool any_is_marked)
{
    const Item flag = rows.item(row, "_geom_hbond_publ_flag");
    return any_is_marked ? is_yes(flag) : !is_no(flag);
}

HydrogenBond read_hydrogen_bond(const Block& block, const Rows& rows, std::size_t row,
                                SymmetryCodes& codes)
{
    const auto atom = [&](std::string_view label, std::string_view symmetry) {
        return atom_html(rows.item(row, label), rows.item(row, symmetry), codes);
    };
    const auto number = [&](std::string_view tag, NumberFormat format) {
        return number_cell(block, rows.item(row, tag), format).shown();
    };
    HydrogenBond bond;
    bond.label = atom("_geom_hbond_atom_site_label_D", "_geom_hbond_site_symmetry_D") + em_dash;
    bond.label += atom("_geom_hbond_atom_site_label_H", "_geom_hbond_site_symmetry_H") + dots;
    bond.label += atom("_geom_hbond_atom_site_label_A", "_geom_hbond_site_symmetry_A");
    bond.donor_hydrogen = number("_geom_hbond_distance_DH", rounded(2));
    bond.hydrogen_acceptor = number("_geom_hbond_distance_HA", rounded(2));
    bond.donor_acceptor = number("_geom_hbond_distance_DA", rounded(2));
    bond.angle = number("_geom_hbond_angle_DHA", rounded(0));
    return bond;
}

Html td(const Html& content)
{
    return "<td>"_html + content + "</td>"_html;
}

bool is_isotropic(const Rows& rows, std::size_t row)
{
    const Item type = rows.item(row, {"_atom_site_adp_type", "_atom_site_thermal_displace_type"});
    return ascii_lower(type.text) == "uiso";
}

bool has_partial_occupancy(const Rows& rows)
{
    for (std::size_t row = 0; row < rows.size(); ++row) {
        const auto occupancy = parse_number(rows.item(row, "_atom_site_occupancy").text);
        if (occupancy && occupancy->value() < 1)
            return true;
    }
    return false;
}

Html coordinate_row(const Block& block, const Rows& rows, std::size_t row,
                    const CoordinateTable& table)
{
    const auto number = [&](std::string_view tag) {
        return number_cell(block, rows.item(row, tag), as_given).shown();
    };
    const Item label = rows.item(row, "_atom_site_label");
    Html displacement = number(table.has_displacement_b ? "_atom_site_B_iso_or_equiv"
                                                        : "_atom_site_U_iso_or_equiv");
    if (is_isotropic(rows, row))
        displacement += "*"_html;
    Html html = "<tr data-row=\"A.atom\"><th scope=\"row\">"_html +
                (label.is_given() ? escape(label.text) : text_cell(label).shown()) + "</th>"_html +
                td(number("_atom_site_fract_x")) + td(number("_atom_site_fract_y")) +
                td(number("_atom_site_fract_z")) + td(displacement);
    if (table.has_occupancies)
        html += td(number("_atom_site_occupancy"));
    return html + "</tr>\n"_html;
}

} // namespace

std::vector<GeometricParameter> selected_geometry(const Block& block, GeometrySelection selection,
                                                  SymmetryCodes& codes)
{
    const Wanted wanted{selection, hydrogen_labels(block)};
    std::vector<GeometricParameter> parameters;
    add_parameters(parameters, block, bond_loop, wanted, codes);
    add_parameters(parameters, block, angle_loop, wanted, codes);
    add_parameters(parameters, block, torsion_loop, wanted, codes);
    return parameters;
}

Html geometry_rows(const std::vector<GeometricParameter>& parameters)
{
    constexpr std::size_t most_in_one_column = 8;
    const bool side_by_side = parameters.size() > most_in_one_column;
    const std::size_t rows = side_by_side ? (parameters.size() + 1) / 2 : parameters.size();
    Html html;
    for (std::size_t row = 0; row < rows; ++row) {
        html += "<tr data-row=\"A.geom\">"_html + parameter_cells(parameters[row], true);
        if (side_by_side && row + rows < parameters.size())
            html += parameter_cells(parameters[row + rows], false);
        else if (side_by_side)
            html += "<td colspan=\"2\">"_html + escape("\u00A0") + "</td>"_html;
        html += "</tr>\n"_html;
    }
    return html;
}

std::vector<HydrogenBond> hydrogen_bonds(const Block& block, SymmetryCodes& codes)
{
    const Rows rows = block.rows({"_geom_hbond_atom_site_label_D", "_geom_hbond_distance_DA"});
    bool any_is_marked = false;
    for (std::size_t row = 0; row < rows.size(); ++row)
        any_is_marked |= is_yes(rows.item(row, "_geom_hbond_publ_flag"));
    std::vector<HydrogenBond> bonds;
    for (std::size_t row = 0; row < rows.size(); ++row) {
        if (tells_anything(rows, row) && is_published(rows, row, any_is_marked))
            bonds.push_back(read_hydrogen_bond(block, rows, row, codes));
    }
    return bonds;
}

Html hydrogen_bond_rows(const std::vector<HydrogenBond>& bonds)
{
    Html html;
    for (const HydrogenBond& bond : bonds)
        html += "<tr data-row=\"A.hbond\"><th scope=\"row\">"_html + bond.label + "</th>"_html +
                td(bond.donor_hydrogen) + td(bond.hydrogen_acceptor) + td(bond.donor_acceptor) +
                td(bond.angle) + "</tr>\n"_html;
    return html;
}

CoordinateTable fractional_coordinates(const Block& block)
{
    const Rows rows = block.rows("_atom_site_label");
    CoordinateTable table;
    table.has_occupancies = has_partial_occupancy(rows);
    table.has_displacement_b = !block.item("_atom_site_U_iso_or_equiv").is_given() &&
                               block.item("_atom_site_B_iso_or_equiv").is_given();
    for (std::size_t row = 0; row < rows.size(); ++row)
        table.rows += coordinate_row(block, rows, row, table);
    return table;
}

} // namespace quillet
