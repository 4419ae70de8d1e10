// Which data an article can need. Files are full of what it does not (reflections, coordinates of
// macromolecules, embedded instruction files); values of such items are counted, not kept.
#pragma once

#include <string_view>

namespace quillet
{

// `tag` in lower case.
bool is_kept(std::string_view tag);

} // namespace quillet
