#include "quillet/macromolecule.h"

#include "quillet/cif_text.h"
#include "quillet/crystallization.h"
#include "quillet/data_collection.h"
#include "quillet/entity_list.h"
#include "quillet/front_matter.h"
#include "quillet/macromolecule_production.h"
#include "quillet/macromolecule_software.h"
#include "quillet/resolution_plot.h"
#include "quillet/structure_refinement.h"
#include "quillet/unicode.h"

#include <algorithm>

namespace quillet
{

namespace
{

bool has_category(const Block& block, std::string_view prefix)
{
    return std::any_of(block.columns().begin(), block.columns().end(), [&](const Column& column) {
        return begins_with(ascii_lower(column.tag), prefix);
    });
}

bool has_category(const Document& document, std::string_view prefix)
{
    return std::any_of(document.blocks.begin(), document.blocks.end(),
                       [&](const Block& block) { return has_category(block, prefix); });
}

// "X-RAY DIFFRACTION" as "X-ray diffraction".
std::string experiment_name(std::string_view method)
{
    static const std::set<std::string_view> acronyms = {"NMR", "EPR"};
    return sentence_case(method, acronyms);
}

bool has_coordinates(const Block& block)
{
    return block.count("_atom_site.Cartn_x") > 0;
}

bool describes_experiment_or_molecules(const Block& block)
{
    return has_category(block, "_entity.") || has_category(block, "_exptl.") ||
           has_category(block, "_reflns.") || has_category(block, "_cell.");
}

// The blocks that describe structures: those with coordinates or, if none has any, those that tell
// of an experiment or of molecules.
std::vector<const Block*> structure_blocks(const Document& document)
{
    std::vector<const Block*> blocks;
    for (const auto is_one : {has_coordinates, describes_experiment_or_molecules}) {
        for (const Block& block : document.blocks) {
            if (is_one(block))
                blocks.push_back(&block);
        }
        if (!blocks.empty())
            return blocks;
    }
    return {&document.blocks.front()};
}

// What makes the columns of a table, for one block.
template<typename Columns>
auto columns_of(const std::vector<const Block*>& blocks, Columns columns_of_block)
{
    auto all = columns_of_block(*blocks.front());
    for (std::size_t i = 1; i < blocks.size(); ++i) {
        auto columns = columns_of_block(*blocks[i]);
        std::move(columns.begin(), columns.end(), std::back_inserter(all));
    }
    return all;
}

// One heading of a column: the block, if there are several, and what the column is in it.
Html heading(const Block& block, std::size_t block_count, const Html& name)
{
    const Html block_name = block_count > 1 ? escape(block.name()) : Html();
    return block_name.empty() || name.empty() ? block_name + name : block_name + ", "_html + name;
}

// Data sets are numbered; where they differ in radiation, that is told, too.
std::vector<Html> headings_of(const std::vector<DataSet>& data_sets, std::size_t block_count)
{
    std::set<std::string> radiations;
    for (const DataSet& d : data_sets)
        radiations.insert(ascii_lower(radiation_of(d).text));
    std::vector<Html> headings;
    for (const DataSet& d : data_sets) {
        Html name;
        if (!d.is_only_one)
            name = "Data set "_html + escape(std::to_string(d.row + 1));
        const Item radiation = radiation_of(d);
        if (radiations.size() > 1 && radiation.is_given())
            name += (name.empty() ? Html() : ", "_html) +
                    text_to_html(capitalized(ascii_lower(radiation.text)));
        headings.push_back(heading(*d.block, block_count, name));
    }
    return headings;
}

// Polymers are named even where there is just one, if the file does.
std::vector<Html> headings_of(const std::vector<Polymer>& polymers, std::size_t block_count)
{
    std::vector<Html> headings;
    for (const Polymer& p : polymers) {
        Html name = description_of(p);
        if (name.empty() && polymers.size() > 1)
            name = "Entity "_html + text_to_html(p.entity.id);
        headings.push_back(heading(*p.entity.block, block_count, name));
    }
    return headings;
}

std::vector<Html> headings_of(const std::vector<CrystalGrowth>& crystals, std::size_t block_count)
{
    std::vector<Html> headings;
    for (const CrystalGrowth& g : crystals) {
        const Html name = crystals.size() > block_count && !g.crystal.id.empty()
                              ? "Crystal "_html + text_to_html(g.crystal.id)
                              : Html();
        headings.push_back(heading(*g.crystal.block, block_count, name));
    }
    return headings;
}

std::vector<Html> headings_of(const std::vector<Refinement>& refinements, std::size_t block_count)
{
    std::vector<Html> headings;
    for (const Refinement& r : refinements) {
        const Html name =
            refinements.size() > block_count ? text_to_html(experiment_name(r.subject.id)) : Html();
        headings.push_back(heading(*r.subject.block, block_count, name));
    }
    return headings;
}

// Headings that name nothing make no heading row.
void set_headings(Table& table, std::vector<Html> headings)
{
    const bool names_something = std::any_of(headings.begin(), headings.end(),
                                             [](const Html& name) { return !name.empty(); });
    if (names_something)
        table.heads = std::move(headings);
}

std::string title_of(const Document& document)
{
    const Item title =
        first_item(document, {"_publ_section.title", "_publ_section_title", "_struct.title"});
    std::string text(title.text);
    for (const Block& block : document.blocks) {
        const Rows rows = block.rows("_citation.title");
        for (std::size_t row = 0; row < rows.size() && text.empty(); ++row) {
            if (rows.item(row, "_citation.id").text == "primary")
                text = rows.item(row, "_citation.title").text;
        }
    }
    text = collapse_blanks(text);
    if (!text.empty() && text.back() == '.')
        text.pop_back();
    return text;
}

std::vector<Html> keywords_of(const Document& document, Notes& notes)
{
    const Item own =
        manuscript_item(document, {"_publ_section.keywords", "_publ_section_keywords"}, notes);
    if (own.is_given())
        return split_keywords(own.text);
    std::vector<Html> keywords =
        split_keywords(first_item(document, {"_struct_keywords.text"}).text, ',');
    const Item general = first_item(document, {"_struct_keywords.pdbx_keywords"});
    const Html keyword = text_to_html(general.text);
    const bool is_known = std::any_of(keywords.begin(), keywords.end(), [&](const Html& other) {
        return ascii_lower(other.str()) == ascii_lower(keyword.str());
    });
    if (general.is_given() && !is_known)
        keywords.insert(keywords.begin(), keyword);
    return keywords;
}

// "1abc", "pdb_00001abc"
bool is_pdb_code(std::string_view text)
{
    const auto is_letter_or_digit = [](char c) { return is_ascii_digit(c) || is_ascii_letter(c); };
    const std::string code = ascii_lower(text);
    if (code.compare(0, 4, "pdb_") == 0)
        return code.size() > 4;
    return code.size() == 4 && is_ascii_digit(code.front()) &&
           std::all_of(code.begin(), code.end(), is_letter_or_digit);
}

Html database_reference(const Document& document)
{
    const Item code = pdb_code(document);
    Html result = text_to_html(code.text);
    for (const Block& block : document.blocks) {
        const Rows rows = block.rows("_database_2.pdbx_DOI");
        for (std::size_t row = 0; row < rows.size(); ++row) {
            const Item doi = rows.item(row, "_database_2.pdbx_DOI");
            const Item database = rows.item(row, "_database_2.database_id");
            if (doi.is_given() && database.text == "PDB")
                result += ", https://doi.org/"_html + text_to_html(doi.text);
        }
    }
    return result;
}

Html related_entries(const Document& document)
{
    Html result;
    for (const Block& block : document.blocks) {
        const Rows rows = block.rows("_pdbx_database_related.db_id");
        for (std::size_t row = 0; row < rows.size(); ++row) {
            const Item name = rows.item(row, "_pdbx_database_related.db_name");
            const Item id = rows.item(row, "_pdbx_database_related.db_id");
            if (id.is_given())
                result += (result.empty() ? Html() : "; "_html) + text_to_html(name.text) +
                          " "_html + text_to_html(id.text);
        }
    }
    return result;
}

void set_flag(Fields& fields, const char* name, bool value)
{
    fields.set(name, value ? "true"_html : Html());
}

// Sets a table with a heading for each column.
template<typename Column>
void set_table(Fields& fields, const char* name, const char* caption, Table table,
               const std::vector<Column>& columns, std::size_t block_count, TableCounter& counter,
               Notes& notes)
{
    set_headings(table, headings_of(columns, block_count));
    report_missing_rows(table, caption, notes);
    fields.set(name, table_fields(table, counter));
}

void set_production(Fields& fields, const std::vector<const Block*>& blocks, TableCounter& counter,
                    Notes& notes)
{
    const auto polymers =
        columns_of(blocks, [&](const Block& block) { return polymers_of(block, notes); });
    set_table(fields, "production", "Macromolecule production", macromolecule_production(polymers),
              polymers, blocks.size(), counter, notes);
    const bool has_nucleic_acids = std::any_of(polymers.begin(), polymers.end(),
                                               [](const Polymer& p) { return p.is_nucleic_acid; });
    set_flag(fields, "amino_acid_sequences", !has_nucleic_acids);
}

void set_crystallization(Fields& fields, const std::vector<const Block*>& blocks,
                         TableCounter& counter, Notes& notes)
{
    const auto crystals =
        columns_of(blocks, [&](const Block& block) { return crystal_growths_of(block, notes); });
    set_table(fields, "crystallization", "Crystallization", crystallization(crystals), crystals,
              blocks.size(), counter, notes);
}

void set_data_collection(Fields& fields, const std::vector<const Block*>& blocks,
                         TableCounter& counter, Notes& notes)
{
    const auto data_sets =
        columns_of(blocks, [&](const Block& block) { return data_sets_of(block, notes); });
    set_table(fields, "data_collection", "Data collection and processing",
              data_collection(data_sets), data_sets, blocks.size(), counter, notes);
    fields.set("merging_r", merging_r_label(data_sets));
    set_flag(fields, "outer_shell", tells_outer_shell(data_sets));
}

void set_structure_refinement(Fields& fields, const std::vector<const Block*>& blocks,
                              const Item& code, TableCounter& counter, Notes& notes)
{
    const auto refinements =
        columns_of(blocks, [&](const Block& block) { return refinements_of(block, code); });
    set_table(fields, "structure_refinement", "Structure solution and refinement",
              structure_refinement(refinements), refinements, blocks.size(), counter, notes);
    fields.set("polymer_kinds", polymer_kinds(refinements));
    set_flag(fields, "working_set", counts_working_set(refinements));
    set_flag(fields, "refinement_shell", tells_outer_shell(refinements));
}

void set_entities(Fields& fields, const std::vector<const Block*>& blocks, EntityScope scope,
                  TableCounter counter)
{
    const Html rows = entity_rows(blocks, scope);
    fields.set("entities", Html());
    if (rows.empty())
        return;
    Fields table;
    table.set("number", [counter]() mutable { return counter.next(); });
    table.set("rows", rows);
    fields.set("entities", table);
}

// What a caption can say about the figure that quillet would draw, panel by panel. Absent if the
// CIF has captions of its own or too few resolution shells.
void set_shell_figure(Fields& fields, const Document& document, bool is_communication)
{
    fields.set("shell_figure", Html());
    if (has_figure_captions(document))
        return;
    ResolutionPlot plot;
    Notes dropped; // they are about drawing, which is not done here
    for (const Block& block : document.blocks) {
        if (plot.panels.empty())
            plot = resolution_plot(block, dropped);
    }
    if (plot.panels.empty() || (is_communication && !plot.has_signal && !plot.has_agreement()))
        return;
    Fields figure;
    char letter = 'a';
    const auto set_panel = [&](const char* name, bool is_drawn, bool is_told = true) {
        Fields panel;
        panel.set("letter", plot.panels.size() > 1
                                ? "("_html + escape(std::string(1, letter)) + ") "_html
                                : Html());
        letter = static_cast<char>(letter + (is_drawn ? 1 : 0));
        if (is_drawn && is_told)
            figure.set(name, panel);
        else
            figure.set(name, Html());
    };
    set_panel("signal", plot.has_signal);
    set_panel("agreement", plot.has_agreement());
    set_panel("model_agreement", plot.has_model_agreement, !is_communication);
    set_flag(figure, "correlation", plot.has_correlation);
    set_flag(figure, "merging_factors", plot.has_merging_r);
    set_flag(figure, "surplus_panel", is_communication && plot.has_model_agreement);
    fields.set("shell_figure", figure);
}

// The experimental methods that the file states.
std::vector<Item> methods_of(const Document& document)
{
    std::vector<Item> methods;
    for (const Block& block : document.blocks) {
        const Rows rows = block.rows("_exptl.method");
        for (std::size_t row = 0; row < rows.size(); ++row) {
            const Item method = rows.item(row, "_exptl.method");
            if (method.is_given())
                methods.push_back(method);
        }
    }
    return methods;
}

// Whether tables of crystals and diffraction apply. A file that states no method may be any
// crystal structure; one that models were predicted in is none.
bool is_crystallographic(const Document& document, Notes& notes)
{
    const std::string left_out = "; there are no tables of crystallization, data collection and "
                                 "refinement.";
    const auto methods = methods_of(document);
    if (methods.empty() && has_category(document, "_ma_model_list.")) {
        notes.add({}, "The file describes a predicted model, not an experiment" + left_out +
                          " Check title and authors, which may be those of the method of "
                          "prediction.");
        return false;
    }
    const bool is_diffraction =
        methods.empty() || std::any_of(methods.begin(), methods.end(), [](const Item& method) {
            const std::string word = ascii_lower(method.text);
            return word.find("diffraction") != std::string::npos ||
                   word.find("crystallography") != std::string::npos;
        });
    if (!is_diffraction)
        notes.add(methods.front().where(), "The experiment is \u201c" +
                                               std::string(methods.front().text) +
                                               "\u201d, not diffraction by crystals" + left_out);
    return is_diffraction;
}

// What a file of one part of a deposition lacks is for the author to fill in.
void remark_on_partial_files(const Document& document, Notes& notes)
{
    const bool has_atoms = has_category(document, "_atom_site.");
    const auto remark = [&](const std::string& text) {
        notes.add({}, text, Note::Severity::remark);
    };
    if (!has_atoms && has_category(document, "_refln."))
        remark("The file holds structure factors without a model. The article can tell more if it "
               "is made from the file of the model.");
    else if (has_atoms && !has_category(document, "_entity.") &&
             !has_category(document, "_exptl.") && !has_category(document, "_refine."))
        remark("The file holds coordinates but does not tell of the experiment. The article can "
               "tell more if it is made from the whole deposition.");
}

// Communications report crystals and data. Text on refinement is not lost silently.
void leave_out_refinement(Fields& fields, const Document& document, Notes& notes)
{
    const Item text =
        first_item(document, {"_publ_section.exptl_refinement", "_publ_section_exptl_refinement"});
    if (text.is_given())
        notes.add(text.where(), "A communication does not report refinement; this text is left "
                                "out.");
    fields.set("refinement", Html());
}

} // namespace

Item pdb_code(const Document& document)
{
    for (const Block& block : document.blocks) {
        const Rows rows = block.rows("_database_2.database_code");
        for (std::size_t row = 0; row < rows.size(); ++row) {
            const Item code = rows.item(row, "_database_2.database_code");
            if (code.is_given() && rows.item(row, "_database_2.database_id").text == "PDB")
                return code;
        }
    }
    const Item entry = first_item(document, {"_entry.id"});
    return is_pdb_code(entry.text) ? entry : Item();
}

Fields macromolecule_fields(const Document& document, const AuthorList& authors,
                            ArticleKind article, Notes& notes)
{
    Fields fields;
    const bool is_communication = article == ArticleKind::communication;
    const Item entry = first_item(document, {"_entry.id"});
    set_front_matter(fields, text_to_html(title_of(document)),
                     entry.is_given() ? text_to_plain(entry.text) : document.blocks.front().name(),
                     authors, keywords_of(document, notes));
    fields.set("title_footnote", text_to_html(manuscript_item(document,
                                                              {"_publ_section.title_footnote",
                                                               "_publ_section_title_footnote"},
                                                              notes)
                                                  .text));
    set_text_sections(fields, document,
                      {"abstract", "introduction", "discussion", "acknowledgements", "references"},
                      notes);
    const auto blocks = structure_blocks(document);
    const bool has_crystals = is_crystallographic(document, notes);
    set_flag(fields, "crystals", has_crystals);
    remark_on_partial_files(document, notes);
    TableCounter counter;
    set_production(fields, blocks, counter, notes);
    if (has_crystals) {
        set_crystallization(fields, blocks, counter, notes);
        set_data_collection(fields, blocks, counter, notes);
        set_shell_figure(fields, document, is_communication);
    }
    if (is_communication) {
        leave_out_refinement(fields, document, notes);
    } else {
        fields.set("database_reference", database_reference(document));
        fields.set("related_entries", related_entries(document));
        if (has_crystals)
            set_structure_refinement(fields, blocks, pdb_code(document), counter, notes);
    }
    fields.set("software", software_line(document, is_communication ? SoftwareScope::up_to_phasing
                                                                    : SoftwareScope::all));
    set_entities(fields, blocks, is_communication ? EntityScope::polymers : EntityScope::all,
                 counter);
    return fields;
}

const Vocabulary& macromolecule_vocabulary()
{
    static const Vocabulary vocabulary = [] {
        Vocabulary words;
        words.names = front_matter_field_names;
        words.names.insert(table_field_names.begin(), table_field_names.end());
        words.names.insert({"database_reference",
                            "related_entries",
                            "crystals",
                            "production",
                            "amino_acid_sequences",
                            "crystallization",
                            "data_collection",
                            "merging_r",
                            "outer_shell",
                            "structure_refinement",
                            "working_set",
                            "polymer_kinds",
                            "refinement_shell",
                            "software",
                            "entities",
                            "rows",
                            "shell_figure",
                            "letter",
                            "signal",
                            "agreement",
                            "correlation",
                            "merging_factors",
                            "model_agreement",
                            "surplus_panel"});
        for (const auto& keys : {macromolecule_production_row_keys(), crystallization_row_keys(),
                                 data_collection_row_keys(), structure_refinement_row_keys()})
            words.row_keys.insert(keys.begin(), keys.end());
        return words;
    }();
    return vocabulary;
}

} // namespace quillet
