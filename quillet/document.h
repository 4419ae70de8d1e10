// A CIF in memory: blocks of columns of values, found by data name. The only form in which the
// rest of quillet sees a file; whatever reads one (see read_cif.h) makes this.
#pragma once

#include "quillet/atom_totals.h"
#include "quillet/diagnostics.h"

#include <initializer_list>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace quillet
{

enum class State {
    unknown,        // "?", empty, or no such item
    not_applicable, // "."
    given
};

// Judged by the text without its outer blanks, quoted or not: "? " in a text field is unknown too.
State state_of(std::string_view text);

struct Value {
    std::string text; // without delimiters, line ends as LF, unfolded, no blanks at its end
    Position where;
};

// The values of one data name in one block. A pair is a column with one value.
struct Column {
    std::string tag; // as written
    Position where;
    std::size_t loop = 0;      // which loop of its block, from 1; 0 for a pair
    std::size_t count = 0;     // number of values in the file
    std::vector<Value> values; // empty if nothing in the article needs them (see kept_items.h)
};

// A value looked up. Refers into the document, which must outlive it.
struct Item {
    State state = State::unknown;
    std::string_view text; // trimmed; empty unless `state` is given
    std::string_view tag;  // as written in the file, or the first one asked for
    const Column* column = nullptr;
    std::size_t row = 0;

    bool is_given() const { return state == State::given; }
    Position where() const { return column ? column->values[row].where : Position{}; }
};

// Data names to look for, in order of preference: the first with a usable value wins.
using Tags = std::initializer_list<std::string_view>;

// How data names are compared. All are compared without regard to case.
enum class Naming {
    exact,
    // The first "." counts as "_": `_cell.length_a` and `_cell_length_a` are one name. Right for
    // the core dictionary, which has both spellings; wrong for mmCIF.
    dot_as_underscore
};

class Block;

// Some columns of a block read row by row. Columns of the same loop run together; the values of
// other columns belong to the row only if there is just one row.
class Rows
{
public:
    Rows() = default;
    std::size_t size() const { return m_size; }
    Item item(std::size_t row, Tags tags) const;
    Item item(std::size_t row, std::string_view tag) const { return item(row, {tag}); }

private:
    friend class Block;
    const Block* m_block = nullptr;
    std::size_t m_loop = 0;
    std::size_t m_size = 0;
};

class Block
{
public:
    Block(std::string name, Position where) : m_name(std::move(name)), m_where(where) {}

    const std::string& name() const { return m_name; }
    Position where() const { return m_where; }

    // In file order.
    const std::vector<Column>& columns() const { return m_columns; }

    // The column of that name; nullptr if there is none. Among duplicates the first that holds a
    // usable value.
    const Column* find(std::string_view tag) const;

    // Number of values that the file has under that name, kept or not.
    std::size_t count(std::string_view tag) const;

    // The first usable value of the first name that has one; failing that, "." before "?".
    Item item(Tags tags) const;
    Item item(std::string_view tag) const { return item({tag}); }

    // The rows of the loop that holds the first of `tags` that is in the block.
    Rows rows(Tags tags) const;
    Rows rows(std::string_view tag) const { return rows({tag}); }

    // Of a macromolecular structure, whose atoms are not kept.
    const AtomTotals& atom_totals() const { return m_atom_totals; }

    // For whoever builds the block.
    std::vector<Column>& mutable_columns() { return m_columns; }
    AtomTotals& mutable_atom_totals() { return m_atom_totals; }
    void make_index(Naming naming, Notes& notes);

private:
    friend class Rows;
    std::string key_of(std::string_view tag) const;

    std::string m_name;
    Position m_where;
    std::vector<Column> m_columns;
    AtomTotals m_atom_totals;
    Naming m_naming = Naming::exact;
    std::unordered_map<std::string, std::size_t> m_index; // key -> position in m_columns
};

enum class Kind { unrecognised, core, macromolecular, scattering };

struct Document {
    std::string path; // as given by the user, for messages
    Kind kind = Kind::unrecognised;
    std::vector<Block> blocks;
};

// Tells the kind from the data names of all blocks.
Kind recognise_kind(const std::vector<Block>& blocks);

// The first usable value in any block, in file order.
Item first_item(const Document& document, Tags tags);

} // namespace quillet
