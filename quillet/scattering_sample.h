// The table of sample details of a scattering article.
#pragma once

#include "quillet/scattering_measurement.h"

#include <optional>
#include <set>
#include <string_view>
#include <vector>

namespace quillet
{

Table sample_details(const std::vector<Measurement>& measurements);

std::set<std::string_view> sample_row_keys();

// The molecular mass in kDa that the sample's chemical composition gives: the exact sum over its
// entities and their copies or, where that cannot be worked out, what the file states. Formula
// weights above 1000 are in Da.
std::optional<Decimal> mass_from_composition(const Measurement& m);

} // namespace quillet
