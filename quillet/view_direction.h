// From which side to look at atoms.
#pragma once

#include <gemmi/math.hpp>
#include <vector>

namespace quillet
{

// Orthonormal and right-handed, so that what is drawn has the handedness of the structure.
struct View {
    gemmi::Vec3 right;
    gemmi::Vec3 up;
    gemmi::Vec3 toward_viewer;

    gemmi::Vec3 apply(const gemmi::Vec3& v) const
    {
        return {right.dot(v), up.dot(v), toward_viewer.dot(v)};
    }
};

struct WeightedPoint {
    gemmi::Vec3 position; // in Angstrom
    double weight = 1;    // how much it matters that the point is seen
};

// The view in which the points hide each other least and spread out most, its longest extension
// horizontal. The same points give the same view.
View most_spread_out_view(const std::vector<WeightedPoint>& points);

} // namespace quillet
