// From the characters of a value in the file to the text that is meant.
#pragma once

#include <string>
#include <string_view>

namespace quillet
{

enum class CifVersion { cif_1_1, cif_2_0 };

// Takes the delimiters off a value (quotation marks, or semicolons if `is_text_field`), undoes line
// folding and line prefixes in text fields, and cuts blanks at the end. Lists and tables of CIF 2.0
// stay as they are. `raw` has LF as line ends.
std::string decode_value(std::string_view raw, bool is_text_field, CifVersion version);

// The content of a text field with line prefixes and line folding (CIF 2.0 has made them part of
// the syntax; CIF 1.1 files use them too) undone. Text without them comes back as it is.
std::string unfold_text_field(std::string_view content);

} // namespace quillet
