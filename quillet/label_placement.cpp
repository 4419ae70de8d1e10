#include "quillet/label_placement.h"

#include "quillet/unicode.h"

#include <algorithm>
#include <cmath>

namespace quillet
{

namespace
{

struct Box {
    double left = 0, top = 0, right = 0, bottom = 0;
};

// Average widths and heights of letters in sans-serif type.
constexpr double letter_width = 0.62;
constexpr double letter_height = 0.74;

const double pi = std::acos(-1.0);

double overlap(const Box& a, const Box& b)
{
    const double width = std::min(a.right, b.right) - std::max(a.left, b.left);
    const double height = std::min(a.bottom, b.bottom) - std::max(a.top, b.top);
    return width > 0 && height > 0 ? width * height : 0;
}

double distance_to(const Box& box, Point p)
{
    const double dx = std::max({box.left - p.x, 0.0, p.x - box.right});
    const double dy = std::max({box.top - p.y, 0.0, p.y - box.bottom});
    return std::hypot(dx, dy);
}

Box widened(const Box& box, double by)
{
    return {box.left - by, box.top - by, box.right + by, box.bottom + by};
}

// How much of the line is in the box, in pixels.
double length_inside(const Box& box, const LabelSegment& line)
{
    const double length = std::hypot(line.to.x - line.from.x, line.to.y - line.from.y);
    const int steps = std::clamp(static_cast<int>(length / 2), 1, 100);
    int inside = 0;
    for (int i = 0; i <= steps; ++i) {
        const double t = static_cast<double>(i) / steps;
        const Point p{line.from.x + t * (line.to.x - line.from.x),
                      line.from.y + t * (line.to.y - line.from.y)};
        inside += distance_to(box, p) == 0 ? 1 : 0;
    }
    return length * inside / (steps + 1);
}

class Placer
{
public:
    Placer(const std::vector<LabelledDisc>& discs, const std::vector<LabelSegment>& lines,
           double font_size)
        : m_discs(discs),
          m_lines(lines),
          m_font_size(font_size)
    {
    }

    Point place(const LabelledDisc& disc)
    {
        const double width =
            letter_width * m_font_size * static_cast<double>(count_characters(disc.label));
        const double height = letter_height * m_font_size;
        constexpr int directions = 24;
        Box best;
        double best_cost = -1;
        for (const double gap : {4.0, 8.0, 14.0}) {
            for (int i = 0; i < directions; ++i) {
                const double angle = -pi / 4 + 2 * pi * i / directions;
                const Box box = box_beside(disc, width, height, angle, gap);
                const double cost = cost_of(box) + gap;
                if (best_cost < 0 || cost < best_cost) {
                    best = box;
                    best_cost = cost;
                }
            }
        }
        m_placed.push_back(best);
        return {(best.left + best.right) / 2, best.bottom};
    }

private:
    // The box whose nearest point is `gap` away from the disc in that direction.
    static Box box_beside(const LabelledDisc& disc, double width, double height, double angle,
                          double gap)
    {
        const double reach = disc.radius + gap;
        const double x = disc.centre.x + std::cos(angle) * (reach + width / 2);
        const double y = disc.centre.y + std::sin(angle) * (reach + height / 2);
        return {x - width / 2, y - height / 2, x + width / 2, y + height / 2};
    }

    double cost_of(const Box& box) const
    {
        constexpr double on_disc = 6;
        constexpr double on_line = 1.5;
        constexpr double on_label = 1;
        double cost = 0;
        constexpr double clearance = 3;
        for (const LabelledDisc& disc : m_discs)
            cost +=
                on_disc * std::max(0.0, disc.radius + clearance - distance_to(box, disc.centre));
        for (const LabelSegment& line : m_lines)
            cost += on_line * length_inside(widened(box, clearance + line.width / 2), line);
        for (const Box& other : m_placed)
            cost += on_label * overlap(box, other);
        return cost;
    }

    const std::vector<LabelledDisc>& m_discs;
    const std::vector<LabelSegment>& m_lines;
    double m_font_size;
    std::vector<Box> m_placed;
};

} // namespace

std::vector<Point> place_labels(const std::vector<LabelledDisc>& discs,
                                const std::vector<LabelSegment>& lines, double font_size)
{
    Placer placer(discs, lines, font_size);
    std::vector<Point> positions;
    positions.reserve(discs.size());
    for (const LabelledDisc& disc : discs)
        positions.push_back(disc.label.empty() ? disc.centre : placer.place(disc));
    return positions;
}

} // namespace quillet
