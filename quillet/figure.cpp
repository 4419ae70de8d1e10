#include "quillet/figure.h"

#include "quillet/resolution_plot.h"
#include "quillet/scattering_plot.h"
#include "quillet/structure_drawing.h"
#include "quillet/unicode.h"

#include <algorithm>

namespace quillet
{

namespace
{

bool is_wanted(const Block& block, const std::string& name)
{
    return name.empty() || ascii_lower(block.name()) == ascii_lower(name);
}

// The place of the first of these data names, or of the block.
Position place_of(const Block& block, std::initializer_list<std::string_view> tags)
{
    for (const std::string_view tag : tags) {
        if (const Column* column = block.find(tag))
            return column->where;
    }
    return block.where();
}

// `what` a block would need to have. The place is where it should be in the first block that is
// wanted, if there is one.
InputError nothing_to_draw(const Document& document, const std::string& block_name,
                           const std::string& what,
                           std::initializer_list<std::string_view> tags = {})
{
    const auto block =
        std::find_if(document.blocks.begin(), document.blocks.end(),
                     [&](const Block& candidate) { return is_wanted(candidate, block_name); });
    const std::string where = block_name.empty() ? "no block" : "no block data_" + block_name;
    const bool is_placed = block != document.blocks.end() && tags.size() > 0;
    return InputError(document.path, is_placed ? place_of(*block, tags) : Position{},
                      "there is nothing to draw: " + where + " has " + what);
}

std::string structure_figure(const Document& document, const std::string& block_name, Notes& notes)
{
    for (const Block& block : document.blocks) {
        if (!is_wanted(block, block_name))
            continue;
        const StructureModel model = asymmetric_unit(block, notes);
        if (!model.atoms.empty())
            return draw_structure(model, "Structure of " + block.name());
    }
    throw nothing_to_draw(document, block_name, "a cell and atoms with fractional coordinates");
}

std::string scattering_figure(const Document& document, const std::string& block_name, Notes& notes)
{
    const auto measurements = measurements_of(document, notes);
    const auto fits = model_fits_of(document, measurements, notes);
    for (std::size_t i = 0; i < measurements.size(); ++i) {
        if (!is_wanted(*measurements[i].block, block_name))
            continue;
        const ScatteringPlot plot = plot_of(measurements[i], i, fits);
        if (!plot.panels.empty())
            return draw_plot(plot.panels, "Scattering of " + measurements[i].block->name(),
                             "Scattering curve with what was derived from it.");
    }
    throw nothing_to_draw(
        document, block_name,
        "a scattering curve with positive intensities "
        "(_sas_scan_intensity.momentum_transfer and "
        "_sas_scan_intensity.intensity)",
        {"_sas_scan_intensity.intensity", "_sas_scan_intensity.momentum_transfer", "_sas_scan.id"});
}

std::string resolution_figure(const Document& document, const std::string& block_name, Notes& notes)
{
    for (const Block& block : document.blocks) {
        if (!is_wanted(block, block_name))
            continue;
        const ResolutionPlot plot = resolution_plot(block, notes);
        if (!plot.panels.empty())
            return draw_plot(plot.panels, "Data quality of " + block.name(),
                             "Statistics in resolution shells.");
    }
    throw nothing_to_draw(
        document, block_name,
        "statistics for two or more resolution shells (_reflns_shell, "
        "_refine_ls_shell)",
        {"_reflns_shell.d_res_high", "_refine_ls_shell.d_res_high", "_reflns.d_resolution_high"});
}

} // namespace

std::string make_figure(const Document& document, const std::string& block_name, Notes& notes)
{
    if (document.kind == Kind::scattering)
        return scattering_figure(document, block_name, notes);
    if (document.kind == Kind::macromolecular)
        return resolution_figure(document, block_name, notes);
    return structure_figure(document, block_name, notes);
}

} // namespace quillet
