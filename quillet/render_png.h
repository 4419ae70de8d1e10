// SVG to PNG.
#pragma once

#include <string>

namespace quillet
{

// The picture at twice the size in pixels that the SVG states, for print. Throws
// std::runtime_error if it cannot be drawn. Several threads may call it.
std::string render_png(const std::string& svg);

} // namespace quillet
