#include "quillet/atom_totals.h"

#include <algorithm>

namespace quillet
{

namespace
{

constexpr std::int64_t b_unit = 100000; // per square angstrom
constexpr int b_decimals = 5;

bool is_hydrogen(std::string_view symbol)
{
    return symbol.size() == 1 &&
           (symbol[0] == 'H' || symbol[0] == 'D' || symbol[0] == 'h' || symbol[0] == 'd');
}

bool is_given(std::string_view text)
{
    return !text.empty() && text != "?" && text != ".";
}

// A plain decimal number in units of b_unit, an s.u. dropped; nothing for other text and for
// numbers that no B factor has. Much faster than the general reader of numbers.
std::optional<std::int64_t> parse_b(std::string_view text)
{
    constexpr std::int64_t largest = 999999;
    const bool is_negative = !text.empty() && text.front() == '-';
    if (is_negative || (!text.empty() && text.front() == '+'))
        text.remove_prefix(1);
    std::int64_t value = 0;
    int decimals = -1; // before the point
    bool has_digit = false;
    for (const char c : text) {
        if (c == '.' && decimals < 0) {
            decimals = 0;
            continue;
        }
        if (c == '(' && has_digit)
            break;
        if (c < '0' || c > '9')
            return std::nullopt;
        has_digit = true;
        if (decimals >= b_decimals)
            continue;
        value = 10 * value + (c - '0');
        decimals += decimals >= 0 ? 1 : 0;
        if (decimals < 0 && value > largest)
            return std::nullopt;
    }
    if (!has_digit)
        return std::nullopt;
    for (decimals = std::max(decimals, 0); decimals < b_decimals; ++decimals)
        value *= 10;
    return is_negative ? -value : value;
}

// The number of entities if it is none of them.
template<typename Entities>
std::size_t index_of(const Entities& entities, std::string_view id)
{
    const auto found = std::find_if(entities.begin(), entities.end(),
                                    [&](const auto& entity) { return entity.id == id; });
    return static_cast<std::size_t>(found - entities.begin());
}

} // namespace

AtomTotal& AtomTotal::operator+=(const AtomTotal& other)
{
    atoms += other.atoms;
    atoms_with_b += other.atoms_with_b;
    b_sum += other.b_sum;
    return *this;
}

std::optional<Decimal> AtomTotal::mean_b() const
{
    if (atoms_with_b == 0)
        return std::nullopt;
    const auto tenth = static_cast<std::uint64_t>(b_unit / 10) * atoms_with_b;
    const auto sum = static_cast<std::uint64_t>(b_sum < 0 ? -b_sum : b_sum);
    const auto tenths = (2 * sum + tenth) / (2 * tenth);
    const std::string digits = std::to_string(tenths);
    return Decimal{b_sum < 0 && tenths > 0, tenths < 10 ? "0" + digits : digits, 1};
}

void AtomTotals::add(const Atom& atom)
{
    if (!m_has_model) {
        m_first_model = atom.model;
        m_has_model = true;
    }
    if (atom.model != m_first_model || is_hydrogen(atom.type_symbol))
        return;
    AtomTotal& total = total_of(is_given(atom.entity) ? atom.entity : std::string_view());
    ++total.atoms;
    if (const auto b = parse_b(atom.b_factor)) {
        ++total.atoms_with_b;
        total.b_sum += *b;
    }
}

AtomTotal& AtomTotals::total_of(std::string_view entity)
{
    if (m_last >= m_entities.size() || m_entities[m_last].id != entity) {
        m_last = index_of(m_entities, entity);
        if (m_last == m_entities.size())
            m_entities.push_back({std::string(entity), {}});
    }
    return m_entities[m_last].total;
}

AtomTotal AtomTotals::of_entity(std::string_view id) const
{
    const std::size_t index = index_of(m_entities, id);
    return index == m_entities.size() ? AtomTotal() : m_entities[index].total;
}

AtomTotal AtomTotals::of_all() const
{
    AtomTotal total;
    for (const Entity& entity : m_entities)
        total += entity.total;
    return total;
}

} // namespace quillet
