#include "quillet/scattering.h"

#include "quillet/cif_text.h"
#include "quillet/front_matter.h"
#include "quillet/scattering_parameters.h"

namespace quillet
{

namespace
{

std::vector<Html> headings_of(const std::vector<Measurement>& measurements)
{
    std::vector<Html> headings;
    if (measurements.size() < 2)
        return headings;
    for (const Measurement& m : measurements) {
        const Item title = m.scans.size() > 0 ? m.scans.item(m.scan, "_sas_scan.title") : Item();
        headings.push_back(title.is_given() ? text_to_html(title.text) : escape(m.block->name()));
    }
    return headings;
}

} // namespace

Fields scattering_fields(const Document& document, const AuthorList& authors, Notes& notes)
{
    Fields fields;
    const Item title = first_item(document, {"_citation.title", "_sas_scan.title"});
    const Item code = first_item(document, {"_sas_result.SASBDB_code"});
    set_front_matter(fields, text_to_html(title.text),
                     code.is_given() ? text_to_plain(code.text) : document.blocks.front().name(),
                     authors, {});
    fields.set("title_footnote", Html());
    set_text_sections(fields, document,
                      {"abstract", "introduction", "discussion", "acknowledgements", "references"},
                      notes);
    fields.set("databank_code", text_to_html(code.text));
    fields.set("year", text_to_html(first_item(document, {"_citation.year"}).text));
    fields.set("doi", text_to_html(first_item(document, {"_citation.pdbx_database_id_DOI"}).text));
    fields.set("pubmed",
               text_to_html(first_item(document, {"_citation.pdbx_database_id_PubMed"}).text));

    TableCounter counter;
    const auto measurements = measurements_of(document, notes);
    Table table = structural_parameters(measurements);
    table.heads = headings_of(measurements);
    report_missing_rows(table, "Structural parameters", notes);
    fields.set("structural_parameters", table_fields(table, counter));
    return fields;
}

const Vocabulary& scattering_vocabulary()
{
    static const Vocabulary vocabulary = [] {
        Vocabulary words;
        words.names = front_matter_field_names;
        words.names.insert(table_field_names.begin(), table_field_names.end());
        words.names.insert({"databank_code", "year", "doi", "pubmed", "structural_parameters"});
        words.row_keys = structural_parameter_row_keys();
        return words;
    }();
    return vocabulary;
}

} // namespace quillet
