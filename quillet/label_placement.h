// Where to write the labels of a drawing.
#pragma once

#include "quillet/svg.h"

#include <string>
#include <vector>

namespace quillet
{

// A disc that labels keep clear of, perhaps with a label of its own.
struct LabelledDisc {
    Point centre;
    double radius = 0;
    std::string label; // empty: none
};

struct LabelSegment {
    Point from;
    Point to;
    double width = 0;
};

// For each disc the middle of the base line of its label: beside the disc, as clear of discs,
// lines and other labels as can be. Discs without a label get their centre. Deterministic.
std::vector<Point> place_labels(const std::vector<LabelledDisc>& discs,
                                const std::vector<LabelSegment>& lines, double font_size);

} // namespace quillet
