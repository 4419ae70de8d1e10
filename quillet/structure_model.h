// Atoms and bonds of the asymmetric unit of a small-molecule structure, for drawing it.
#pragma once

#include "quillet/document.h"

#include <cstddef>
#include <gemmi/elem.hpp>
#include <gemmi/math.hpp>
#include <string>
#include <string_view>
#include <vector>

namespace quillet
{

// The element of an atom by its type symbol ("Fe3+" is iron) or, without one, by the letters that
// its label begins with. El::X if neither tells.
gemmi::El element_of_atom(std::string_view type_symbol, std::string_view label);

struct DrawnAtom {
    std::string label;
    gemmi::El element = gemmi::El::X;
    gemmi::Vec3 position; // Cartesian, in Angstrom
    // Displacement tensor in Cartesian axes, in square Angstrom: anisotropic, or isotropic as a
    // multiple of the unit matrix. Meaningful only if `has_displacement`; positive definite then.
    gemmi::SMat33<double> displacement{0, 0, 0, 0, 0, 0};
    bool has_displacement = false;
    bool is_hydrogen = false;
    bool is_minor = false; // in a disorder group other than the first
    bool is_hydrogen_bond_donor_hydrogen = false;
};

struct DrawnBond {
    enum class Kind { bond, hydrogen_bond } kind;
    std::size_t first; // indices of atoms
    std::size_t second;
};

struct StructureModel {
    std::vector<DrawnAtom> atoms;
    std::vector<DrawnBond> bonds;
    bool has_ellipsoids = false; // some atom that is not hydrogen has a displacement tensor
};

// Reads cell, coordinates, displacement parameters and bonds. Bonds are those that the CIF lists
// between atoms as they stand; if it lists none, those that the distances tell (covalent radii of
// Cordero et al. 2008, as in gemmi). Hydrogen atoms that are left without a bond get the nearest
// one. Empty if there is no cell or no atom with coordinates. What is wrong goes to `notes`.
StructureModel asymmetric_unit(const Block& block, Notes& notes);

} // namespace quillet
