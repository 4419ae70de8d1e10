// Which programs a macromolecular structure was worked out with.
#pragma once

#include "quillet/document.h"
#include "quillet/html.h"

#include <vector>

namespace quillet
{

enum class SoftwareScope {
    all,
    up_to_phasing // collecting, reducing and scaling data, and phasing
};

// "data reduction, XDS; data scaling, XSCALE; refinement, REFMAC 5.7.0029": tasks in the order of
// the work, each with its programs. Empty if the file names none.
Html software_line(const Document& document, SoftwareScope scope);

} // namespace quillet
