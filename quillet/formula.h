// Chemical formulae of a CIF as printed formulae.
#pragma once

#include "quillet/html.h"

#include <optional>
#include <string_view>

namespace quillet
{

// A formula of elements and counts separated by blanks ('C17 H14 Cl N2 O'), as in
// _chemical_formula_sum, _chemical_formula_iupac and _chem_comp.formula. A last token that is a
// signed number is the charge. Nothing if any of it is not understood.
std::optional<Html> format_formula(std::string_view text);

// A formula of moieties ('C12 H16 N2 O6 2+, 2(C F3 O3 S 1-), 5(H2 O)'), as in
// _chemical_formula_moiety; the parts are joined with a middle dot. Nothing if any of it is not
// understood.
std::optional<Html> format_moiety_formula(std::string_view text);

} // namespace quillet
