// What tables tell of the atoms of a macromolecule: how many there are and their mean displacement.
// Summed while a file is read, so that the atoms need not be kept.
#pragma once

#include "quillet/number.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quillet
{

// Atoms other than hydrogen.
struct AtomTotal {
    std::size_t atoms = 0;
    std::size_t atoms_with_b = 0;
    std::int64_t b_sum = 0; // in 1e-5 square angstrom, so that sums are exact

    AtomTotal& operator+=(const AtomTotal& other);
    // Square angstrom with one decimal, half away from zero, not weighted by occupancy; nothing if
    // no atom has a B factor.
    std::optional<Decimal> mean_b() const;
};

// The totals of the first model of a block, by entity (_atom_site.label_entity_id; "" for atoms
// that name none).
class AtomTotals
{
public:
    // The values of a row of _atom_site as in the file; empty for columns that it does not have.
    struct Atom {
        std::string_view type_symbol;
        std::string_view entity;
        std::string_view b_factor;
        std::string_view model;
    };
    void add(const Atom& atom);

    bool empty() const { return m_entities.empty(); }
    // Of an entity; all zero if it has no atoms.
    AtomTotal of_entity(std::string_view id) const;
    AtomTotal of_all() const;

private:
    struct Entity {
        std::string id;
        AtomTotal total;
    };
    AtomTotal& total_of(std::string_view entity);

    std::string m_first_model;
    bool m_has_model = false;
    std::vector<Entity> m_entities;
    std::size_t m_last = 0; // index of the last atom's entity: atoms of one follow each other
};

} // namespace quillet
