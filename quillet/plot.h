// Plots of curves: panels with axes, points with error bars, lines and a legend. What is drawn
// depends on nothing but the arguments.
#pragma once

#include "quillet/svg.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quillet
{

RichText plain_text(std::string text);
RichText italic_text(std::string text);
RichText superscript_text(std::string text);
RichText subscript_text(std::string text);
RichText operator+(RichText left, const RichText& right);

// One axis of a panel.
struct PlotAxis {
    enum class Scale {
        linear,
        logarithmic, // `low` and `high` are positive
        resolution   // values are 1/d^2, labels are d
    };
    RichText label;
    Scale scale = Scale::linear;
    double low = 0;
    double high = 1;
};

struct PlotPoint {
    double x = 0;
    double y = 0;
    double error = 0; // of y, to both sides; 0 if there is none
};

// Points or a line. Of points that would cover each other only one is drawn, so that a curve of
// any length makes a picture of reasonable size.
struct PlotSeries {
    enum class Kind { dots, circles, line, line_with_dots, dashed_line } kind = Kind::dots;
    int colour = 0;                // 0 is that of measured points, others are for comparisons
    RichText name;                 // in the legend; not there if empty
    std::vector<PlotPoint> points; // lines connect them in this order
};

struct PlotPanel {
    PlotAxis x;
    PlotAxis y;
    std::vector<PlotSeries> series; // the first at the back
    std::vector<RichText> remarks;  // lines in the upper right corner
    enum class LegendPlace { upper_right, above } legend = LegendPlace::upper_right;
    enum class Size {
        large, // the width of the picture
        flat,  // the same, but less high
        half   // two in a row
    } size = Size::large;
};

// An SVG file of the width of a column in print. Panels stand in rows and, if there are several,
// are called (a), (b), ...
std::string draw_plot(const std::vector<PlotPanel>& panels, std::string_view title,
                      std::string_view description);

// An axis that shows all these values with some room at the ends, but for an end at zero.
// Values that are not finite (and not positive, on a logarithmic axis) do not count. There must be
// one that does.
PlotAxis axis_for(PlotAxis::Scale scale, RichText label, const std::vector<double>& values);

} // namespace quillet
