// The figure of a macromolecular article: the quality of the data and of the model against
// resolution.
#pragma once

#include "quillet/document.h"
#include "quillet/plot.h"

#include <vector>

namespace quillet
{

// What of a structure can be drawn, in the order in which it is.
struct ResolutionPlot {
    std::vector<PlotPanel> panels;    // against 1/d^2; empty if there is nothing to draw
    bool has_signal = false;          // <I/sigma(I)>
    bool has_correlation = false;     // CC1/2, in the panel after that
    bool has_merging_r = false;       // R factors of the merged data, in the same panel
    bool has_model_agreement = false; // R factors of the model, in the last panel

    bool has_agreement() const { return has_correlation || has_merging_r; }
};

// Each quantity is there if at least two resolution shells of the block have values. Values that
// cannot be drawn go to `notes`.
ResolutionPlot resolution_plot(const Block& block, Notes& notes);

} // namespace quillet
