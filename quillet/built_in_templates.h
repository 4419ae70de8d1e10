// The templates that are part of the program (from templates/, made into a source file by the
// build).
#pragma once

#include <map>
#include <string_view>

namespace quillet
{

// Both by file name; nullptr if there is none of that name.
const std::string_view* find_built_in_template(std::string_view file_name);
const std::string_view* find_built_in_partial(std::string_view name);

// Parts that templates share ({{>name}}), by name.
const std::map<std::string_view, std::string_view>& built_in_partials();

} // namespace quillet
