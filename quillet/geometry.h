// The tables of selected geometry and of hydrogen bonds of one structure, and that of its
// coordinates.
#pragma once

#include "quillet/document.h"
#include "quillet/html.h"
#include "quillet/symmetry_codes.h"

#include <string>
#include <vector>

namespace quillet
{

// A bond length, an angle or a torsion angle with the atoms that it is between.
struct GeometricParameter {
    Html label; // "P2-O3<sup>i</sup>"
    Html value;
};

// Bonds, then angles, then torsions; repeated ones once.
std::vector<GeometricParameter> selected_geometry(const Block& block, GeometrySelection selection,
                                                  SymmetryCodes& codes);

// As <tr> elements: two parameters side by side if there are many.
Html geometry_rows(const std::vector<GeometricParameter>& parameters);

struct HydrogenBond {
    Html label;                                             // "O2-H2...O4<sup>ii</sup>"
    Html donor_hydrogen, hydrogen_acceptor, donor_acceptor; // distances
    Html angle;
};

// Those marked for publication; if none is, all but those marked not to be published.
std::vector<HydrogenBond> hydrogen_bonds(const Block& block, SymmetryCodes& codes);

// As <tr> elements.
Html hydrogen_bond_rows(const std::vector<HydrogenBond>& bonds);

// The table of fractional coordinates.
struct CoordinateTable {
    Html rows;                       // as <tr> elements; empty if there are no atoms
    bool has_occupancies = false;    // there is a column for them
    bool has_displacement_b = false; // B instead of U
};
CoordinateTable fractional_coordinates(const Block& block);

} // namespace quillet
