#include "quillet/scattering_sample.h"

#include "quillet/cif_text.h"
#include "quillet/deposition_items.h"
#include "quillet/macromolecule_production.h"
#include "quillet/unicode.h"

#include <algorithm>

namespace quillet
{

namespace
{

const Html line_break = "<br>"_html;

Cell list_cell(const std::vector<Html>& values, std::string_view item)
{
    return values.empty() ? unknown_cell(item) : given_cell(listed(values), item);
}

// No reason for a row of its own if it only repeats the title.
Cell sample_name(const Measurement& m)
{
    const Item title = of_scan(m, {"_sas_scan.title"});
    const Item name = of_sample(m, {"_sas_sample.name"});
    Cell cell = text_cell(name);
    if (ascii_lower(collapse_blanks(name.text)) == ascii_lower(collapse_blanks(title.text)))
        cell.is_reason = false;
    return cell;
}

// "1 copy"
Html copies(const Item& number)
{
    if (!number.is_given())
        return "? copies"_html;
    const bool is_one = parse_integer(number.text).value_or(0) == 1;
    return format_number_text(number.text, as_given) + (is_one ? " copy"_html : " copies"_html);
}

// "Liver Receptor Homolog-1 (LRH-1), protein, 1 copy"
Html component(const Measurement& m, const SampleEntities& entities, std::size_t row)
{
    const Item name = entities.item(row, "_entity.pdbx_description");
    Html html = text_cell(name).shown();
    std::vector<Html> short_names;
    for (const Item& short_name : items_of_id(*m.block, "_entity_name_com.entity_id",
                                              entities.id(row), {"_entity_name_com.name"})) {
        if (ascii_lower(short_name.text) != ascii_lower(name.text))
            short_names.push_back(text_to_html(short_name.text));
    }
    if (!short_names.empty())
        html += " ("_html + join(short_names, ", "_html) + ")"_html;
    const Cell type = unknown_unless_given(text_cell(entities.item(row, "_entity.type")));
    return html + ", "_html + type.shown() + ", "_html +
           copies(entities.item(row, "_entity.pdbx_number_of_molecules"));
}

Cell components(const Measurement& m)
{
    constexpr std::string_view tag = "_entity.pdbx_description";
    const SampleEntities entities = entities_of(m);
    std::vector<Html> lines;
    for (const std::size_t row : entities.rows)
        lines.push_back(component(m, entities, row));
    return lines.empty() ? unknown_cell(tag) : given_cell(join(lines, line_break), tag);
}

Cell organisms(const Measurement& m)
{
    const SampleEntities entities = entities_of(m);
    std::vector<Html> names;
    for (const std::size_t row : entities.rows) {
        for (const Item& name : items_of_id(*m.block, "_entity_src_gen.entity_id", entities.id(row),
                                            {"_entity_src_gen.gene_src_common_name",
                                             "_entity_src_gen.pdbx_gene_src_scientific_name"}))
            add_new(names, italic(text_to_html(name.text)));
    }
    return list_cell(names, "_entity_src_gen.gene_src_common_name");
}

Html database_entry(const Measurement& m, const Item& code)
{
    const Item database = m.block->rows(code.tag).item(code.row, "_struct_ref.db_name");
    const Html name =
        ascii_lower(database.text) == "unp" ? "UniProt"_html : text_to_html(database.text);
    return join({name, text_to_html(code.text)}, " "_html);
}

Cell database_entries(const Measurement& m)
{
    const SampleEntities entities = entities_of(m);
    std::vector<Html> entries;
    for (const std::size_t row : entities.rows) {
        for (const Item& code : items_of_id(*m.block, "_struct_ref.entity_id", entities.id(row),
                                            {"_struct_ref.db_code"}))
            add_new(entries, database_entry(m, code));
    }
    return list_cell(entries, "_struct_ref.db_code");
}

// In the order of the components, a line for each.
Cell sequences(const Measurement& m)
{
    constexpr std::string_view tag = "_entity_poly.pdbx_seq_one_letter_code";
    const SampleEntities entities = entities_of(m);
    std::vector<Html> lines;
    bool is_any_given = false;
    for (const std::size_t row : entities.rows) {
        const auto sequence =
            items_of_id(*m.block, "_entity_poly.entity_id", entities.id(row), {tag});
        is_any_given |= !sequence.empty();
        lines.push_back(sequence.empty() ? "?"_html : format_sequence(sequence.front().text));
    }
    return is_any_given ? given_cell(join(lines, line_break), tag) : unknown_cell(tag);
}

// The mass of one entity in kDa, all its copies together.
std::optional<Decimal> mass_of_entity(const SampleEntities& entities, std::size_t row)
{
    const auto written = parse_number(entities.item(row, "_entity.formula_weight").text);
    const auto weight = written ? without_exponent(*written) : std::nullopt;
    if (!weight || weight->decimal.negative || weight->relation != 0)
        return std::nullopt;
    const Item copies = entities.item(row, "_entity.pdbx_number_of_molecules");
    const int count = copies.is_given() ? parse_integer(copies.text).value_or(0) : 1;
    if (count < 1)
        return std::nullopt;
    constexpr double heaviest_in_kda = 1000; // a larger number is in Da
    const Decimal mass =
        weight->value() > heaviest_in_kda ? divided_by_thousand(weight->decimal) : weight->decimal;
    return product(mass, static_cast<unsigned>(count));
}

std::optional<Decimal> sum_of_entities(const Measurement& m)
{
    const SampleEntities entities = entities_of(m);
    std::optional<Decimal> total;
    for (const std::size_t row : entities.rows) {
        const auto mass = mass_of_entity(entities, row);
        if (!mass)
            return std::nullopt;
        total = total ? sum(*total, *mass) : *mass;
    }
    return total;
}

Cell composition_mass(const Measurement& m)
{
    constexpr std::string_view tag = "_entity.formula_weight";
    const auto total = sum_of_entities(m);
    if (!total)
        return number_cell_of(m, of_sample(m, {"_sas_sample.sample_MW"}), trimmed_zeros);
    Number number;
    number.decimal = *total;
    return given_cell(format_number(number, trimmed_zeros), tag);
}

Cell concentration(const Measurement& m)
{
    const Item item = of_sample(m, {"_sas_sample.specimen_concentration"});
    return item.is_given() ? given_cell(format_range_text(item.text, trimmed_zeros), item.tag)
                           : text_cell(item);
}

// "50 mM HEPES"; a name that has numbers itself is the whole recipe.
Html buffer_substance(const Measurement& m, const Item& name)
{
    const auto amount = of_buffer(m, {"_sas_buffer.concentration"});
    const bool is_recipe = std::any_of(name.text.begin(), name.text.end(), is_ascii_digit);
    std::vector<Html> amount_and_unit;
    if (amount.is_given() && !is_recipe)
        amount_and_unit = {format_number_text(amount.text, trimmed_zeros),
                           text_to_html(of_buffer(m, {"_sas_buffer.unit"}).text)};
    return join({join(amount_and_unit, escape("\u00A0")), text_to_html(name.text)}, " "_html);
}

Cell buffer(const Measurement& m)
{
    const Item name = of_buffer(m, {"_sas_buffer.name"});
    const Item composition = of_buffer(m, {"_sas_buffer.composition"});
    const Item ph = of_buffer(m, {"_sas_buffer.pH"});
    Html html = join({buffer_substance(m, name), text_to_html(composition.text)}, ", "_html);
    const auto tells_ph = [](const Item& item) {
        return item.text.find("pH") != std::string_view::npos;
    };
    if (ph.is_given() && !tells_ph(name) && !tells_ph(composition))
        html = (html.empty() ? "?"_html : html) + escape(", pH\u00A0") +
               format_number_text(ph.text, trimmed_zeros);
    return html.empty() ? unknown_cell(name.tag) : given_cell(html, name.tag);
}

constexpr RowClass mandatory = RowClass::mandatory;
constexpr RowClass optional = RowClass::optional;

const RowSpec<Measurement> row_specs[] = {
    {"C1.title", mandatory,
     [](const Measurement& m) { return text_cell(of_scan(m, {"_sas_scan.title"})); }},
    {"C1.name", optional, sample_name},
    {"C1.ent", mandatory, components},
    {"C1.org", mandatory, organisms},
    {"C1.uni", optional, database_entries},
    {"C1.seq", mandatory, sequences},
    {"C1.mwc", mandatory, composition_mass},
    {"C1.ext", optional,
     [](const Measurement& m) {
         return number_cell_of(m, of_sample(m, {"_sas_sample.ext_coefficient"}), trimmed_zeros);
     }},
    {"C1.vbar", mandatory,
     [](const Measurement& m) {
         return number_cell_of(m, of_sample(m, {"_sas_sample.specific_vol"}), trimmed_zeros);
     }},
    {"C1.dryvol", optional,
     [](const Measurement& m) {
         return number_cell_of(m, of_sample(m, {"_sas_sample.dry_vol"}), trimmed_zeros);
     }},
    {"C1.contr", mandatory,
     [](const Measurement& m) {
         return number_cell_of(m, of_sample(m, {"_sas_sample.contrast"}), trimmed_zeros);
     }},
    {"C1.conc", mandatory, concentration},
    {"C1.cmeth", optional,
     [](const Measurement& m) {
         return text_cell(of_sample(m, {"_sas_sample.concentration_method"}));
     }},
    {"C1.pur", optional,
     [](const Measurement& m) { return text_cell(of_sample(m, {"_sas_sample.purity_method"})); }},
    {"C1.buf", mandatory, buffer},
    {"C1.pK", optional,
     [](const Measurement& m) {
         return number_cell_of(m, of_buffer(m, {"_sas_buffer.pK"}), trimmed_zeros);
     }},
    {"C1.bcom", optional,
     [](const Measurement& m) { return text_cell(of_buffer(m, {"_sas_buffer.comment"})); }},
};

} // namespace

Table sample_details(const std::vector<Measurement>& measurements)
{
    return measurement_table(row_specs, measurements);
}

std::set<std::string_view> sample_row_keys()
{
    return row_keys_of(row_specs);
}

std::optional<Decimal> mass_from_composition(const Measurement& m)
{
    if (const auto total = sum_of_entities(m))
        return total;
    const auto stated = parse_number(of_sample(m, {"_sas_sample.sample_MW"}).text);
    const auto plain = stated ? without_exponent(*stated) : std::nullopt;
    return plain ? std::optional(plain->decimal) : std::nullopt;
}

} // namespace quillet
