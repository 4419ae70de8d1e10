// The whole program but for main(), so that tests can run it in their own process.
#pragma once

#include <iosfwd>
#include <string>
#include <vector>

namespace quillet
{

// Runs quillet with these arguments (without the program's name) and returns the exit status.
// Templates that are part of the installation are looked for in `program_folder`.
int run(const std::vector<std::string>& arguments, const std::string& program_folder,
        std::ostream& out, std::ostream& err);

} // namespace quillet
