// Writing a file whole or not at all.
#pragma once

#include <string>

namespace quillet
{

// Replaces the file's content. What was there stays if anything goes wrong; throws
// std::runtime_error then.
void write_file(const std::string& path, const std::string& content);

} // namespace quillet
