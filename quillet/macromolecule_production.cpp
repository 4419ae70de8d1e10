#include "quillet/macromolecule_production.h"

#include "quillet/cif_text.h"
#include "quillet/unicode.h"

#include <algorithm>

namespace quillet
{

namespace
{

// Rows of placeholders name no entity and tell nothing.
bool has_row(const Polymer& p, std::string_view id_tag)
{
    const Rows rows = p.entity.block->rows(id_tag);
    for (std::size_t row = 0; row < rows.size(); ++row) {
        const Item id = rows.item(row, id_tag);
        if (id.is_given() && id.text == p.entity.id)
            return true;
    }
    return false;
}

Item of_entity(const Polymer& p, std::string_view tag)
{
    return p.entities.size() > 0 ? p.entities.item(p.row, tag) : item_about(p.entity, {tag});
}

Origin origin_of(const Polymer& p)
{
    const std::string method = ascii_lower(of_entity(p, "_entity.src_method").text);
    if (method == "syn" || has_row(p, "_pdbx_entity_src_syn.entity_id"))
        return Origin::synthetic;
    if (method == "nat" || has_row(p, "_entity_src_nat.entity_id"))
        return Origin::natural;
    return method == "man" || has_row(p, "_entity_src_gen.entity_id") ? Origin::recombinant
                                                                      : Origin::unstated;
}

bool is_nucleic_acid(const Polymer& p)
{
    const std::string type = ascii_lower(item_about(p.entity, {"_entity_poly.type"}).text);
    return type.find("nucleotide") != std::string::npos ||
           type.find("nucleic") != std::string::npos;
}

// A name in italics followed by strains and variants in roman, each once: names of organisms often
// end with the strain already.
Html with_strains(std::string_view name, const std::vector<std::string_view>& strains)
{
    std::string species = organism_name(name);
    Html tail;
    std::vector<std::string_view> known;
    for (const std::string_view strain : strains) {
        if (strain.empty() || std::find(known.begin(), known.end(), strain) != known.end())
            continue;
        known.push_back(strain);
        const bool ends_name = species.size() > strain.size() + 1 &&
                               species.compare(species.size() - strain.size() - 1,
                                               std::string::npos, " " + std::string(strain)) == 0;
        if (ends_name)
            species.resize(species.size() - strain.size() - 1);
        tail += " "_html + text_to_html(strain);
    }
    return italic(text_to_html(capitalized(species))) + tail;
}

bool is_synthetic_construct(std::string_view name)
{
    return ascii_lower(collapse_blanks(name)) == "synthetic construct";
}

// Where a category keeps the name of an organism and its strain.
struct OrganismSource {
    std::string_view name;
    std::string_view strain;
};

constexpr OrganismSource organism_sources[] = {
    {"_entity_src_gen.pdbx_gene_src_scientific_name", "_entity_src_gen.gene_src_strain"},
    {"_entity_src_nat.pdbx_organism_scientific", "_entity_src_nat.strain"},
    {"_pdbx_entity_src_syn.organism_scientific", ""},
    {"_entity_src_gen.gene_src_common_name", "_entity_src_gen.gene_src_strain"},
    {"_entity_src_nat.common_name", "_entity_src_nat.strain"},
};

// Different organisms of a chimera with their strains.
std::vector<Html> organisms(const Polymer& p, const OrganismSource& source, State& state)
{
    std::vector<Html> result;
    const Rows rows = p.entity.block->rows(source.name);
    for (const std::size_t row : rows_about(p.entity, rows, id_tag_for(p.entity, source.name))) {
        const Item name = rows.item(row, source.name);
        if (static_cast<int>(name.state) > static_cast<int>(state))
            state = name.state;
        if (!name.is_given())
            continue;
        if (is_synthetic_construct(name.text)) {
            add_new(result, "Synthetic construct"_html);
            continue;
        }
        const Item strain = source.strain.empty() ? Item() : rows.item(row, source.strain);
        const Html html = with_strains(name.text, {strain.text});
        add_new(result, p.origin == Origin::synthetic ? html + " (synthetic)"_html : html);
    }
    return result;
}

Cell source_organism(const Polymer& p)
{
    constexpr std::string_view item = organism_sources[0].name;
    State state = State::unknown;
    for (const OrganismSource& source : organism_sources) {
        Html html;
        for (const Html& name : organisms(p, source, state))
            html += (html.empty() ? Html() : "; "_html) + name;
        if (!html.empty())
            return given_cell(html, item);
    }
    if (p.origin == Origin::synthetic)
        return given_cell("Synthetic"_html, item);
    return {state, {}, item, false};
}

// What only recombinant polymers have.
Cell of_recombinant(const Polymer& p, const Cell& cell)
{
    const bool has_none = p.origin == Origin::natural || p.origin == Origin::synthetic;
    return has_none && cell.state == State::unknown ? not_applicable_cell(cell.item) : cell;
}

Cell recombinant_text(const Polymer& p, Tags tags)
{
    return of_recombinant(p, text_cell(values_about(p.entity, tags)));
}

Cell gene(const Polymer& p)
{
    Cell cell = text_cell(values_about(p.entity, {"_entity_src_gen.pdbx_gene_src_gene"}));
    if (cell.state == State::given)
        cell.html = italic(cell.html);
    return cell;
}

// The sequences of the primers that the entity's rows name.
Cell primer(const Polymer& p, std::string_view primer_tag)
{
    const Values primers = values_about(p.entity, {primer_tag});
    const Rows constructs = p.entity.block->rows("_pdbx_construct.id");
    std::vector<Html> sequences;
    for (const Item& id : primers.items) {
        const std::size_t before = sequences.size();
        for (std::size_t row = 0; row < constructs.size(); ++row) {
            const Item sequence = constructs.item(row, "_pdbx_construct.seq");
            if (constructs.item(row, "_pdbx_construct.id").text == id.text && sequence.is_given())
                add_new(sequences, format_sequence(sequence.text));
        }
        if (sequences.size() == before)
            p.notes->add(id.where(), "The sequence of the primer \u201c" + std::string(id.text) +
                                         "\u201d is not in the CIF (_pdbx_construct.seq).");
    }
    Html html;
    for (const Html& sequence : sequences)
        html += (html.empty() ? Html() : "; "_html) + sequence;
    if (!html.empty())
        return given_cell(html, primer_tag);
    const bool is_applicable = primers.state != State::not_applicable;
    return of_recombinant(p, is_applicable ? unknown_cell(primer_tag)
                                           : not_applicable_cell(primer_tag));
}

Cell expression_host(const Polymer& p)
{
    constexpr std::string_view tag = "_entity_src_gen.pdbx_host_org_scientific_name";
    const Rows rows = p.entity.block->rows(
        {tag, "_entity_src_gen.host_org_common_name", "_entity_src_gen.pdbx_host_org_strain"});
    std::vector<Html> hosts;
    State state = State::unknown;
    for (const std::size_t row : rows_about(p.entity, rows, "_entity_src_gen.entity_id")) {
        const Item name = rows.item(row, {tag, "_entity_src_gen.host_org_common_name"});
        const Item strain = rows.item(
            row, {"_entity_src_gen.pdbx_host_org_strain", "_entity_src_gen.host_org_strain"});
        const Item variant = rows.item(row, "_entity_src_gen.pdbx_host_org_variant");
        if (static_cast<int>(name.state) > static_cast<int>(state))
            state = name.state;
        if (name.is_given())
            add_new(hosts, with_strains(name.text, {strain.text, variant.text}));
        else if (strain.is_given())
            add_new(hosts, text_cell(name).shown() + " "_html + text_to_html(strain.text));
    }
    Html html;
    for (const Html& host : hosts)
        html += (html.empty() ? Html() : "; "_html) + host;
    if (!html.empty())
        return given_cell(html, tag);
    return of_recombinant(p, {state, {}, tag, false});
}

Cell sequence(const Polymer& p)
{
    const Item item = item_about(p.entity, {"_entity_poly.pdbx_seq_one_letter_code_sample",
                                            "_entity_poly.pdbx_seq_one_letter_code"});
    return item.is_given() ? given_cell(format_sequence(item.text), item.tag) : text_cell(item);
}

Cell sequence_database(const Polymer& p)
{
    const Rows rows = p.entity.block->rows(
        {"_struct_ref.pdbx_db_accession", "_struct_ref.db_code", "_struct_ref.db_name"});
    std::vector<Html> references;
    for (const std::size_t row : rows_about(p.entity, rows, "_struct_ref.entity_id")) {
        const Item name = rows.item(row, "_struct_ref.db_name");
        const Item code = rows.item(row, {"_struct_ref.pdbx_db_accession", "_struct_ref.db_code"});
        if (!code.is_given() || name.text == "PDB")
            continue;
        const Html database = name.text == "UNP" ? "UniProt"_html : text_cell(name).shown();
        add_new(references, database + " "_html + text_to_html(code.text));
    }
    return references.empty() ? unknown_cell("_struct_ref.pdbx_db_accession")
                              : given_cell(listed(references));
}

constexpr RowClass mandatory = RowClass::mandatory;
constexpr RowClass optional = RowClass::optional;

const RowSpec<Polymer> row_specs[] = {
    {"B1.org", mandatory, source_organism},
    {"B1.dna", mandatory,
     [](const Polymer& p) {
         return recombinant_text(
             p, {"_entity_src_gen.gene_src_details", "_entity_src_gen.gene_src_tissue"});
     }},
    {"B1.gene", optional, gene},
    {"B1.fwd", mandatory,
     [](const Polymer& p) { return primer(p, "_pdbx_entity_src_gen_prod_pcr.forward_primer_id"); }},
    {"B1.rev", mandatory,
     [](const Polymer& p) { return primer(p, "_pdbx_entity_src_gen_prod_pcr.reverse_primer_id"); }},
    {"B1.cvec", mandatory,
     [](const Polymer& p) {
         return recombinant_text(p, {"_pdbx_entity_src_gen_clone.vector_name",
                                     "_entity_src_gen.pdbx_gene_src_plasmid_name"});
     }},
    {"B1.evec", mandatory,
     [](const Polymer& p) {
         return recombinant_text(p, {"_entity_src_gen.plasmid_name",
                                     "_entity_src_gen.pdbx_host_org_vector",
                                     "_entity_src_gen.pdbx_host_org_vector_type"});
     }},
    {"B1.host", mandatory, expression_host},
    {"B1.seq", mandatory, sequence},
    {"B1.mut", optional,
     [](const Polymer& p) { return text_cell(of_entity(p, "_entity.pdbx_mutation")); }},
    {"B1.frag", optional,
     [](const Polymer& p) { return text_cell(of_entity(p, "_entity.pdbx_fragment")); }},
    {"B1.uni", optional, sequence_database},
    {"B1.mw", optional,
     [](const Polymer& p) {
         return number_cell(*p.entity.block, of_entity(p, "_entity.formula_weight"), as_given);
     }},
};

Polymer make_polymer(const Block& block, Notes& notes, std::string_view id, bool is_first)
{
    Polymer polymer;
    polymer.entity = {&block, "entity_id", id, is_first};
    polymer.notes = &notes;
    return polymer;
}

void settle(Polymer& polymer)
{
    polymer.origin = origin_of(polymer);
    polymer.is_nucleic_acid = is_nucleic_acid(polymer);
}

} // namespace

std::vector<Polymer> polymers_of(const Block& block, Notes& notes)
{
    std::vector<Polymer> polymers;
    const Rows entities = block.rows("_entity.id");
    for (std::size_t row = 0; row < entities.size(); ++row) {
        if (ascii_lower(entities.item(row, "_entity.type").text) != "polymer")
            continue;
        const Item id = entities.item(row, "_entity.id");
        polymers.push_back(make_polymer(block, notes, id.text, polymers.empty()));
        polymers.back().entities = entities;
        polymers.back().row = row;
    }
    const Rows sequences = block.rows("_entity_poly.entity_id");
    for (std::size_t row = 0; row < sequences.size() && entities.size() == 0; ++row)
        polymers.push_back(make_polymer(
            block, notes, sequences.item(row, "_entity_poly.entity_id").text, polymers.empty()));
    if (polymers.empty())
        polymers.push_back(make_polymer(block, notes, "", true));
    for (Polymer& polymer : polymers)
        settle(polymer);
    return polymers;
}

Html description_of(const Polymer& polymer)
{
    return text_to_html(of_entity(polymer, "_entity.pdbx_description").text);
}

Table macromolecule_production(const std::vector<Polymer>& polymers)
{
    return make_table(row_specs, polymers);
}

std::set<std::string_view> macromolecule_production_row_keys()
{
    return row_keys_of(row_specs);
}

Html format_sequence(std::string_view text)
{
    constexpr int letters_in_group = 10;
    Html html;
    std::string group;
    int letters = 0;
    int depth = 0;
    for (const char c : text) {
        if (is_ascii_blank(c))
            continue;
        if (letters >= letters_in_group && depth == 0) {
            // With an end tag, which parsers of XML need and those of HTML ignore.
            html += escape(group) + "<wbr></wbr>"_html;
            group.clear();
            letters = 0;
        }
        group += c;
        ++letters;
        if (c == '(')
            ++depth;
        else if (c == ')' && depth > 0)
            --depth;
    }
    return "<code>"_html + html + escape(group) + "</code>"_html;
}

} // namespace quillet
