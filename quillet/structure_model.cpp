#include "quillet/structure_model.h"

#include "quillet/number.h"
#include "quillet/unicode.h"

#include <algorithm>
#include <cmath>
#include <gemmi/eig3.hpp>
#include <gemmi/unitcell.hpp>
#include <map>
#include <optional>
#include <set>

namespace quillet
{

namespace
{

std::optional<double> number_at(const Item& item)
{
    const auto number = parse_number(item.text);
    return number ? std::optional(number->value()) : std::nullopt;
}

// Fractional; what is far outside any cell is none.
std::optional<double> coordinate_at(const Item& item)
{
    constexpr double farthest = 100;
    const auto value = number_at(item);
    return value && std::abs(*value) <= farthest ? value : std::nullopt;
}

std::optional<gemmi::UnitCell> cell_of(const Block& block)
{
    double values[6];
    const char* const names[6] = {"_cell_length_a",    "_cell_length_b",   "_cell_length_c",
                                  "_cell_angle_alpha", "_cell_angle_beta", "_cell_angle_gamma"};
    for (int i = 0; i < 6; ++i) {
        const auto value = number_at(block.item(names[i]));
        if (!value && i < 3)
            return std::nullopt;
        values[i] = value.value_or(90);
    }
    constexpr double longest = 1000;
    for (int i = 0; i < 3; ++i) {
        const bool is_length = values[i] > 0 && values[i] < longest;
        const bool is_angle = values[i + 3] > 10 && values[i + 3] < 170;
        if (!is_length || !is_angle)
            return std::nullopt;
    }
    const gemmi::UnitCell cell(values[0], values[1], values[2], values[3], values[4], values[5]);
    return cell.volume > 0 ? std::optional(cell) : std::nullopt;
}

bool is_positive_definite(const gemmi::SMat33<double>& u)
{
    double values[3];
    gemmi::eigen_decomposition(u, values);
    constexpr double smallest = 1e-6;
    return std::all_of(std::begin(values), std::end(values),
                       [](double value) { return value > smallest && value < 10; });
}

constexpr double eight_pi_squared = 78.95683520871486;

// Anisotropic displacement parameters by the label of the atom, in Cartesian axes.
class Displacements
{
public:
    Displacements(const Block& block, const gemmi::UnitCell& cell)
    {
        const Rows rows = block.rows("_atom_site_aniso_label");
        const gemmi::Mat33 to_cartesian =
            cell.orth.mat.multiply_by_diagonal({cell.ar, cell.br, cell.cr});
        for (std::size_t row = 0; row < rows.size(); ++row) {
            const auto tensor = read(rows, row);
            if (tensor)
                m_tensors.emplace(rows.item(row, "_atom_site_aniso_label").text,
                                  tensor->transformed_by(to_cartesian));
        }
    }

    const gemmi::SMat33<double>* find(const std::string& label) const
    {
        const auto found = m_tensors.find(label);
        return found == m_tensors.end() ? nullptr : &found->second;
    }

private:
    static std::optional<gemmi::SMat33<double>> read(const Rows& rows, std::size_t row)
    {
        static constexpr const char* u_names[] = {"_atom_site_aniso_U_11", "_atom_site_aniso_U_22",
                                                  "_atom_site_aniso_U_33", "_atom_site_aniso_U_12",
                                                  "_atom_site_aniso_U_13", "_atom_site_aniso_U_23"};
        static constexpr const char* b_names[] = {"_atom_site_aniso_B_11", "_atom_site_aniso_B_22",
                                                  "_atom_site_aniso_B_33", "_atom_site_aniso_B_12",
                                                  "_atom_site_aniso_B_13", "_atom_site_aniso_B_23"};
        double u[6];
        for (int i = 0; i < 6; ++i) {
            const auto value = number_at(rows.item(row, u_names[i]));
            const auto b = number_at(rows.item(row, b_names[i]));
            if (!value && !b)
                return std::nullopt;
            u[i] = value ? *value : *b / eight_pi_squared;
        }
        return gemmi::SMat33<double>{u[0], u[1], u[2], u[3], u[4], u[5]};
    }

    std::map<std::string, gemmi::SMat33<double>, std::less<>> m_tensors;
};

void set_displacement(DrawnAtom& atom, const Displacements& displacements, const Rows& rows,
                      std::size_t row, Notes& notes)
{
    if (const auto* tensor = displacements.find(atom.label)) {
        atom.has_displacement = is_positive_definite(*tensor);
        atom.displacement = *tensor;
        if (!atom.has_displacement)
            notes.add(rows.item(row, "_atom_site_label").where(),
                      "The displacement parameters of " + atom.label +
                          " are not those of an ellipsoid; the figure shows a small sphere.");
        return;
    }
    const auto u = number_at(rows.item(row, "_atom_site_U_iso_or_equiv"));
    const auto b = number_at(rows.item(row, "_atom_site_B_iso_or_equiv"));
    const double value = u ? *u : b ? *b / eight_pi_squared : 0;
    atom.displacement = {value, value, value, 0, 0, 0};
    atom.has_displacement = is_positive_definite(atom.displacement);
}

// Also where an atom's disorder group is needed after it was read.
struct Disorder {
    std::string assembly;
    std::string group; // empty: not disordered
};

bool can_be_together(const Disorder& a, const Disorder& b)
{
    return a.group.empty() || b.group.empty() || a.group == b.group || a.assembly != b.assembly;
}

class ModelReader
{
public:
    ModelReader(const Block& block, Notes& notes) : m_block(block), m_notes(notes) {}

    StructureModel read()
    {
        const auto cell = cell_of(m_block);
        if (!cell)
            return {};
        read_atoms(*cell);
        read_listed_bonds();
        if (m_model.bonds.empty())
            find_bonds_by_distance();
        bind_hydrogen_atoms();
        read_hydrogen_bonds();
        return std::move(m_model);
    }

private:
    void read_atoms(const gemmi::UnitCell& cell)
    {
        const Displacements displacements(m_block, cell);
        const Rows rows = m_block.rows("_atom_site_label");
        for (std::size_t row = 0; row < rows.size(); ++row) {
            const auto x = coordinate_at(rows.item(row, "_atom_site_fract_x"));
            const auto y = coordinate_at(rows.item(row, "_atom_site_fract_y"));
            const auto z = coordinate_at(rows.item(row, "_atom_site_fract_z"));
            const bool is_dummy = ascii_lower(rows.item(row, "_atom_site_calc_flag").text) == "dum";
            if (!x || !y || !z || is_dummy)
                continue;
            DrawnAtom atom;
            atom.label = rows.item(row, "_atom_site_label").text;
            atom.element =
                element_of_atom(rows.item(row, "_atom_site_type_symbol").text, atom.label);
            atom.is_hydrogen = gemmi::is_hydrogen(atom.element);
            atom.position = gemmi::Vec3(cell.orth.apply(gemmi::Vec3(*x, *y, *z)));
            set_displacement(atom, displacements, rows, row, m_notes);
            m_model.has_ellipsoids |= atom.has_displacement && !atom.is_hydrogen;
            Disorder disorder{std::string(rows.item(row, "_atom_site_disorder_assembly").text),
                              std::string(rows.item(row, "_atom_site_disorder_group").text)};
            if (disorder.group == "0")
                disorder.group.clear();
            atom.is_minor = !disorder.group.empty() && disorder.group != "1";
            m_index.emplace(atom.label, m_model.atoms.size());
            m_disorder.push_back(std::move(disorder));
            m_model.atoms.push_back(std::move(atom));
        }
    }

    double distance(std::size_t a, std::size_t b) const
    {
        return m_model.atoms[a].position.dist(m_model.atoms[b].position);
    }

    double radii(std::size_t a, std::size_t b) const
    {
        return static_cast<double>(gemmi::Element(m_model.atoms[a].element).covalent_r()) +
               static_cast<double>(gemmi::Element(m_model.atoms[b].element).covalent_r());
    }

    std::optional<std::size_t> atom_at(const Rows& rows, std::size_t row, const char* label,
                                       const char* symmetry) const
    {
        const Item code = rows.item(row, symmetry);
        if (code.is_given() && code.text != "1_555" && code.text != "1")
            return std::nullopt;
        const auto found = m_index.find(std::string(rows.item(row, label).text));
        return found == m_index.end() ? std::nullopt : std::optional(found->second);
    }

    void add_bond(DrawnBond::Kind kind, std::size_t a, std::size_t b)
    {
        if (a != b && m_known_bonds.insert(std::minmax(a, b)).second)
            m_model.bonds.push_back({kind, a, b});
    }

    // A list that leaves symmetry codes out connects atoms that are far apart.
    void read_listed_bonds()
    {
        constexpr double tolerance = 0.8;
        const Rows rows = m_block.rows("_geom_bond_atom_site_label_1");
        for (std::size_t row = 0; row < rows.size(); ++row) {
            const auto a =
                atom_at(rows, row, "_geom_bond_atom_site_label_1", "_geom_bond_site_symmetry_1");
            const auto b =
                atom_at(rows, row, "_geom_bond_atom_site_label_2", "_geom_bond_site_symmetry_2");
            if (a && b && distance(*a, *b) < radii(*a, *b) + tolerance)
                add_bond(DrawnBond::Kind::bond, *a, *b);
        }
    }

    void find_bonds_by_distance()
    {
        constexpr double tolerance = 0.4;
        constexpr double shortest = 0.5;
        for (std::size_t a = 0; a < m_model.atoms.size(); ++a) {
            for (std::size_t b = a + 1; b < m_model.atoms.size(); ++b) {
                const bool both_hydrogen =
                    m_model.atoms[a].is_hydrogen && m_model.atoms[b].is_hydrogen;
                const double d = distance(a, b);
                if (!both_hydrogen && d > shortest && d < radii(a, b) + tolerance &&
                    can_be_together(m_disorder[a], m_disorder[b]))
                    add_bond(DrawnBond::Kind::bond, a, b);
            }
        }
    }

    void bind_hydrogen_atoms()
    {
        constexpr double longest = 1.35;
        std::set<std::size_t> bound;
        for (const DrawnBond& bond : m_model.bonds)
            bound.insert({bond.first, bond.second});
        for (std::size_t h = 0; h < m_model.atoms.size(); ++h) {
            if (!m_model.atoms[h].is_hydrogen || bound.count(h) > 0)
                continue;
            std::size_t nearest = h;
            double best = longest;
            for (std::size_t i = 0; i < m_model.atoms.size(); ++i) {
                const bool is_candidate =
                    !m_model.atoms[i].is_hydrogen && can_be_together(m_disorder[h], m_disorder[i]);
                if (is_candidate && distance(h, i) < best) {
                    best = distance(h, i);
                    nearest = i;
                }
            }
            add_bond(DrawnBond::Kind::bond, h, nearest);
        }
    }

    void read_hydrogen_bonds()
    {
        const Rows rows = m_block.rows("_geom_hbond_atom_site_label_H");
        for (std::size_t row = 0; row < rows.size(); ++row) {
            const auto h =
                atom_at(rows, row, "_geom_hbond_atom_site_label_H", "_geom_hbond_site_symmetry_H");
            if (!h)
                continue;
            m_model.atoms[*h].is_hydrogen_bond_donor_hydrogen = true;
            const auto a =
                atom_at(rows, row, "_geom_hbond_atom_site_label_A", "_geom_hbond_site_symmetry_A");
            constexpr double longest = 3.5;
            if (a && distance(*h, *a) < longest)
                add_bond(DrawnBond::Kind::hydrogen_bond, *h, *a);
        }
    }

    const Block& m_block;
    Notes& m_notes;
    StructureModel m_model;
    std::map<std::string, std::size_t, std::less<>> m_index;
    std::vector<Disorder> m_disorder; // of each atom
    std::set<std::pair<std::size_t, std::size_t>> m_known_bonds;
};

} // namespace

gemmi::El element_of_atom(std::string_view type_symbol, std::string_view label)
{
    std::string name;
    for (const char c : type_symbol.empty() ? label : type_symbol) {
        if (!is_ascii_letter(c) || name.size() == 2)
            break;
        name += c;
    }
    gemmi::El element = gemmi::find_element(name.c_str());
    if (element == gemmi::El::X && name.size() == 2)
        element = gemmi::find_element(name.substr(0, 1).c_str());
    return element;
}

StructureModel asymmetric_unit(const Block& block, Notes& notes)
{
    return ModelReader(block, notes).read();
}

} // namespace quillet
