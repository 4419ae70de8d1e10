// The table of data-collection parameters of a scattering article.
#pragma once

#include "quillet/scattering_measurement.h"

#include <set>
#include <string_view>
#include <vector>

namespace quillet
{

Table collection_parameters(const std::vector<Measurement>& measurements);

std::set<std::string_view> collection_row_keys();

} // namespace quillet
