// Models fitted to scattering curves, and the programs that were used.
#pragma once

#include "quillet/scattering_measurement.h"

#include <cstddef>
#include <optional>
#include <set>
#include <string_view>
#include <vector>

namespace quillet
{

// One fit to a curve with the model it comes from; one of the two may be missing. A fit with
// several models is there once for each. Refers into the document.
struct ModelFit {
    Notes* notes = nullptr; // never null
    const Block* fit_block = nullptr;
    Rows fits;
    std::size_t fit = 0;
    const Block* model_block = nullptr;
    Rows models;
    std::size_t model = 0;
    std::optional<std::size_t> measurement; // which one it belongs to; nothing if that is not told

    Item fit_item(Tags tags) const { return fits.size() > 0 ? fits.item(fit, tags) : Item(); }
    Item model_item(Tags tags) const
    {
        return models.size() > 0 ? models.item(model, tags) : Item();
    }
};

// All of the document: by their fits, in file order, then models without a fit. Fits that belong
// to no measurement and models that belong to no fit are reported.
std::vector<ModelFit> model_fits_of(const Document& document,
                                    const std::vector<Measurement>& measurements, Notes& notes);

// The rows of _sas_model_fitting that are the fitted curve.
std::vector<std::size_t> rows_of_fit(const ModelFit& fit);

// A column for each fit. `measurement_names`: as headings_of() gives them.
Table model_fitting(const std::vector<ModelFit>& fits, const std::vector<Html>& measurement_names);
std::set<std::string_view> model_fitting_row_keys();

// A column for each measurement. No table is needed if it has no value.
Table scattering_software(const std::vector<Measurement>& measurements,
                          const std::vector<ModelFit>& fits);
std::set<std::string_view> scattering_software_row_keys();

} // namespace quillet
