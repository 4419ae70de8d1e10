// Reading the plainest rows of loops without a grammar.
#pragma once

#include <string_view>
#include <vector>

namespace quillet
{

// Reads one value for each element of `row` from the text between `at` and `end`, and moves `at`
// behind the last of them. False, with `at` where it was, unless all are plain: without quotation
// marks or within a pair of them in one line, not beginning with anything that means something else
// in CIF 1.1 (a data name, a comment, a text field), not possibly a keyword, and followed by a
// blank or line end before `end`. Such values are read as the grammar would read them. Values come
// without quotation marks and point into the text.
bool read_plain_row(const char*& at, const char* end, std::vector<std::string_view>& row);

} // namespace quillet
