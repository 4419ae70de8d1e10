// Pictures of what is in a CIF.
#pragma once

#include "quillet/document.h"

#include <string>

namespace quillet
{

// The figure for the article from this document, as an SVG file, of the first block that has
// something to draw or of the block of that name: the asymmetric unit of a small-molecule
// structure, the curves of a scattering measurement, the statistics in resolution shells of a
// macromolecular structure. Throws InputError if there is nothing to draw.
std::string make_figure(const Document& document, const std::string& block_name, Notes& notes);

} // namespace quillet
