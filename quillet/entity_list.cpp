#include "quillet/entity_list.h"

#include "quillet/cells.h"
#include "quillet/cif_text.h"
#include "quillet/deposition_items.h"
#include "quillet/formula.h"
#include "quillet/unicode.h"

#include <algorithm>

namespace quillet
{

namespace
{

// A row of _entity.
struct Entity {
    const Block* block = nullptr;
    Rows rows;
    std::size_t row = 0;
    Subject subject;
    std::string type; // in lower case

    Item item(std::string_view tag) const { return rows.item(row, tag); }
    bool is_polymer() const { return type == "polymer"; }
};

std::vector<Entity> entities_of(const std::vector<const Block*>& blocks, EntityScope scope)
{
    std::vector<Entity> entities;
    for (const Block* block : blocks) {
        const Rows rows = block->rows("_entity.id");
        for (std::size_t row = 0; row < rows.size(); ++row) {
            const Item id = rows.item(row, "_entity.id");
            Entity entity{block,
                          rows,
                          row,
                          {block, "entity_id", id.text, false},
                          ascii_lower(rows.item(row, "_entity.type").text)};
            if (id.is_given() && (scope == EntityScope::all || entity.is_polymer()))
                entities.push_back(std::move(entity));
        }
    }
    std::stable_partition(entities.begin(), entities.end(),
                          [](const Entity& entity) { return entity.type != "water"; });
    return entities;
}

Cell description(const Entity& entity)
{
    Cell cell = text_cell(entity.item("_entity.pdbx_description"));
    const Cell synonym = text_cell(values_about(entity.subject, {"_entity_name_com.name"}));
    return with_shell(std::move(cell), synonym);
}

Cell code(const Entity& entity)
{
    const Cell cell = text_cell(values_about(entity.subject, {"_pdbx_entity_nonpoly.comp_id"}));
    const bool is_one_component = entity.type == "non-polymer" || entity.type == "water";
    return cell.state == State::unknown && !is_one_component && !entity.type.empty()
               ? not_applicable_cell(cell.item)
               : cell;
}

Cell chains(const Entity& entity)
{
    const Item strands = item_about(entity.subject, {"_entity_poly.pdbx_strand_id"});
    std::vector<Html> ids;
    std::string_view rest = strands.text;
    while (!rest.empty()) {
        const std::size_t end = std::min(rest.find(','), rest.size());
        add_new(ids, text_to_html(rest.substr(0, end)));
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    for (const Item& asym : values_about(entity.subject, {"_struct_asym.id"}).items) {
        if (!strands.is_given())
            add_new(ids, text_to_html(asym.text));
    }
    return ids.empty() ? unknown_cell("_struct_asym.id") : given_cell(listed(ids));
}

Cell formula(const Entity& entity)
{
    const Item code = item_about(entity.subject, {"_pdbx_entity_nonpoly.comp_id"});
    if (!code.is_given())
        return entity.is_polymer() || entity.type == "branched" ? not_applicable_cell({})
                                                                : unknown_cell({});
    const Subject component{entity.block, "id", code.text, false};
    const Item item = item_about(component, {"_chem_comp.formula"});
    if (!item.is_given())
        return text_cell(item);
    const auto html = format_formula(item.text);
    return html ? given_cell(*html) : text_cell(item);
}

Html td(const Cell& cell)
{
    return "<td>"_html + cell.shown() + "</td>"_html;
}

Html table_row(const Entity& entity)
{
    const auto number = [&](std::string_view tag) {
        return number_cell(*entity.block, entity.item(tag), as_given);
    };
    return "<tr data-row=\"B6.entity\"><th scope=\"row\">"_html +
           text_cell(entity.item("_entity.id")).shown() + "</th>"_html +
           td(text_cell(entity.item("_entity.type"))) + td(description(entity)) + td(code(entity)) +
           td(number("_entity.pdbx_number_of_molecules")) + td(chains(entity)) +
           td(number("_entity.formula_weight")) + td(formula(entity)) + "</tr>\n"_html;
}

} // namespace

Html entity_rows(const std::vector<const Block*>& blocks, EntityScope scope)
{
    std::vector<Html> rows; // blocks of one file often describe the same entities
    for (const Entity& entity : entities_of(blocks, scope))
        add_new(rows, table_row(entity));
    Html html;
    for (const Html& row : rows)
        html += row;
    return html;
}

} // namespace quillet
