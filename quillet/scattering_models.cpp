#include "quillet/scattering_models.h"

#include "quillet/cif_text.h"
#include "quillet/unicode.h"

#include <algorithm>

namespace quillet
{

namespace
{

constexpr std::string_view fit_id = "_sas_model_fitting_details.id";
constexpr std::string_view fitted_momentum = "_sas_model_fitting.momentum_transfer";

// The measurement whose result the fit says it belongs to.
std::optional<std::size_t> measurement_of(const ModelFit& fit,
                                          const std::vector<Measurement>& measurements)
{
    const Item result = fit.fit_item({"_sas_model_fitting_details.result_id"});
    for (std::size_t i = 0; i < measurements.size() && result.is_given(); ++i) {
        if (of_scan(measurements[i], {"_sas_scan.result_id"}).text == result.text ||
            of_result(measurements[i], {"_sas_result.id"}).text == result.text)
            return i;
    }
    if (measurements.size() == 1)
        return 0;
    if (fit.fits.size() == 0)
        return std::nullopt;
    const std::string link = "_sas_model_fitting_details.result_id";
    if (result.is_given())
        fit.notes->add(result.where(), "There is no _sas_result.id \u201c" +
                                           std::string(result.text) + "\u201d, which " + link +
                                           " refers to.");
    else
        fit.notes->add(fit.fit_block->where(),
                       "The fit of data_" + fit.fit_block->name() +
                           " does not tell which measurement it belongs to (" + link + ").");
    return std::nullopt;
}

std::vector<ModelFit> models_of(const Document& document, Notes& notes)
{
    std::vector<ModelFit> models;
    for (const Block& block : document.blocks) {
        const Rows rows = block.rows({"_sas_model.id", "_sas_model.fitting_id",
                                      "_sas_model.type_of_model", "_sas_model.software"});
        for (std::size_t row = 0; row < rows.size(); ++row) {
            ModelFit model;
            model.notes = &notes;
            model.model_block = &block;
            model.models = rows;
            model.model = row;
            models.push_back(model);
        }
    }
    return models;
}

// A fit once for each of its models, which are taken out of `models`.
void add_fit(const ModelFit& fit, std::vector<ModelFit>& models, std::vector<ModelFit>& result)
{
    const Item id = fit.fit_item({fit_id});
    bool has_model = false;
    for (auto model = models.begin(); model != models.end();) {
        const bool belongs =
            id.is_given() && model->model_item({"_sas_model.fitting_id"}).text == id.text;
        if (!belongs) {
            ++model;
            continue;
        }
        ModelFit pair = fit;
        pair.model_block = model->model_block;
        pair.models = model->models;
        pair.model = model->model;
        result.push_back(pair);
        has_model = true;
        model = models.erase(model);
    }
    if (!has_model)
        result.push_back(fit);
}

void report_model_without_fit(const ModelFit& model)
{
    const Item link = model.model_item({"_sas_model.fitting_id"});
    const std::string reason =
        link.is_given()
            ? "There is no " + std::string(fit_id) + " \u201c" + std::string(link.text) +
                  "\u201d, which _sas_model.fitting_id refers to."
            : "The model of data_" + model.model_block->name() +
                  " does not tell which fit it belongs to (_sas_model.fitting_id).";
    model.notes->add(link.is_given() ? link.where() : model.model_block->where(), reason);
}

Html model_type(const Item& type)
{
    const std::string word = ascii_lower(type.text);
    if (word == "dummy")
        return "Shape (dummy-atom) modelling"_html;
    return word == "atomic" ? "Atomistic modelling"_html : text_to_html(type.text);
}

// "name version"
Html program(const Item& name, const Item& version)
{
    Html html = text_to_html(name.text);
    if (name.is_given() && version.is_given())
        html += " "_html + text_to_html(version.text);
    return html;
}

Html model_program(const ModelFit& f)
{
    return program(f.model_item({"_sas_model.software"}), f.model_item({"_sas_model.version"}));
}

// A fit without a model has no value to be given.
Cell cell_of_model(const ModelFit& f, const Cell& cell)
{
    return f.models.size() > 0 ? cell : not_applicable_cell(cell.item);
}

Cell text_of_model(const ModelFit& f, std::string_view tag)
{
    return cell_of_model(f, text_cell(f.model_item({tag})));
}

// Of a value that is missing, "." means so too, but not where there is neither fit nor model.
Cell id_cell(const Item& id, bool exists)
{
    return exists ? unknown_unless_given(text_cell(id)) : not_applicable_cell(fit_id);
}

Cell ids(const ModelFit& f)
{
    const Item link = f.model_item({"_sas_model.fitting_id"});
    const bool has_fit = f.fits.size() > 0;
    return joined({id_cell(has_fit ? f.fit_item({fit_id}) : link, has_fit || link.is_given()),
                   id_cell(f.model_item({"_sas_model.id"}), f.models.size() > 0)},
                  " / "_html);
}

Cell type_cell(const ModelFit& f)
{
    const Item type = f.model_item({"_sas_model.type_of_model"});
    return type.is_given() ? given_cell(model_type(type), type.tag)
                           : cell_of_model(f, text_cell(type));
}

Cell software(const ModelFit& f)
{
    const Html html = model_program(f);
    return html.empty() ? text_of_model(f, "_sas_model.software")
                        : given_cell(html, "_sas_model.software");
}

Cell number_of_fit(const ModelFit& f, std::string_view tag, NumberFormat format)
{
    const Item item = f.fit_item({tag});
    return f.fit_block ? number_cell(*f.fit_block, item, format) : text_cell(item);
}

// Rounded, without an exponent if that is possible.
Html plain_momentum(std::string_view text)
{
    const auto number = parse_number(text);
    const auto plain = number ? without_exponent(*number) : std::nullopt;
    return plain ? format_number(*plain, rounded(4)) : format_number_text(text, rounded(4));
}

// From the smallest momentum transfer that is not zero to the largest. Curves of models begin at
// zero, where nothing was measured.
Cell fitted_range(const ModelFit& f)
{
    std::string_view lowest;
    std::string_view highest;
    double low = 0;
    double high = 0;
    for (const std::size_t row : rows_of_fit(f)) {
        const std::string& text = f.fit_block->find(fitted_momentum)->values[row].text;
        const auto number = parse_number(text);
        const double q = number ? number->value() : 0;
        if (!(q > 0))
            continue;
        if (lowest.empty() || q < low) {
            low = q;
            lowest = text;
        }
        if (highest.empty() || q > high) {
            high = q;
            highest = text;
        }
    }
    if (lowest.empty())
        return unknown_cell(fitted_momentum);
    const Item unit = f.fit_item({"_sas_model_fitting_details.unit"});
    return given_cell(plain_momentum(lowest) + escape("\u2013") + plain_momentum(highest) +
                          units_of_item(unit, f.fit_block->where(), *f.notes).momentum,
                      fitted_momentum);
}

Cell dummy_radius(const ModelFit& f)
{
    const Item radius = f.model_item({"_sas_model.radius"});
    if (ascii_lower(f.model_item({"_sas_model.type_of_model"}).text) != "dummy")
        return not_applicable_cell(radius.tag);
    return number_cell(*f.model_block, radius, trimmed_zeros);
}

// Coordinates of a block that holds several models cannot be told apart.
Cell number_of_atoms(const ModelFit& f)
{
    const std::size_t count =
        f.model_block && f.models.size() == 1 ? f.model_block->count("_atom_site.id") : 0;
    return count == 0 ? cell_of_model(f, unknown_cell("_atom_site.id"))
                      : given_cell(escape(std::to_string(count)), "_atom_site.id");
}

constexpr RowClass mandatory = RowClass::mandatory;
constexpr RowClass optional = RowClass::optional;

const RowSpec<ModelFit> fit_row_specs[] = {
    {"C5.fit", mandatory, ids},
    {"C5.type", optional, type_cell},
    {"C5.sw", optional, software},
    {"C5.sym", optional, [](const ModelFit& f) { return text_of_model(f, "_sas_model.symmetry"); }},
    {"C5.chi", optional,
     [](const ModelFit& f) {
         return number_of_fit(f, "_sas_model_fitting_details.chi_square", rounded(3));
     }},
    {"C5.p", optional,
     [](const ModelFit& f) {
         return number_of_fit(f, "_sas_model_fitting_details.p_value", trimmed_zeros);
     }},
    {"C5.q", optional, fitted_range},
    {"C5.rad", optional, dummy_radius},
    {"C5.nat", optional, number_of_atoms},
    {"C5.com", optional, [](const ModelFit& f) { return text_of_model(f, "_sas_model.comment"); }},
};

Html heading_of(const ModelFit& f)
{
    const Item id = f.fit_item({fit_id});
    if (id.is_given())
        return "Fit "_html + text_to_html(id.text);
    const Item model = f.model_item({"_sas_model.id"});
    if (f.fits.size() == 0 && model.is_given())
        return "Model "_html + text_to_html(model.text);
    return escape(f.fit_block ? f.fit_block->name() : f.model_block->name());
}

// A measurement with its fits: a column of the table of software.
struct Analysis {
    const Measurement* measurement;
    std::vector<const ModelFit*> fits;
};

// "type: program, program; type: program"
Cell modelling_programs(const Analysis& a)
{
    struct Group {
        Html type;
        std::vector<Html> programs;
    };
    std::vector<Group> groups;
    for (const ModelFit* f : a.fits) {
        const Html used = model_program(*f);
        const Html type = model_type(f->model_item({"_sas_model.type_of_model"}));
        if (used.empty())
            continue;
        auto group = std::find_if(groups.begin(), groups.end(),
                                  [&](const Group& g) { return g.type == type; });
        if (group == groups.end())
            group = groups.insert(groups.end(), {type, {}});
        auto& programs = group->programs;
        if (std::find(programs.begin(), programs.end(), used) == programs.end())
            programs.push_back(used);
    }
    std::vector<Html> texts;
    texts.reserve(groups.size());
    for (const Group& group : groups)
        texts.push_back(join({group.type, join(group.programs, ", "_html)}, ": "_html));
    const Html html = join(texts, "; "_html);
    const bool has_model = std::any_of(a.fits.begin(), a.fits.end(),
                                       [](const ModelFit* f) { return f->models.size() > 0; });
    if (html.empty())
        return unknown_cell(has_model ? "_sas_model.software" : "");
    return given_cell(html, "_sas_model.software");
}

// "name version (classification); ..." Data-bank entries have none, so it is not missed.
Cell other_programs(const Analysis& a)
{
    const Rows rows = a.measurement->block->rows("_software.name");
    std::vector<Html> programs;
    for (std::size_t row = 0; row < rows.size(); ++row) {
        Html used = program(rows.item(row, "_software.name"), rows.item(row, "_software.version"));
        const Item purpose = rows.item(row, "_software.classification");
        if (!used.empty() && purpose.is_given())
            used += " ("_html + text_to_html(purpose.text) + ")"_html;
        programs.push_back(used);
    }
    const Html html = join(programs, "; "_html);
    return html.empty() ? unknown_cell({}) : given_cell(html, "_software.name");
}

const RowSpec<Analysis> software_row_specs[] = {
    {"C3.pr", optional,
     [](const Analysis& a) {
         return text_cell(
             of_distance_distribution(*a.measurement, {"_sas_p_of_R_details.software_p_of_R"}));
     }},
    {"C3.mod", optional, modelling_programs},
    {"C3.sw", optional, other_programs},
};

} // namespace

std::vector<ModelFit> model_fits_of(const Document& document,
                                    const std::vector<Measurement>& measurements, Notes& notes)
{
    std::vector<ModelFit> models = models_of(document, notes);
    std::vector<ModelFit> result;
    for (const Block& block : document.blocks) {
        const Rows rows = block.rows({fit_id, "_sas_model_fitting_details.result_id",
                                      "_sas_model_fitting_details.chi_square"});
        for (std::size_t row = 0; row < rows.size(); ++row) {
            ModelFit fit;
            fit.notes = &notes;
            fit.fit_block = &block;
            fit.fits = rows;
            fit.fit = row;
            fit.measurement = measurement_of(fit, measurements);
            add_fit(fit, models, result);
        }
    }
    for (ModelFit& model : models) {
        report_model_without_fit(model);
        model.measurement = measurement_of(model, measurements);
        result.push_back(model);
    }
    return result;
}

std::vector<std::size_t> rows_of_fit(const ModelFit& fit)
{
    if (!fit.fit_block)
        return {};
    const auto rows = rows_of_id(*fit.fit_block, fitted_momentum, "_sas_model_fitting.id",
                                 fit.fit_item({fit_id}).text);
    // A single fit has the curve whatever its id.
    return rows.empty() && fit.fits.size() == 1
               ? rows_of_id(*fit.fit_block, fitted_momentum, {}, {})
               : rows;
}

Table model_fitting(const std::vector<ModelFit>& fits, const std::vector<Html>& measurement_names)
{
    Table table = make_table(fit_row_specs, fits);
    for (const ModelFit& f : fits) {
        const Html measurement = f.measurement && *f.measurement < measurement_names.size()
                                     ? measurement_names[*f.measurement]
                                     : Html();
        table.heads.push_back(join({measurement, heading_of(f)}, ": "_html));
    }
    if (fits.size() == 1 && measurement_names.empty())
        table.heads.clear();
    return table;
}

std::set<std::string_view> model_fitting_row_keys()
{
    return row_keys_of(fit_row_specs);
}

Table scattering_software(const std::vector<Measurement>& measurements,
                          const std::vector<ModelFit>& fits)
{
    std::vector<Analysis> analyses;
    for (std::size_t i = 0; i < measurements.size(); ++i) {
        analyses.push_back({&measurements[i], {}});
        for (const ModelFit& f : fits) {
            if (f.measurement == i)
                analyses.back().fits.push_back(&f);
        }
    }
    return make_table(software_row_specs, analyses);
}

std::set<std::string_view> scattering_software_row_keys()
{
    return row_keys_of(software_row_specs);
}

} // namespace quillet
