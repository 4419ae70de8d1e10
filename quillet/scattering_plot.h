// The figure of a scattering article.
#pragma once

#include "quillet/plot.h"
#include "quillet/scattering_measurement.h"
#include "quillet/scattering_models.h"

#include <vector>

namespace quillet
{

// What of a measurement can be drawn, in the order in which it is.
struct ScatteringPlot {
    std::vector<PlotPanel> panels; // empty if there is no curve
    bool has_errors = false;       // the first panel has error bars
    bool has_fits = false;         // it has curves of models
    bool has_transform = false;    // it has the transform of p(r)
    bool has_guinier = false;      // there is a Guinier plot, after the first panel
    bool has_distribution = false; // there is p(r), as the last panel
};

// log I(q) with error bars and the curves of the fits; the Guinier plot of the points that the file
// names, with the line that its Rg and I(0) give; p(r). The units are those of the file. A fit that
// does not state its unit is drawn if its points are those of the curve in one unit or the other.
// What had to be left out goes to the notes of the measurement. `index`: of the measurement in its
// document, as the fits know it.
ScatteringPlot plot_of(const Measurement& m, std::size_t index, const std::vector<ModelFit>& fits);

} // namespace quillet
