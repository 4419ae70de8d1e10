#include "quillet/crystallization.h"

#include "quillet/cif_text.h"
#include "quillet/unicode.h"

#include <algorithm>

namespace quillet
{

namespace
{

enum class Role { unknown, macromolecule, reservoir };

bool contains(const std::string& text, std::string_view part)
{
    return text.find(part) != std::string::npos;
}

// What a solution is for, told by its id, which is a word in some files and a number in most.
Role role_of(std::string_view solution)
{
    const std::string id = ascii_lower(solution);
    for (const char* word : {"protein", "macromol", "sample", "drop"}) {
        if (contains(id, word))
            return Role::macromolecule;
    }
    for (const char* word : {"reservoir", "well", "precip", "mother"}) {
        if (contains(id, word))
            return Role::reservoir;
    }
    return Role::unknown;
}

// Names of the macromolecules, in lower case.
std::vector<std::string> macromolecule_names(const Block& block)
{
    std::vector<std::string> names = {"protein", "complex"};
    const auto add = [&](std::string_view tag) {
        const Rows rows = block.rows(tag);
        for (std::size_t row = 0; row < rows.size(); ++row) {
            const Item name = rows.item(row, tag);
            if (name.is_given())
                names.push_back(ascii_lower(name.text));
        }
    };
    const Rows entities = block.rows("_entity.pdbx_description");
    for (std::size_t row = 0; row < entities.size(); ++row) {
        const Item name = entities.item(row, "_entity.pdbx_description");
        const std::string type = ascii_lower(entities.item(row, "_entity.type").text);
        if (name.is_given() && (type.empty() || type == "polymer"))
            names.push_back(ascii_lower(name.text));
    }
    add("_entity_name_com.name");
    return names;
}

bool is_macromolecule(std::string_view name, const std::vector<std::string>& names)
{
    const std::string lower = ascii_lower(name);
    return std::any_of(names.begin(), names.end(),
                       [&](const std::string& part) { return contains(lower, part); });
}

Html html_of(const Item& item)
{
    return item.is_given() ? text_to_html(item.text) : Html();
}

// Categories of components, of which files use either or both.
struct ComponentSource {
    std::string_view crystal, solution, name, amount, range, unit, volume;
};

constexpr ComponentSource component_sources[] = {
    {"_exptl_crystal_grow_comp.crystal_id", "_exptl_crystal_grow_comp.sol_id",
     "_exptl_crystal_grow_comp.name", "_exptl_crystal_grow_comp.conc", "", "",
     "_exptl_crystal_grow_comp.volume"},
    {"_pdbx_exptl_crystal_grow_comp.crystal_id", "_pdbx_exptl_crystal_grow_comp.sol_id",
     "_pdbx_exptl_crystal_grow_comp.comp_name", "_pdbx_exptl_crystal_grow_comp.conc",
     "_pdbx_exptl_crystal_grow_comp.conc_range", "_pdbx_exptl_crystal_grow_comp.conc_units", ""}};

void warn_of_unknown_unit(const Item& unit, Notes& notes)
{
    if (unit.is_given() && !is_known_unit(unit.text))
        notes.add_once(unit.where(), "The unit \u201c" + std::string(unit.text) +
                                         "\u201d is not known and is printed as it stands.");
}

void add_components(const Subject& crystal, const ComponentSource& source,
                    const std::vector<std::string>& names, Notes& notes,
                    std::vector<SolutionComponent>& components)
{
    const Rows rows = crystal.block->rows({source.name, source.amount, source.solution});
    const auto find = [&](std::size_t row, std::string_view tag) {
        return tag.empty() ? Item() : rows.item(row, tag);
    };
    for (const std::size_t row : rows_about(crystal, rows, source.crystal)) {
        SolutionComponent component;
        component.solution = find(row, source.solution).text;
        const Item name = find(row, source.name);
        component.name = html_of(name);
        component.is_macromolecule = is_macromolecule(name.text, names);
        Item amount = find(row, source.amount);
        if (!amount.is_given())
            amount = find(row, source.range);
        if (amount.is_given()) {
            const Item unit = find(row, source.unit);
            component.amount = format_quantity(amount.text, unit.text);
            warn_of_unknown_unit(unit, notes);
        }
        const Item volume = find(row, source.volume);
        if (volume.is_given())
            component.volume = format_number_text(volume.text, as_given);
        if (!component.name.empty() || !component.amount.empty())
            components.push_back(std::move(component));
    }
}

// "100 mM HEPES"
Html component_text(const SolutionComponent& c)
{
    if (c.name.empty())
        return c.amount + " ?"_html;
    return c.amount.empty() ? c.name : c.amount + " "_html + c.name;
}

std::vector<Html> component_texts(const CrystalGrowth& g, Role role, bool with_macromolecules)
{
    std::vector<Html> texts;
    for (const SolutionComponent& c : g.components) {
        if (role_of(c.solution) == role && (with_macromolecules || !c.is_macromolecule))
            texts.push_back(component_text(c));
    }
    return texts;
}

// One value of all solutions that play a role; where there are several, each with its solution.
template<typename Format>
std::vector<Html> solution_values(const CrystalGrowth& g, Role role, std::string_view tag,
                                  Format format)
{
    std::vector<std::pair<Html, std::string_view>> values;
    const Rows rows = g.crystal.block->rows("_pdbx_exptl_crystal_grow_sol.sol_id");
    for (const std::size_t row :
         rows_about(g.crystal, rows, "_pdbx_exptl_crystal_grow_sol.crystal_id")) {
        const std::string_view solution =
            rows.item(row, "_pdbx_exptl_crystal_grow_sol.sol_id").text;
        const Item item = rows.item(row, tag);
        if (item.is_given() && role_of(solution) == role)
            values.emplace_back(format(rows, row, item), solution);
    }
    std::vector<Html> result;
    for (const auto& [value, solution] : values)
        add_new(result,
                values.size() > 1 ? value + " ("_html + text_to_html(solution) + ")"_html : value);
    return result;
}

std::vector<Html> solution_volumes(const CrystalGrowth& g, Role role)
{
    return solution_values(
        g, role, "_pdbx_exptl_crystal_grow_sol.volume",
        [](const Rows& rows, std::size_t row, const Item& volume) {
            return format_quantity(
                volume.text, rows.item(row, "_pdbx_exptl_crystal_grow_sol.volume_units").text);
        });
}

std::vector<Html> solution_ph(const CrystalGrowth& g, Role role)
{
    return solution_values(g, role, "_pdbx_exptl_crystal_grow_sol.pH",
                           [](const Rows&, std::size_t, const Item& ph) {
                               return "pH "_html + format_number_text(ph.text, as_given);
                           });
}

// The components of the solutions and their pH; unknown if there are no components.
Cell composition(const CrystalGrowth& g, Role role, bool with_macromolecules)
{
    std::vector<Html> parts = component_texts(g, role, with_macromolecules);
    if (parts.empty())
        return unknown_cell("_pdbx_exptl_crystal_grow_comp.comp_name");
    for (const Html& ph : solution_ph(g, role))
        parts.push_back(ph);
    return given_cell(listed(parts));
}

Item of_growth(const CrystalGrowth& g, Tags tags)
{
    return g.rows.size() > 0 ? g.rows.item(g.row, tags) : g.crystal.block->item(tags);
}

Cell growth_text(const CrystalGrowth& g, Tags tags)
{
    return text_cell(of_growth(g, tags));
}

Cell method(const CrystalGrowth& g)
{
    const Item item = of_growth(g, {"_exptl_crystal_grow.method"});
    return item.is_given() ? given_cell(format_crystallization_method(item.text), item.tag)
                           : text_cell(item);
}

Cell temperature(const CrystalGrowth& g)
{
    Cell cell =
        number_cell(*g.crystal.block, of_growth(g, {"_exptl_crystal_grow.temp"}), trimmed_zeros);
    const Cell details = growth_text(g, {"_exptl_crystal_grow.temp_details"});
    return with_shell(std::move(cell), details);
}

Cell ph(const CrystalGrowth& g)
{
    const Item value = of_growth(g, {"_exptl_crystal_grow.pH"});
    const Item range = of_growth(g, {"_exptl_crystal_grow.pdbx_pH_range"});
    if (value.is_given() || !range.is_given())
        return number_cell(*g.crystal.block, value, as_given);
    return given_cell(format_range_text(range.text, as_given), range.tag);
}

Cell macromolecule_concentration(const CrystalGrowth& g)
{
    std::vector<const SolutionComponent*> found;
    for (const SolutionComponent& c : g.components) {
        if (c.is_macromolecule && role_of(c.solution) == Role::macromolecule && !c.amount.empty())
            found.push_back(&c);
    }
    std::vector<Html> parts;
    for (const SolutionComponent* c : found)
        parts.push_back(found.size() > 1 ? component_text(*c) : c->amount);
    return parts.empty() ? unknown_cell("_exptl_crystal_grow_comp.conc")
                         : given_cell(listed(parts));
}

Cell reservoir(const CrystalGrowth& g)
{
    Cell cell = composition(g, Role::reservoir, true);
    return cell.state == State::given ? cell : growth_text(g, {"_exptl_crystal_grow.pdbx_details"});
}

Cell other_details(const CrystalGrowth& g)
{
    const bool tells_components = composition(g, Role::reservoir, true).state == State::given;
    const Item first = of_growth(g, {"_exptl_crystal_grow.pdbx_details"});
    if (first.is_given() && tells_components)
        return text_cell(first);
    const Item second = of_growth(g, {"_exptl_crystal_grow.details"});
    const bool repeats =
        first.is_given() && collapse_blanks(first.text) == collapse_blanks(second.text);
    // What stands in the row of the reservoir is not repeated, and not missing.
    if (repeats || (first.is_given() && !second.is_given()))
        return unknown_cell({});
    return text_cell(second);
}

Cell drop(const CrystalGrowth& g)
{
    std::vector<Html> volumes;
    for (const SolutionComponent& c : g.components) {
        if (role_of(c.solution) == Role::macromolecule && !c.volume.empty())
            volumes.push_back(c.volume + " "_html + (c.name.empty() ? "?"_html : c.name));
    }
    const Html whole = listed(solution_volumes(g, Role::macromolecule));
    const Html parts = listed(volumes);
    if (whole.empty() && parts.empty())
        return unknown_cell("_pdbx_exptl_crystal_grow_sol.volume");
    if (whole.empty() || parts.empty())
        return given_cell(whole + parts);
    return given_cell(whole + " ("_html + parts + ")"_html);
}

// Of solutions whose ids do not tell what they are for.
Cell other_solutions(const CrystalGrowth& g)
{
    std::vector<std::pair<std::string_view, std::vector<Html>>> solutions;
    for (const SolutionComponent& c : g.components) {
        if (role_of(c.solution) != Role::unknown)
            continue;
        const auto known = std::find_if(solutions.begin(), solutions.end(),
                                        [&](const auto& s) { return s.first == c.solution; });
        if (known == solutions.end())
            solutions.push_back({c.solution, {component_text(c)}});
        else
            known->second.push_back(component_text(c));
    }
    Html html;
    for (const auto& [id, texts] : solutions) {
        html += html.empty() ? Html() : "; "_html;
        if (!id.empty())
            html += text_to_html(id) + ": "_html;
        for (const Html& text : texts)
            html += (&text == &texts.front() ? Html() : ", "_html) + text;
    }
    return html.empty() ? unknown_cell({}) : given_cell(html);
}

Cell matthews(const CrystalGrowth& g)
{
    const Block& block = *g.crystal.block;
    Subject crystal = g.crystal;
    crystal.id_name = "id";
    return joined(
        {number_cell(block, item_about(crystal, {"_exptl_crystal.density_Matthews"}), rounded(2)),
         number_cell(block, item_about(crystal, {"_exptl_crystal.density_percent_sol"}),
                     rounded(1))},
        ", "_html);
}

// The symbol of a unit with the blank before it, if any; nullptr if the unit is not known.
const Html* find_unit(std::string_view unit)
{
    struct Unit {
        std::vector<std::string_view> words; // in lower case
        Html symbol;
    };
    static const Html percent_by_weight = "%(<i>w</i>/<i>v</i>)"_html;
    static const Html percent_by_volume = "%(<i>v</i>/<i>v</i>)"_html;
    static const Unit units[] = {
        {{"millimolar", "mm"}, " mM"_html},
        {{"molar", "m"}, " M"_html},
        {{"micromolar", "um"}, " "_html + escape("\u00B5M")},
        {{"percent_weight_by_volume", "% w/v", "%w/v", "% (w/v)", "%(w/v)"}, percent_by_weight},
        {{"percent_volume_by_volume", "% v/v", "%v/v", "% (v/v)", "%(v/v)"}, percent_by_volume},
        {{"percent_saturation"}, "% saturated"_html},
        {{"%", "percent"}, "%"_html},
        {{"milligrams_per_milliliter", "mg/ml"},
         " mg ml<sup>"_html + escape("\u2212") + "1</sup>"_html},
        // One of these is how the dictionary spells it.
        {{"microliter", "micoliter", "ul"}, " "_html + escape("\u00B5l")},
        {{"milliliter", "ml"}, " ml"_html},
        {{"nanoliter", "nl"}, " nl"_html}};
    const std::string word = ascii_lower(unit);
    for (const Unit& known : units) {
        if (std::find(known.words.begin(), known.words.end(), word) != known.words.end())
            return &known.symbol;
    }
    return nullptr;
}

constexpr RowClass mandatory = RowClass::mandatory;
constexpr RowClass optional = RowClass::optional;

const RowSpec<CrystalGrowth> row_specs[] = {
    {"B2.meth", mandatory, method},
    {"B2.plate", mandatory,
     [](const CrystalGrowth& g) { return growth_text(g, {"_exptl_crystal_grow.apparatus"}); }},
    {"B2.T", mandatory, temperature},
    {"B2.pH", optional, ph},
    {"B2.pconc", mandatory, macromolecule_concentration},
    {"B2.buf", mandatory,
     [](const CrystalGrowth& g) { return composition(g, Role::macromolecule, false); }},
    {"B2.res", mandatory, reservoir},
    {"B2.sols", optional, other_solutions},
    {"B2.drop", mandatory, drop},
    {"B2.rvol", mandatory,
     [](const CrystalGrowth& g) {
         const Html volumes = listed(solution_volumes(g, Role::reservoir));
         return volumes.empty() ? unknown_cell("_pdbx_exptl_crystal_grow_sol.volume")
                                : given_cell(volumes);
     }},
    {"B2.seed", optional,
     [](const CrystalGrowth& g) { return growth_text(g, {"_exptl_crystal_grow.seeding"}); }},
    {"B2.time", optional,
     [](const CrystalGrowth& g) { return growth_text(g, {"_exptl_crystal_grow.time"}); }},
    {"B2.cryo", optional,
     [](const CrystalGrowth& g) {
         return text_cell(
             item_about(g.crystal, {"_pdbx_exptl_crystal_cryo_treatment.final_solution_details",
                                    "_pdbx_exptl_crystal_cryo_treatment.soaking_details"}));
     }},
    {"B2.det", optional, other_details},
    {"B2.vm", optional, matthews},
};

// The crystals that a category names; those of the first category that names any.
std::vector<CrystalGrowth> named_crystals(const Block& block, std::string_view id_tag)
{
    std::vector<CrystalGrowth> crystals;
    const Rows rows = block.rows(id_tag);
    for (std::size_t row = 0; row < rows.size(); ++row) {
        const Item id = rows.item(row, id_tag);
        const bool is_known =
            std::any_of(crystals.begin(), crystals.end(),
                        [&](const CrystalGrowth& g) { return g.crystal.id == id.text; });
        if (!is_known)
            crystals.push_back({{&block, "crystal_id", id.text, crystals.empty()}, rows, row, {}});
    }
    return crystals;
}

} // namespace

std::vector<CrystalGrowth> crystal_growths_of(const Block& block, Notes& notes)
{
    std::vector<CrystalGrowth> crystals = named_crystals(block, "_exptl_crystal_grow.crystal_id");
    if (crystals.empty())
        crystals.push_back({{&block, "crystal_id", "", true}, {}, 0, {}});
    const Rows solutions = block.rows("_pdbx_exptl_crystal_grow_sol.volume_units");
    for (std::size_t row = 0; row < solutions.size(); ++row)
        warn_of_unknown_unit(solutions.item(row, "_pdbx_exptl_crystal_grow_sol.volume_units"),
                             notes);
    const auto names = macromolecule_names(block);
    for (CrystalGrowth& crystal : crystals) {
        for (const ComponentSource& source : component_sources)
            add_components(crystal.crystal, source, names, notes, crystal.components);
    }
    return crystals;
}

Table crystallization(const std::vector<CrystalGrowth>& crystals)
{
    return make_table(row_specs, crystals);
}

std::set<std::string_view> crystallization_row_keys()
{
    return row_keys_of(row_specs);
}

Html format_crystallization_method(std::string_view text)
{
    if (!is_all_capitals(text))
        return text_to_html(text);
    if (ascii_lower(collapse_blanks(text)) == "batch mode")
        return "Batch"_html;
    std::string result = sentence_case(text);
    constexpr std::string_view american = "Vapor diffusion";
    if (begins_with(result, american))
        result.replace(0, american.size(), "Vapour diffusion");
    return text_to_html(result);
}

bool is_known_unit(std::string_view unit)
{
    return find_unit(unit) != nullptr;
}

Html format_quantity(std::string_view value, std::string_view unit)
{
    const Html number = format_range_text(value, as_given);
    if (unit.empty())
        return number;
    if (const Html* symbol = find_unit(unit))
        return number + *symbol;
    std::string other(unit);
    std::replace(other.begin(), other.end(), '_', ' ');
    return number + " "_html + text_to_html(other);
}

} // namespace quillet
