// The picture of an asymmetric unit.
#pragma once

#include "quillet/structure_model.h"

#include <string>
#include <string_view>

namespace quillet
{

// An SVG file: atoms as displacement ellipsoids at the 50% probability level where they have
// displacement parameters, hydrogen atoms as small circles, atoms of minor disorder groups with
// broken outlines, hydrogen bonds dotted; labels at all atoms but hydrogen, and at hydrogen atoms
// of listed hydrogen bonds. The view is most_spread_out_view(). The model must have an atom.
// The same model gives the same file.
std::string draw_structure(const StructureModel& model, std::string_view title);

} // namespace quillet
