// The table of structural parameters from small-angle scattering.
#pragma once

#include "quillet/scattering_measurement.h"

#include <set>
#include <string_view>
#include <vector>

namespace quillet
{

Table structural_parameters(const std::vector<Measurement>& measurements);

std::set<std::string_view> structural_parameter_row_keys();

} // namespace quillet
