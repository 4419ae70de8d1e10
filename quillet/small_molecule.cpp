#include "quillet/small_molecule.h"

#include "quillet/cif_text.h"
#include "quillet/experimental_details.h"
#include "quillet/front_matter.h"
#include "quillet/unicode.h"

#include <algorithm>
#include <map>

namespace quillet
{

namespace
{

bool describes_structure(const Block& block)
{
    const Rows atoms = block.rows("_atom_site_label");
    if (block.item("_cell_length_a").is_given() || block.item("_chemical_formula_sum").is_given())
        return true;
    for (std::size_t row = 0; row < atoms.size(); ++row) {
        if (atoms.item(row, "_atom_site_label").is_given())
            return true;
    }
    return false;
}

bool is_roman_numeral(std::string_view name)
{
    return !name.empty() && name.find_first_not_of("IVXLC") == std::string_view::npos;
}

// "(I)" for data_I, else the name with blanks for underscores.
Html heading_of(const Block& block)
{
    std::string name = block.name();
    if (is_roman_numeral(name))
        return escape("(" + name + ")");
    std::replace(name.begin(), name.end(), '_', ' ');
    return escape(name);
}

// A file of text alone has a column of question marks.
std::vector<Structure> structures_of(const Document& document, Notes& notes)
{
    static const Block empty_block("", {});
    std::vector<Structure> structures;
    for (const Block& block : document.blocks) {
        if (describes_structure(block))
            structures.push_back({&block, &notes});
    }
    if (structures.empty())
        structures.push_back({&empty_block, &notes});
    return structures;
}

std::vector<Html> headings_of(const std::vector<Structure>& structures)
{
    std::vector<Html> headings;
    if (structures.size() > 1) {
        for (const Structure& s : structures)
            headings.push_back(heading_of(*s.block));
    }
    return headings;
}

struct Program {
    const char* task;
    const char* item;
    const char* other_item; // as the newer dictionary has it
};

constexpr Program programs[] = {
    {"data collection", "_computing_data_collection", "_computing_diffrn_collection"},
    {"cell refinement", "_computing_cell_refinement", ""},
    {"data reduction", "_computing_data_reduction", "_computing_diffrn_reduction"},
    {"program(s) used to solve structure", "_computing_structure_solution", ""},
    {"program(s) used to refine structure", "_computing_structure_refinement", ""},
    {"molecular graphics", "_computing_molecular_graphics", ""},
    {"software used to prepare material for publication", "_computing_publication_material", ""},
};

Item program_item(const Document& document, const Structure& structure, const Program& program)
{
    const Item own = structure.block->item({program.item, program.other_item});
    if (own.is_given())
        return own;
    for (const Block& block : document.blocks) {
        const Item general = block.item({program.item, program.other_item});
        if (general.is_given() && !describes_structure(block))
            return general;
    }
    return own;
}

Html without_point(std::string_view text)
{
    std::string line = collapse_blanks(text);
    line.erase(line.find_last_not_of(" .") + 1);
    return text_to_html(line);
}

// What the structures were worked out with in one step; where they differ, each text with the
// structures that it is for.
Html programs_for(const Document& document, const std::vector<Structure>& structures,
                  const Program& program)
{
    std::vector<std::pair<Html, Html>> texts; // text, headings
    std::size_t structures_with_text = 0;
    for (const Structure& s : structures) {
        const Item item = program_item(document, s, program);
        if (!item.is_given())
            continue;
        ++structures_with_text;
        const Html text = without_point(item.text);
        const auto known = std::find_if(texts.begin(), texts.end(),
                                        [&](const auto& entry) { return entry.first == text; });
        if (known == texts.end())
            texts.emplace_back(text, heading_of(*s.block));
        else
            known->second += ", "_html + heading_of(*s.block);
    }
    const bool is_common = texts.size() == 1 && structures_with_text == structures.size();
    Html result;
    for (const auto& [text, headings] : texts) {
        result += (result.empty() ? Html() : "; "_html) + text;
        if (!is_common)
            result += " for "_html + headings;
    }
    return result;
}

Html computer_programs(const Document& document, const std::vector<Structure>& structures)
{
    Html result;
    for (const Program& program : programs) {
        const Html text = programs_for(document, structures, program);
        if (!text.empty())
            result +=
                (result.empty() ? Html() : "; "_html) + escape(program.task) + ": "_html + text;
    }
    return result;
}

struct Detail {
    const char* heading;
    const char* item;
};

constexpr Detail details[] = {
    {"Experimental", "_exptl_special_details"}, {"Geometry", "_geom_special_details"},
    {"Refinement", "_refine_special_details"},  {"Atom sites", "_atom_sites_special_details"},
    {"Diffraction", "_diffrn_special_details"}, {"Reflections", "_reflns_special_details"},
    {"Cell", "_cell_special_details"}};

// The same text in several blocks once.
Fields special_details(const Document& document)
{
    std::vector<Fields> items;
    for (const Detail& detail : details) {
        std::vector<std::string> known;
        for (const Block& block : document.blocks) {
            const Item item = block.item(detail.item);
            const std::string text = collapse_blanks(item.text);
            if (!item.is_given() || std::find(known.begin(), known.end(), text) != known.end())
                continue;
            known.push_back(text);
            Fields fields = text_section(paragraphs_of(item));
            fields.set("heading", escape(detail.heading));
            items.push_back(std::move(fields));
        }
    }
    Fields section;
    section.set("items", items);
    return section;
}

bool has_special_details(const Document& document)
{
    return std::any_of(std::begin(details), std::end(details), [&](const Detail& detail) {
        return first_item(document, {detail.item}).is_given();
    });
}

std::set<std::string_view> skeleton_sections(const Document& document)
{
    std::set<std::string_view> sections = {"abstract"};
    if (!first_item(document, {"_publ_section_introduction"}).is_given() &&
        !first_item(document, {"_publ_section_discussion"}).is_given())
        sections.insert("comment");
    if (!first_item(document, {"_publ_section_experimental"}).is_given())
        sections.insert({"synthesis", "refinement"});
    return sections;
}

std::string short_name_of(const Document& document)
{
    const Item name = first_item(
        document, {"_chemical_name_common", "_chemical_name_systematic", "_chemical_formula_sum"});
    if (name.is_given())
        return text_to_plain(name.text);
    return document.blocks.empty() ? std::string() : document.blocks.front().name();
}

void set_experimental_details(Fields& fields, std::vector<Structure>& structures, Notes& notes)
{
    const ExperimentalLabels labels = experimental_labels(structures);
    Table table = experimental_details(structures);
    table.heads = headings_of(structures);
    report_missing_rows(table, "Experimental details", notes);
    TableCounter counter;
    fields.set("experimental_details", table_fields(table, counter));
    fields.set("criterion", labels.criterion);
    fields.set("threshold", labels.threshold);
    fields.set("refined_quantity", labels.quantity);
}

} // namespace

Fields small_molecule_fields(const Document& document, const AuthorList& authors, Notes& notes)
{
    Fields fields;
    const Item title = manuscript_item(document, {"_publ_section_title"}, notes);
    const Item name = first_item(document, {"_chemical_name_systematic", "_chemical_name_common"});
    const Item keywords = manuscript_item(document, {"_publ_section_keywords"}, notes);
    set_front_matter(fields, text_to_html(title.is_given() ? title.text : name.text),
                     short_name_of(document), authors, split_keywords(keywords.text));
    fields.set(
        "title_footnote",
        text_to_html(manuscript_item(document, {"_publ_section_title_footnote"}, notes).text));
    set_text_sections(fields, document, skeleton_sections(document), notes);

    auto structures = structures_of(document, notes);
    set_experimental_details(fields, structures, notes);
    fields.set("computer_programs", computer_programs(document, structures));
    if (has_special_details(document))
        fields.set("special_details", special_details(document));
    return fields;
}

const Vocabulary& small_molecule_vocabulary()
{
    static const Vocabulary vocabulary = [] {
        Vocabulary words;
        words.names = front_matter_field_names;
        words.names.insert(table_field_names.begin(), table_field_names.end());
        words.names.insert({"experimental_details", "criterion", "threshold", "refined_quantity",
                            "computer_programs", "special_details", "heading"});
        words.row_keys = experimental_row_keys();
        return words;
    }();
    return vocabulary;
}

} // namespace quillet
