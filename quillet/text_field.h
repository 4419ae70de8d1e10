// From the characters of a value in the file to the text that is meant.
#pragma once

#include <string>
#include <string_view>

namespace quillet
{

// Takes the delimiters off a value of CIF 1.1 (quotation marks, or semicolons if `is_text_field`),
// undoes line folding and line prefixes in text fields, and cuts blanks at the end.
// `raw` has LF as line ends.
std::string decode_value(std::string_view raw, bool is_text_field);

// The content of a text field with line prefixes and line folding (CIF 2.0 has made them part of
// the syntax; CIF 1.1 files use them too) undone. Text without them comes back as it is.
std::string unfold_text_field(std::string_view content);

} // namespace quillet
