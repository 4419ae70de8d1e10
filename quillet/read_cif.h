// Reading a CIF file.
#pragma once

#include "quillet/document.h"

#include <string>

namespace quillet
{

// Reads the file and recognises its kind. Of items that no article needs only names and numbers
// of values are kept. Throws InputError, with its place, if the file is not a CIF; what could be
// read but looks wrong goes to `notes`.
Document read_cif(const std::string& path, Notes& notes);

} // namespace quillet
