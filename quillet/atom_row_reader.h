// From the columns of a loop of coordinates to totals of atoms.
#pragma once

#include "quillet/atom_totals.h"

#include <algorithm>
#include <array>
#include <string>
#include <string_view>
#include <vector>

namespace quillet
{

// Which columns of a loop of coordinates are wanted for totals of atoms, and their values in the
// current row.
class AtomRowReader
{
public:
    // `tags` of all columns in lower case; none if the loop holds no coordinates.
    void begin_loop(const std::vector<std::string>& tags)
    {
        m_values = {};
        m_fields.clear();
        for (const std::string& tag : tags)
            m_fields.push_back(field_of(tag));
    }

    bool is_active() const { return !m_fields.empty(); }
    bool wants(std::size_t column) const { return m_fields[column] != nowhere; }

    // For values that do not stay where they are until the end of the row.
    void keep(std::size_t column, std::string value)
    {
        m_values[m_fields[column]] = std::move(value);
    }
    void add_kept_row(AtomTotals& totals) const
    {
        totals.add({m_values[0], m_values[1], m_values[2], m_values[3]});
    }

    // For the values of a whole row.
    void add_row(const std::vector<std::string_view>& row, AtomTotals& totals) const
    {
        std::array<std::string_view, field_count> values;
        for (std::size_t column = 0; column < m_fields.size(); ++column) {
            if (wants(column))
                values[m_fields[column]] = row[column];
        }
        totals.add({values[0], values[1], values[2], values[3]});
    }

private:
    static constexpr std::size_t field_count = 4;
    static constexpr std::size_t nowhere = field_count;

    static std::size_t field_of(const std::string& tag)
    {
        constexpr std::array<std::string_view, field_count> tags = {
            "_atom_site.type_symbol", "_atom_site.label_entity_id", "_atom_site.b_iso_or_equiv",
            "_atom_site.pdbx_pdb_model_num"};
        return static_cast<std::size_t>(std::find(tags.begin(), tags.end(), tag) - tags.begin());
    }

    std::vector<std::size_t> m_fields; // of each column
    std::array<std::string, field_count> m_values;
};

} // namespace quillet
