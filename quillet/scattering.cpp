#include "quillet/scattering.h"

#include "quillet/cif_text.h"
#include "quillet/front_matter.h"
#include "quillet/scattering_collection.h"
#include "quillet/scattering_models.h"
#include "quillet/scattering_parameters.h"
#include "quillet/scattering_plot.h"
#include "quillet/scattering_sample.h"
#include "quillet/unicode.h"

#include <algorithm>
#include <set>
#include <utility>

namespace quillet
{

namespace
{

// The row of the first citation that has a title, or else of the first.
std::pair<Rows, std::size_t> citation_of(const Document& document)
{
    std::pair<Rows, std::size_t> first;
    for (const Block& block : document.blocks) {
        const Rows rows =
            block.rows({"_citation.title", "_citation.pdbx_database_id_DOI", "_citation.year"});
        if (first.first.size() == 0)
            first.first = rows;
        for (std::size_t row = 0; row < rows.size(); ++row) {
            if (rows.item(row, "_citation.title").is_given())
                return {rows, row};
        }
    }
    return first;
}

// "10.1021/xyz" of whatever form of it.
std::string_view bare_doi(std::string_view text)
{
    const auto start = text.find("10.");
    const std::string before = ascii_lower(text.substr(0, start));
    const bool is_known_form = before.find("doi") != std::string::npos;
    return start != std::string_view::npos && is_known_form ? text.substr(start) : text;
}

void set_citation(Fields& fields, const Document& document)
{
    const auto [rows, row] = citation_of(document);
    const auto text = [rows = rows, row = row](std::string_view tag) {
        return rows.size() > 0 ? rows.item(row, tag).text : std::string_view();
    };
    const std::string_view doi = bare_doi(text("_citation.pdbx_database_id_DOI"));
    const Html pubmed = text_to_html(text("_citation.pdbx_database_id_PubMed"));
    fields.set("citation", join({text_to_html(text("_citation.year")),
                                 doi.empty() ? Html() : "https://doi.org/"_html + text_to_html(doi),
                                 pubmed.empty() ? Html() : "PubMed "_html + pubmed},
                                ", "_html));
}

// Those of all measurements.
Html databank_codes(const Document& document)
{
    std::vector<Html> codes;
    for (const Block& block : document.blocks) {
        const Rows rows = block.rows("_sas_result.SASBDB_code");
        for (std::size_t row = 0; row < rows.size(); ++row) {
            const Html code = text_to_html(rows.item(row, "_sas_result.SASBDB_code").text);
            if (std::find(codes.begin(), codes.end(), code) == codes.end())
                codes.push_back(code);
        }
    }
    return join(codes, ", "_html);
}

Item title_of(const Document& document)
{
    const Item own = first_item(document, {"_publ_section.title", "_publ_section_title"});
    const Item cited = first_item(document, {"_citation.title"});
    if (own.is_given() || cited.is_given())
        return own.is_given() ? own : cited;
    return first_item(document, {"_sas_scan.title"});
}

// A caption can name the panels that the figure will have.
Fields figure_of(const Measurement& m, const ScatteringPlot& plot, const Html& name,
                 std::size_t number)
{
    const auto present = [](bool is_present) { return is_present ? "true"_html : Html(); };
    Fields figure;
    figure.set("number", escape(std::to_string(number)));
    figure.set("measurement", name);
    figure.set("block", escape(m.block->name()));
    figure.set("several_panels", present(plot.panels.size() > 1));
    figure.set("error_bars", present(plot.has_errors));
    figure.set("fits", present(plot.has_fits));
    figure.set("transform", present(plot.has_transform));
    figure.set("guinier_panel", plot.has_guinier ? "(b)"_html : Html());
    const Html last = plot.has_guinier ? "(c)"_html : "(b)"_html;
    figure.set("distribution_panel", plot.has_distribution ? last : Html());
    return figure;
}

// Captions of the figures that quillet would draw: one for each block with a curve, unless the CIF
// has captions of its own.
void set_figures(Fields& fields, const Document& document)
{
    fields.set("figures", Html());
    if (has_figure_captions(document))
        return;
    Notes dropped; // they are about drawing, which is not done here
    const auto measurements = measurements_of(document, dropped);
    const auto fits = model_fits_of(document, measurements, dropped);
    const auto names = headings_of(measurements);
    std::vector<Fields> figures;
    std::set<const Block*> drawn;
    for (std::size_t i = 0; i < measurements.size(); ++i) {
        const ScatteringPlot plot = plot_of(measurements[i], i, fits);
        if (!plot.panels.empty() && drawn.insert(measurements[i].block).second)
            figures.push_back(figure_of(measurements[i], plot, names.empty() ? Html() : names[i],
                                        figures.size() + 1));
    }
    if (figures.empty())
        return;
    Fields section;
    section.set("items", figures);
    fields.set("figures", section);
}

void set_tables(Fields& fields, const Document& document, Notes& notes)
{
    const auto measurements = measurements_of(document, notes);
    const auto fits = model_fits_of(document, measurements, notes);
    const auto names = headings_of(measurements);
    TableCounter counter;
    const auto set = [&](const char* field, Table table, std::string_view caption) {
        if (table.heads.empty())
            table.heads = names;
        report_missing_rows(table, caption, notes);
        fields.set(field, table_fields(table, counter));
    };
    set("sample_details", sample_details(measurements), "Sample details");
    set("collection_parameters", collection_parameters(measurements), "Data-collection parameters");
    set("structural_parameters", structural_parameters(measurements), "Structural parameters");
    const Table software = scattering_software(measurements, fits);
    if (software.has_value())
        set("scattering_software", software, "Software employed");
    else
        fields.set("scattering_software", Html());
    if (fits.empty())
        fields.set("model_fitting", Html());
    else
        set("model_fitting", model_fitting(fits, names), "Model fitting");
}

} // namespace

Fields scattering_fields(const Document& document, const AuthorList& authors, Notes& notes)
{
    Fields fields;
    const Item code = first_item(document, {"_sas_result.SASBDB_code"});
    const Item keywords =
        manuscript_item(document, {"_publ_section_keywords", "_publ_section.keywords"}, notes);
    set_front_matter(fields, text_to_html(title_of(document).text),
                     code.is_given() ? text_to_plain(code.text) : document.blocks.front().name(),
                     authors, split_keywords(keywords.text));
    fields.set("title_footnote", text_to_html(manuscript_item(document,
                                                              {"_publ_section.title_footnote",
                                                               "_publ_section_title_footnote"},
                                                              notes)
                                                  .text));
    set_text_sections(fields, document,
                      {"abstract", "introduction", "discussion", "acknowledgements", "references"},
                      notes);
    fields.set("databank_code", databank_codes(document));
    set_citation(fields, document);
    set_tables(fields, document, notes);
    set_figures(fields, document);
    return fields;
}

const Vocabulary& scattering_vocabulary()
{
    static const Vocabulary vocabulary = [] {
        Vocabulary words;
        words.names = front_matter_field_names;
        words.names.insert(table_field_names.begin(), table_field_names.end());
        words.names.insert({"databank_code", "citation", "sample_details", "collection_parameters",
                            "scattering_software", "structural_parameters", "model_fitting",
                            "figures", "measurement", "block", "several_panels", "error_bars",
                            "fits", "transform", "guinier_panel", "distribution_panel"});
        for (const auto& keys :
             {sample_row_keys(), collection_row_keys(), scattering_software_row_keys(),
              structural_parameter_row_keys(), model_fitting_row_keys()})
            words.row_keys.insert(keys.begin(), keys.end());
        return words;
    }();
    return vocabulary;
}

} // namespace quillet
