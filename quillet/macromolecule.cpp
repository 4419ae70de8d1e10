#include "quillet/macromolecule.h"

#include "quillet/cif_text.h"
#include "quillet/data_collection.h"
#include "quillet/front_matter.h"
#include "quillet/unicode.h"

#include <algorithm>

namespace quillet
{

namespace
{

// The blocks that describe crystals: those with coordinates, or the first if none has any.
std::vector<const Block*> crystal_blocks(const Document& document)
{
    std::vector<const Block*> blocks;
    for (const Block& block : document.blocks) {
        if (block.count("_atom_site.Cartn_x") > 0)
            blocks.push_back(&block);
    }
    if (blocks.empty())
        blocks.push_back(&document.blocks.front());
    return blocks;
}

std::vector<DataSet> data_sets_of(const std::vector<const Block*>& blocks, Notes& notes)
{
    std::vector<DataSet> all;
    for (const Block* block : blocks) {
        auto data_sets = data_sets_of(*block, notes);
        std::move(data_sets.begin(), data_sets.end(), std::back_inserter(all));
    }
    return all;
}

std::vector<Html> headings_of(const std::vector<DataSet>& data_sets, std::size_t block_count)
{
    std::vector<Html> headings;
    if (data_sets.size() < 2)
        return headings;
    for (const DataSet& d : data_sets) {
        Html heading = block_count > 1 ? escape(d.block->name()) : Html();
        if (!d.is_only_one)
            heading += (heading.empty() ? Html() : ", "_html) + "Data set "_html +
                       escape(std::to_string(d.row + 1));
        headings.push_back(heading);
    }
    return headings;
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

std::vector<Html> keywords_of(const Document& document)
{
    std::vector<Html> keywords =
        split_keywords(first_item(document, {"_struct_keywords.text"}).text);
    const Item general = first_item(document, {"_struct_keywords.pdbx_keywords"});
    const Html keyword = text_to_html(general.text);
    const bool is_new = std::find(keywords.begin(), keywords.end(), keyword) == keywords.end();
    if (general.is_given() && is_new)
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

void set_data_collection(Fields& fields, const Document& document, TableCounter& counter,
                         Notes& notes)
{
    const auto blocks = crystal_blocks(document);
    const auto data_sets = data_sets_of(blocks, notes);
    Table table = data_collection(data_sets);
    table.heads = headings_of(data_sets, blocks.size());
    report_missing_rows(table, "Data collection and processing", notes);
    fields.set("data_collection", table_fields(table, counter));
    fields.set("merging_r", merging_r_label(data_sets));
    fields.set("outer_shell", tells_outer_shell(data_sets) ? "true"_html : Html());
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

Fields macromolecule_fields(const Document& document, const AuthorList& authors, Notes& notes)
{
    Fields fields;
    const Item entry = first_item(document, {"_entry.id"});
    set_front_matter(fields, text_to_html(title_of(document)),
                     entry.is_given() ? text_to_plain(entry.text) : document.blocks.front().name(),
                     authors, keywords_of(document));
    fields.set("title_footnote", Html());
    set_text_sections(fields, document,
                      {"abstract", "introduction", "discussion", "acknowledgements", "references"},
                      notes);
    fields.set("database_reference", database_reference(document));
    fields.set("related_entries", related_entries(document));
    TableCounter counter;
    set_data_collection(fields, document, counter, notes);
    return fields;
}

const Vocabulary& macromolecule_vocabulary()
{
    static const Vocabulary vocabulary = [] {
        Vocabulary words;
        words.names = front_matter_field_names;
        words.names.insert(table_field_names.begin(), table_field_names.end());
        words.names.insert({"database_reference", "related_entries", "data_collection", "merging_r",
                            "outer_shell"});
        words.row_keys = data_collection_row_keys();
        return words;
    }();
    return vocabulary;
}

} // namespace quillet
