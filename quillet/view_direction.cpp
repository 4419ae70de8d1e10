#include "quillet/view_direction.h"

#include <algorithm>
#include <cmath>
#include <gemmi/eig3.hpp>

namespace quillet
{

namespace
{

using gemmi::Vec3;

gemmi::SMat33<double> covariance(const std::vector<Vec3>& points)
{
    Vec3 centre(0, 0, 0);
    for (const Vec3& p : points)
        centre += p;
    if (!points.empty())
        centre = centre / static_cast<double>(points.size());
    gemmi::SMat33<double> sum{0, 0, 0, 0, 0, 0};
    for (const Vec3& p : points) {
        const Vec3 d = p - centre;
        sum = sum + gemmi::SMat33<double>{d.x * d.x, d.y * d.y, d.z * d.z,
                                          d.x * d.y, d.x * d.z, d.y * d.z};
    }
    return sum;
}

// The principal axes, longest extension first.
std::array<Vec3, 3> principal_axes(const std::vector<Vec3>& points)
{
    double values[3];
    const gemmi::Mat33 vectors = gemmi::eigen_decomposition(covariance(points), values);
    std::array<int, 3> order = {0, 1, 2};
    std::stable_sort(order.begin(), order.end(),
                     [&](int a, int b) { return values[a] > values[b]; });
    return {vectors.column_copy(order[0]), vectors.column_copy(order[1]),
            vectors.column_copy(order[2])};
}

// Points of even density on half a sphere.
std::vector<Vec3> directions()
{
    constexpr int count = 400;
    const double golden_angle = gemmi::pi() * (3 - std::sqrt(5.0));
    std::vector<Vec3> result;
    for (int i = 0; i < count; ++i) {
        const double z = (i + 0.5) / count;
        const double radius = std::sqrt(1 - z * z);
        const double angle = golden_angle * i;
        result.emplace_back(radius * std::cos(angle), radius * std::sin(angle), z);
    }
    return result;
}

// Sum of the distances between points as seen from there; distances above that at which atoms no
// longer touch count for less.
double score(const std::vector<WeightedPoint>& points, const Vec3& direction)
{
    constexpr double far_enough = 1.4; // Angstrom
    constexpr double weight_beyond = 0.05;
    double sum = 0;
    for (std::size_t i = 0; i < points.size(); ++i) {
        for (std::size_t j = i + 1; j < points.size(); ++j) {
            const Vec3 d = points[i].position - points[j].position;
            const double depth = d.dot(direction);
            const double apart = std::sqrt(std::max(0.0, d.length_sq() - depth * depth));
            sum +=
                points[i].weight * points[j].weight *
                (std::min(apart, far_enough) + weight_beyond * std::max(0.0, apart - far_enough));
        }
    }
    return sum;
}

// Views of many atoms differ little, and pairs are as the square of their number.
std::vector<WeightedPoint> thinned(const std::vector<WeightedPoint>& points)
{
    constexpr std::size_t enough = 150;
    if (points.size() <= enough)
        return points;
    std::vector<WeightedPoint> result;
    for (std::size_t i = 0; i < enough; ++i)
        result.push_back(points[i * points.size() / enough]);
    return result;
}

std::vector<Vec3> positions_of(const std::vector<WeightedPoint>& points)
{
    std::vector<Vec3> positions;
    positions.reserve(points.size());
    for (const WeightedPoint& point : points)
        positions.push_back(point.position);
    return positions;
}

Vec3 best_direction(const std::vector<WeightedPoint>& points)
{
    const auto sample = thinned(points);
    Vec3 best = principal_axes(positions_of(points))[2];
    double best_score = score(sample, best);
    for (const Vec3& direction : directions()) {
        const double value = score(sample, direction);
        if (value > best_score * (1 + 1e-9)) {
            best = direction;
            best_score = value;
        }
    }
    return best;
}

// Eigenvectors have no sign; the side on which the points reach farther is the positive one.
Vec3 with_sign(const Vec3& axis, const std::vector<Vec3>& points)
{
    double skew = 0;
    Vec3 centre(0, 0, 0);
    for (const Vec3& p : points)
        centre += p / static_cast<double>(points.size());
    for (const Vec3& p : points)
        skew += std::pow((p - centre).dot(axis), 3);
    return skew < 0 ? axis * -1.0 : axis;
}

// The direction of `v` at right angles to `axis`; any such direction if `v` is along the axis.
Vec3 perpendicular_part(const Vec3& v, const Vec3& axis)
{
    constexpr double too_short = 1e-6;
    for (const Vec3& candidate : {v, Vec3(1, 0, 0), Vec3(0, 1, 0)}) {
        const Vec3 part = candidate - axis * candidate.dot(axis);
        if (part.length() > too_short)
            return part.normalized();
    }
    return {0, 0, 1};
}

} // namespace

View most_spread_out_view(const std::vector<WeightedPoint>& points)
{
    if (points.size() < 2)
        return {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
    const std::vector<Vec3> positions = positions_of(points);
    View view;
    view.toward_viewer = with_sign(best_direction(points).normalized(), positions);
    std::vector<Vec3> flat;
    flat.reserve(positions.size());
    for (const Vec3& p : positions)
        flat.push_back(p - view.toward_viewer * p.dot(view.toward_viewer));
    view.right =
        with_sign(perpendicular_part(principal_axes(flat)[0], view.toward_viewer), positions);
    view.up = view.toward_viewer.cross(view.right);
    return view;
}

} // namespace quillet
