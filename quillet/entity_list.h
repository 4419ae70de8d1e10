// The table of entities: the molecules in a macromolecular crystal.
#pragma once

#include "quillet/document.h"
#include "quillet/html.h"

#include <vector>

namespace quillet
{

enum class EntityScope { all, polymers };

// The rows of the table as <tr> elements with the key B6.entity, water last. Their cells: number,
// type, description, code, copies, chains, formula weight, formula. Empty if there are none.
Html entity_rows(const std::vector<const Block*>& blocks, EntityScope scope);

} // namespace quillet
