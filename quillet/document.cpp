#include "quillet/document.h"

#include "quillet/unicode.h"

#include <algorithm>

namespace quillet
{

namespace
{

Item item_at(const Column& column, std::size_t row)
{
    Item item;
    item.tag = column.tag;
    item.column = &column;
    item.row = row;
    item.state = state_of(column.values[row].text);
    if (item.is_given())
        item.text = trimmed(column.values[row].text);
    return item;
}

// The first usable value of the column.
Item best_item(const Column& column)
{
    Item best;
    best.tag = column.tag;
    for (std::size_t row = 0; row < column.values.size(); ++row) {
        const Item item = item_at(column, row);
        if (item.is_given())
            return item;
        if (item.state == State::not_applicable && best.state == State::unknown)
            best = item;
    }
    return best;
}

// Keeps the better of two: a value before ".", "." before "?".
void prefer(Item& best, const Item& other)
{
    if (best.tag.empty() || static_cast<int>(other.state) > static_cast<int>(best.state))
        best = other;
}

// A data name that a block has again.
struct Repetition {
    const Column* first;
    const Column* again;
};

// A few are told one by one. A form put in front of a finished CIF repeats dozens of names, which
// are told together.
void report_repetitions(const std::vector<Repetition>& repetitions, const std::string& block,
                        Notes& notes)
{
    constexpr std::size_t most_told_one_by_one = 3;
    const auto line = [](const Column* column) { return std::to_string(column->where.line); };
    if (repetitions.size() <= most_told_one_by_one) {
        for (const Repetition& r : repetitions)
            notes.add(r.again->where, "Data name " + r.again->tag + " stands twice in data_" +
                                          block + " (first in line " + line(r.first) +
                                          "); the first value that is not \u201c?\u201d is used.");
        return;
    }
    std::string names;
    for (const Repetition& r : repetitions)
        names += (names.empty() ? "" : ", ") + r.again->tag + " (lines " + line(r.first) + " and " +
                 line(r.again) + ")";
    notes.add(repetitions.front().again->where,
              std::to_string(repetitions.size()) + " data names stand twice in data_" + block +
                  "; of each the first value that is not \u201c?\u201d is used: " + names + ".");
}

} // namespace

State state_of(std::string_view text)
{
    const std::string_view content = trimmed(text);
    if (content.empty() || content == "?")
        return State::unknown;
    // Manuscript forms have text fields such as "? # name" for the author to fill in.
    if (content.front() == '?' && trimmed(content.substr(1)).front() == '#')
        return State::unknown;
    return content == "." ? State::not_applicable : State::given;
}

Item Rows::item(std::size_t row, Tags tags) const
{
    Item best;
    for (const std::string_view tag : tags) {
        const Column* column = m_block ? m_block->find(tag) : nullptr;
        Item found;
        found.tag = tag;
        if (column && column->loop == m_loop && row < column->values.size())
            found = item_at(*column, row);
        else if (column && m_size == 1 && column->values.size() == 1)
            found = item_at(*column, 0);
        prefer(best, found);
        if (best.is_given())
            break;
    }
    return best;
}

const Column* Block::find(std::string_view tag) const
{
    const auto found = m_index.find(key_of(tag));
    return found == m_index.end() ? nullptr : &m_columns[found->second];
}

std::size_t Block::count(std::string_view tag) const
{
    const Column* column = find(tag);
    return column ? column->count : 0;
}

Item Block::item(Tags tags) const
{
    Item best;
    for (const std::string_view tag : tags) {
        const Column* column = find(tag);
        Item found;
        found.tag = tag;
        if (column)
            found = best_item(*column);
        prefer(best, found);
        if (best.is_given())
            break;
    }
    return best;
}

Rows Block::rows(Tags tags) const
{
    Rows rows;
    for (const std::string_view tag : tags) {
        const Column* column = find(tag);
        if (!column)
            continue;
        rows.m_block = this;
        rows.m_loop = column->loop;
        rows.m_size = column->values.size();
        break;
    }
    return rows;
}

std::string Block::key_of(std::string_view tag) const
{
    std::string key = ascii_lower(tag);
    if (m_naming == Naming::dot_as_underscore) {
        const auto dot = key.find('.');
        if (dot != std::string::npos)
            key[dot] = '_';
    }
    return key;
}

void Block::make_index(Naming naming, Notes& notes)
{
    m_naming = naming;
    m_index.clear();
    std::vector<Repetition> repetitions;
    for (std::size_t i = 0; i < m_columns.size(); ++i) {
        const auto [known, is_new] = m_index.emplace(key_of(m_columns[i].tag), i);
        if (is_new)
            continue;
        const Column& first = m_columns[known->second];
        if (!best_item(first).is_given())
            known->second = i;
        repetitions.push_back({&first, &m_columns[i]});
    }
    report_repetitions(repetitions, m_name, notes);
}

Kind recognise_kind(const std::vector<Block>& blocks)
{
    bool is_macromolecular = false;
    bool is_core = false;
    for (const Block& block : blocks) {
        for (const Column& column : block.columns()) {
            const std::string tag = ascii_lower(column.tag);
            if (begins_with(tag, "_sas_"))
                return Kind::scattering;
            if (tag == "_entry.id" || tag == "_entity.id" || tag == "_entity_poly.entity_id" ||
                tag == "_atom_site.cartn_x")
                is_macromolecular = true;
            else if (tag == "_audit_conform.dict_name")
                is_macromolecular |=
                    std::any_of(column.values.begin(), column.values.end(), [](const Value& v) {
                        return ascii_lower(v.text).find("mmcif") != std::string::npos;
                    });
            else if (tag == "_cell_length_a" || tag == "_cell.length_a" ||
                     tag == "_chemical_formula_sum" || tag == "_chemical_formula.sum" ||
                     tag == "_atom_site_label" || tag == "_atom_site.label" ||
                     tag == "_publ_section_title" || tag == "_publ_section.title")
                is_core = true;
        }
    }
    if (is_macromolecular)
        return Kind::macromolecular;
    return is_core ? Kind::core : Kind::unrecognised;
}

Item first_item(const Document& document, Tags tags)
{
    Item best;
    for (const Block& block : document.blocks) {
        prefer(best, block.item(tags));
        if (best.is_given())
            break;
    }
    return best;
}

} // namespace quillet
