// Space groups: symbols as crystallographers print them, and what follows from a symbol.
#pragma once

#include "quillet/html.h"

#include <string>
#include <string_view>

namespace quillet
{

struct SpaceGroup {
    Html symbol;
    std::string crystal_system;      // "monoclinic"; empty if the group is not known
    int number = 0;                  // in International Tables; 0 if the group is not known
    bool is_centrosymmetric = false; // false too if the group is not known
};

// From a Hermann-Mauguin symbol, short or full, with or without blanks, with the markup and
// parentheses that files have (P2~1~/n, P 2(1)/c). Full monoclinic symbols with unique axis b are
// shortened. An unknown symbol comes back as it is, first letter in italics, without number.
SpaceGroup space_group_from_symbol(std::string_view text);

// From a Hall symbol. Without number (and symbol) if it is not one of the tabulated.
SpaceGroup space_group_from_hall(std::string_view text);

// The reference setting of the group with that number in International Tables. Without number
// (and symbol) if there is none.
SpaceGroup space_group_from_number(int number);

} // namespace quillet
