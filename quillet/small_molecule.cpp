#include "quillet/small_molecule.h"

#include "quillet/cif_text.h"
#include "quillet/experimental_details.h"
#include "quillet/front_matter.h"
#include "quillet/geometry.h"
#include "quillet/structure_model.h"
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
    return escape(collapse_blanks(name));
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

// The same text in several blocks once; where texts differ, each with the blocks that it is from.
Fields special_details(const Document& document)
{
    struct Text {
        std::string plain;
        Fields fields;
        Html blocks;
    };
    std::vector<Fields> items;
    for (const Detail& detail : details) {
        std::vector<Text> texts;
        for (const Block& block : document.blocks) {
            const Item item = block.item(detail.item);
            if (!item.is_given())
                continue;
            const std::string plain = collapse_blanks(item.text);
            const auto known = std::find_if(texts.begin(), texts.end(), [&](const Text& text) {
                return text.plain == plain;
            });
            if (known == texts.end())
                texts.push_back({plain, text_section(paragraphs_of(item)), heading_of(block)});
            else
                known->blocks += ", "_html + heading_of(block);
        }
        for (Text& text : texts) {
            text.fields.set("heading",
                            texts.size() == 1 ? escape(detail.heading)
                                              : escape(detail.heading) + " for "_html + text.blocks);
            items.push_back(std::move(text.fields));
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

// Fit for a file name: long systematic names are not.
std::string short_name_of(const Document& document, const std::vector<Structure>& structures)
{
    constexpr std::size_t longest = 60;
    for (const char* tag : {"_chemical_name_common", "_chemical_name_systematic"}) {
        const std::string name = text_to_plain(first_item(document, {tag}).text);
        if (!name.empty() && count_characters(name) <= longest)
            return name;
    }
    std::string formula(first_item(document, {"_chemical_formula_sum"}).text);
    formula.erase(std::remove_if(formula.begin(), formula.end(), is_ascii_blank), formula.end());
    if (!formula.empty())
        return formula;
    const std::string& block = structures.front().block->name();
    return block.empty() ? "Article" : block;
}

void set_experimental_details(Fields& fields, std::vector<Structure>& structures,
                              TableCounter& counter, Notes& notes)
{
    const ExperimentalLabels labels = experimental_labels(structures);
    Table table = experimental_details(structures);
    table.heads = headings_of(structures);
    report_missing_rows(table, "Experimental details", notes);
    fields.set("experimental_details", table_fields(table, counter));
    fields.set("criterion", labels.criterion);
    fields.set("threshold", labels.threshold);
    fields.set("refined_quantity", labels.quantity);
}

// A table of one structure that has rows of its own make.
Fields structure_table(const Structure& structure, bool is_only_one, const Html& rows,
                       TableCounter counter)
{
    Fields fields;
    fields.set("number", [counter]() mutable { return counter.next(); });
    fields.set("structure", is_only_one ? Html() : heading_of(*structure.block));
    fields.set("rows", rows);
    return fields;
}

Fields coordinate_table(const Structure& structure, bool is_only_one,
                        const CoordinateTable& coordinates, const TableCounter& counter)
{
    Fields fields = structure_table(structure, is_only_one, coordinates.rows, counter);
    fields.set("displacement_b", coordinates.has_displacement_b ? "true"_html : Html());
    fields.set("occupancy", coordinates.has_occupancies ? "true"_html : Html());
    return fields;
}

// One note, however many structures there are in the file.
void report_unmarked_geometry(const std::vector<const Block*>& blocks, Notes& notes)
{
    if (blocks.empty())
        return;
    std::string names;
    for (const Block* block : blocks)
        names += (names.empty() ? "data_" : ", data_") + block->name();
    notes.add(blocks.front()->find("_geom_bond_atom_site_label_1")->where,
              "No bond, angle or torsion angle of " + names +
                  " is marked for publication (_geom_bond_publ_flag and so on), so there is no "
                  "table of selected geometry; --geometry=all prints all of it.");
}

// Symmetry codes are numbered through both tables of a structure, so they are made together.
void set_geometry(Fields& fields, const std::vector<Structure>& structures,
                  GeometrySelection selection, const TableCounter& counter, Notes& notes)
{
    const bool is_only_one = structures.size() == 1;
    std::vector<Fields> geometry;
    std::vector<Fields> bonds;
    std::vector<Fields> coordinates;
    std::vector<const Block*> unmarked;
    for (const Structure& s : structures) {
        SymmetryCodes codes(*s.block, notes);
        const auto parameters = selected_geometry(*s.block, selection, codes);
        if (!parameters.empty()) {
            geometry.push_back(structure_table(s, is_only_one, geometry_rows(parameters), counter));
            geometry.back().set("symmetry_codes", codes.take_footnote());
        } else if (s.block->count("_geom_bond_atom_site_label_1") > 0) {
            unmarked.push_back(s.block);
        }
        const auto hydrogen = hydrogen_bonds(*s.block, codes);
        if (!hydrogen.empty()) {
            bonds.push_back(structure_table(s, is_only_one, hydrogen_bond_rows(hydrogen), counter));
            bonds.back().set("symmetry_codes", codes.take_footnote());
        }
        const CoordinateTable atoms = fractional_coordinates(*s.block);
        if (!atoms.rows.empty())
            coordinates.push_back(coordinate_table(s, is_only_one, atoms, counter));
    }
    report_unmarked_geometry(unmarked, notes);
    fields.set("geometry_tables", geometry);
    fields.set("hydrogen_bond_tables", bonds);
    fields.set("coordinate_tables", coordinates);
}

// What a caption can say about the figure that quillet would draw. Absent if the CIF has captions
// of its own or nothing that can be drawn.
void set_figure(Fields& fields, const Document& document, const std::vector<Structure>& structures)
{
    fields.set("figure", Html());
    if (has_figure_captions(document))
        return;
    Notes dropped; // they are about drawing, which is not done here
    for (const Structure& s : structures) {
        const StructureModel model = asymmetric_unit(*s.block, dropped);
        if (model.atoms.empty())
            continue;
        Fields figure;
        figure.set("structure", structures.size() > 1 ? heading_of(*s.block) : Html());
        figure.set("ellipsoids", model.has_ellipsoids ? "true"_html : Html());
        fields.set("figure", figure);
        return;
    }
}

} // namespace

Fields small_molecule_fields(const Document& document, const AuthorList& authors,
                             GeometrySelection geometry, Notes& notes)
{
    Fields fields;
    const Item title = manuscript_item(document, {"_publ_section_title"}, notes);
    const Item name = first_item(document, {"_chemical_name_systematic", "_chemical_name_common"});
    const Item keywords = manuscript_item(document, {"_publ_section_keywords"}, notes);
    auto structures = structures_of(document, notes);
    set_front_matter(fields, text_to_html(title.is_given() ? title.text : name.text),
                     short_name_of(document, structures), authors, split_keywords(keywords.text));
    fields.set(
        "title_footnote",
        text_to_html(manuscript_item(document, {"_publ_section_title_footnote"}, notes).text));
    set_text_sections(fields, document, skeleton_sections(document), notes);

    TableCounter counter;
    set_experimental_details(fields, structures, counter, notes);
    set_geometry(fields, structures, geometry, counter, notes);
    set_figure(fields, document, structures);
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
                            "computer_programs", "special_details", "heading", "geometry_tables",
                            "hydrogen_bond_tables", "coordinate_tables", "structure", "rows",
                            "symmetry_codes", "displacement_b", "occupancy", "figure",
                            "ellipsoids"});
        words.row_keys = experimental_row_keys();
        return words;
    }();
    return vocabulary;
}

} // namespace quillet
