// Symmetry codes of geometry tables: superscript numerals at atoms and the footnote that explains
// them.
#pragma once

#include "quillet/document.h"
#include "quillet/html.h"

#include <array>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace quillet
{

// A symmetry operation as written: the variables of each axis in their order, and the constant
// in 24ths.
struct SymmetryOperation {
    struct Axis {
        std::string variables; // "-x+y": signs (none before a first positive one) and letters
        int constant = 0;
        friend bool operator==(const Axis& a, const Axis& b)
        {
            return a.variables == b.variables && a.constant == b.constant;
        }
    };
    std::array<Axis, 3> axes;

    bool is_identity() const;
    Html html() const; // "-x+3/2, y-1/2, -z+1/2"
};

// From "x, -y+1/2, z" and the like. Nothing if it is not understood.
std::optional<SymmetryOperation> parse_symmetry_operation(std::string_view text);

// "i", "ii", "iii", "iv", ...
std::string lower_roman_numeral(std::size_t number);

// The codes of one block. Numerals are given in order of first appearance, so atoms must be asked
// for in the order in which they are printed.
class SymmetryCodes
{
public:
    // Reads the list of operations. `block` and `notes` must outlive this object.
    SymmetryCodes(const Block& block, Notes& notes);

    // What stands behind the label of an atom with that code (n_klm, n, "." or unknown): empty for
    // an atom that was not moved. Codes with the same effect have the same numeral.
    Html superscript_of(const Item& code);

    // "(i) ...; (ii) ..." for the codes asked for since the last call; empty if there were none.
    Html take_footnote();

private:
    std::optional<SymmetryOperation> operation_of(std::string_view code) const;

    Notes& m_notes;
    // By their numbers in the file: from an id column, or from 1 on.
    std::vector<std::pair<std::string, std::optional<SymmetryOperation>>> m_operations;
    std::vector<Html> m_explanations; // of numeral i, ii, ...
    std::set<std::size_t> m_used;     // indices of m_explanations, in the current table
};

} // namespace quillet
