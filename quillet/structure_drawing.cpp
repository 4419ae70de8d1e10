#include "quillet/structure_drawing.h"

#include "quillet/label_placement.h"
#include "quillet/svg.h"
#include "quillet/view_direction.h"

#include <algorithm>
#include <cmath>
#include <gemmi/eig3.hpp>

namespace quillet
{

namespace
{

using gemmi::SMat33;
using gemmi::Vec3;

const double pi = std::acos(-1.0);

// The ellipsoid that holds an atom half of the time has half axes of this many times the root
// mean square displacement (median of the chi distribution with three degrees of freedom).
constexpr double half_probability = 1.5381722544550522;

constexpr double hydrogen_radius = 0.13;  // Angstrom
constexpr double plain_atom_radius = 0.2; // of atoms without displacement parameters
constexpr double bond_width = 0.11;
constexpr double hydrogen_bond_width = 0.07; // of a bond to hydrogen
constexpr double canvas_width = 900;         // pixels
constexpr double largest_canvas_height = 1200;
constexpr double margin = 45;
constexpr double largest_scale = 90; // pixels to the Angstrom
constexpr double largest_font_size = 17;
constexpr double smallest_font_size = 11;
constexpr double scale_of_largest_font = 55; // pixels to the Angstrom

const char* fill_of(gemmi::El element)
{
    using gemmi::El;
    switch (element) {
    case El::H:
    case El::D:
        return "#ffffff";
    case El::B:
        return "#f4cdbd";
    case El::C:
        return "#cccccc";
    case El::N:
        return "#a9bdf7";
    case El::O:
        return "#f7a6a0";
    case El::F:
    case El::Cl:
        return "#b2e3a6";
    case El::Br:
        return "#d0a184";
    case El::I:
        return "#c3a2dd";
    case El::Si:
        return "#e6d3ae";
    case El::P:
        return "#f9c48d";
    case El::S:
        return "#f5e38c";
    case El::X:
        return "#eeeeee";
    default:
        return gemmi::is_metal(element) ? "#a7d3de" : "#d9d0e2";
    }
}

// An atom as it is seen: x to the right, y up, z towards the viewer, in Angstrom.
struct SeenAtom {
    const DrawnAtom* atom = nullptr;
    Vec3 position;
    bool is_ellipsoid = false;
    SMat33<double> displacement{0, 0, 0, 0, 0, 0}; // in the axes of the view
    double radius = 0;                             // of a sphere
};

SeenAtom see(const DrawnAtom& atom, const View& view)
{
    SeenAtom seen;
    seen.atom = &atom;
    seen.position = view.apply(atom.position);
    seen.is_ellipsoid = atom.has_displacement && !atom.is_hydrogen;
    seen.radius = atom.is_hydrogen ? hydrogen_radius : plain_atom_radius;
    const gemmi::Mat33 axes(view.right.x, view.right.y, view.right.z, view.up.x, view.up.y,
                            view.up.z, view.toward_viewer.x, view.toward_viewer.y,
                            view.toward_viewer.z);
    seen.displacement = atom.displacement.transformed_by(axes);
    return seen;
}

// Distance from the atom's centre to its surface in that direction (a unit vector).
double reach(const SeenAtom& seen, const Vec3& direction)
{
    if (!seen.is_ellipsoid)
        return seen.radius;
    return half_probability / std::sqrt(seen.displacement.inverse().r_u_r(direction));
}

// Outline of an ellipsoid in the plane of the drawing.
struct Outline {
    double half_axis = 0;
    double other_half_axis = 0;
    double angle = 0; // of the first, against x, counter-clockwise
};

Outline outline_of(const SeenAtom& seen)
{
    if (!seen.is_ellipsoid)
        return {seen.radius, seen.radius, 0};
    const auto& u = seen.displacement;
    const double mean = (u.u11 + u.u22) / 2;
    const double difference = std::hypot((u.u11 - u.u22) / 2, u.u12);
    return {half_probability * std::sqrt(mean + difference),
            half_probability * std::sqrt(std::max(mean - difference, 0.0)),
            std::atan2(2 * u.u12, u.u11 - u.u22) / 2};
}

// Angstrom to pixels.
class Canvas
{
public:
    explicit Canvas(const std::vector<SeenAtom>& atoms)
    {
        double left = 1e9, right = -1e9, bottom = 1e9, top = -1e9;
        for (const SeenAtom& seen : atoms) {
            const double radius = outline_of(seen).half_axis;
            left = std::min(left, seen.position.x - radius);
            right = std::max(right, seen.position.x + radius);
            bottom = std::min(bottom, seen.position.y - radius);
            top = std::max(top, seen.position.y + radius);
        }
        const double room = canvas_width - 2 * margin;
        m_scale = std::min({largest_scale, room / std::max(right - left, 0.1),
                            (largest_canvas_height - 2 * margin) / std::max(top - bottom, 0.1)});
        m_width = m_scale * (right - left) + 2 * margin;
        m_height = m_scale * (top - bottom) + 2 * margin;
        m_left = left;
        m_top = top;
    }

    double width() const { return m_width; }
    double height() const { return m_height; }
    double scale() const { return m_scale; }
    Point at(const Vec3& position) const
    {
        return {margin + (position.x - m_left) * m_scale, margin + (m_top - position.y) * m_scale};
    }

private:
    double m_scale = 1;
    double m_width = 0;
    double m_height = 0;
    double m_left = 0;
    double m_top = 0;
};

// The part of a bond outside both atoms.
struct SeenBond {
    const DrawnBond* bond = nullptr;
    Vec3 from;
    Vec3 to;
    bool is_hidden = false; // the atoms touch
};

SeenBond see(const DrawnBond& bond, const std::vector<SeenAtom>& atoms)
{
    const SeenAtom& a = atoms[bond.first];
    const SeenAtom& b = atoms[bond.second];
    SeenBond seen;
    seen.bond = &bond;
    const double length = a.position.dist(b.position);
    if (length < 1e-3) {
        seen.is_hidden = true;
        return seen;
    }
    const Vec3 direction = (b.position - a.position) / length;
    const double from = reach(a, direction);
    const double to = length - reach(b, direction);
    seen.from = a.position + direction * from;
    seen.to = a.position + direction * to;
    seen.is_hidden = from >= to;
    return seen;
}

class Drawing
{
public:
    Drawing(const StructureModel& model, std::string_view title)
        : m_atoms(seen_atoms(model)),
          m_canvas(m_atoms),
          m_svg(m_canvas.width(), m_canvas.height(), title, description(model))
    {
        for (const DrawnBond& bond : model.bonds) {
            const SeenBond seen = see(bond, m_atoms);
            if (!seen.is_hidden)
                m_bonds.push_back(seen);
        }
    }

    std::string draw()
    {
        for (const Step& step : steps_from_back_to_front()) {
            if (step.atom)
                draw_atom(*step.atom);
            else
                draw_bond(*step.bond);
        }
        draw_labels();
        return m_svg.finish();
    }

private:
    struct Step {
        double depth = 0;
        const SeenAtom* atom = nullptr;
        const SeenBond* bond = nullptr;
    };

    static std::vector<SeenAtom> seen_atoms(const StructureModel& model)
    {
        constexpr double weight_of_hydrogen = 0.4;
        std::vector<WeightedPoint> points;
        for (const DrawnAtom& atom : model.atoms)
            points.push_back({atom.position, atom.is_hydrogen ? weight_of_hydrogen : 1.0});
        const View view = most_spread_out_view(points);
        std::vector<SeenAtom> atoms;
        for (const DrawnAtom& atom : model.atoms)
            atoms.push_back(see(atom, view));
        return atoms;
    }

    static std::string description(const StructureModel& model)
    {
        std::string text = "The asymmetric unit.";
        if (model.has_ellipsoids)
            text += " Displacement ellipsoids are drawn at the 50% probability level.";
        return text;
    }

    std::vector<Step> steps_from_back_to_front() const
    {
        std::vector<Step> steps;
        for (const SeenAtom& atom : m_atoms)
            steps.push_back({atom.position.z, &atom, nullptr});
        for (const SeenBond& bond : m_bonds)
            steps.push_back({(bond.from.z + bond.to.z) / 2, nullptr, &bond});
        std::stable_sort(steps.begin(), steps.end(),
                         [](const Step& a, const Step& b) { return a.depth < b.depth; });
        return steps;
    }

    static std::string stroke(const char* color, double width)
    {
        return std::string("stroke=\"") + color + "\" stroke-width=\"" + svg_number(width) + "\"";
    }

    bool is_minor(const SeenBond& seen) const
    {
        return m_atoms[seen.bond->first].atom->is_minor ||
               m_atoms[seen.bond->second].atom->is_minor;
    }

    void draw_bond(const SeenBond& seen)
    {
        const Point from = m_canvas.at(seen.from);
        const Point to = m_canvas.at(seen.to);
        const std::string round = " stroke-linecap=\"round\"";
        if (seen.bond->kind == DrawnBond::Kind::hydrogen_bond) {
            m_svg.line(from, to, stroke("#555555", 1.6) + " stroke-dasharray=\"1.5 5\"" + round);
            return;
        }
        const bool to_hydrogen = m_atoms[seen.bond->first].atom->is_hydrogen ||
                                 m_atoms[seen.bond->second].atom->is_hydrogen;
        const double width = m_canvas.scale() * (to_hydrogen ? hydrogen_bond_width : bond_width);
        if (is_minor(seen)) {
            m_svg.line(from, to, stroke("#444444", 1.4) + " stroke-dasharray=\"5 3\"");
            return;
        }
        m_svg.line(from, to, stroke("#333333", width + 1.6));
        m_svg.line(from, to, stroke("#f3f3f3", std::max(width - 0.6, 0.5)));
    }

    void draw_atom(const SeenAtom& seen)
    {
        const Point centre = m_canvas.at(seen.position);
        const Outline outline = outline_of(seen);
        const std::string style =
            std::string("fill=\"") + fill_of(seen.atom->element) + "\" " +
            stroke("#222222", seen.atom->is_hydrogen ? 1 : 1.3) +
            (seen.atom->is_minor ? " stroke-dasharray=\"3 2\" fill-opacity=\"0.5\"" : "");
        m_svg.begin_group("atom", seen.atom->label);
        if (seen.is_ellipsoid) {
            m_svg.ellipse(centre, m_canvas.scale() * outline.half_axis,
                          m_canvas.scale() * outline.other_half_axis, -outline.angle, style);
            draw_principal_sections(seen);
        } else {
            m_svg.circle(centre, m_canvas.scale() * outline.half_axis, style);
        }
        m_svg.end_group();
    }

    // The three planes through the axes cut the surface in ellipses; their front halves show the
    // shape of the ellipsoid.
    void draw_principal_sections(const SeenAtom& seen)
    {
        double values[3];
        const gemmi::Mat33 vectors = gemmi::eigen_decomposition(seen.displacement, values);
        for (int i = 0; i < 3; ++i) {
            const int j = (i + 1) % 3;
            draw_front_half(seen, vectors.column_copy(i), std::sqrt(values[i]),
                            vectors.column_copy(j), std::sqrt(values[j]));
        }
    }

    void draw_front_half(const SeenAtom& seen, const Vec3& a, double length_a, const Vec3& b,
                         double length_b)
    {
        constexpr int steps = 24;
        // The surface faces the viewer where its normal does.
        const double middle = std::atan2(b.z / length_b, a.z / length_a);
        std::vector<Point> points;
        for (int i = 0; i <= steps; ++i) {
            const double t = middle - pi / 2 + pi * i / steps;
            points.push_back(m_canvas.at(
                seen.position +
                (a * (length_a * std::cos(t)) + b * (length_b * std::sin(t))) * half_probability));
        }
        m_svg.polyline(points, "fill=\"none\" stroke=\"#222222\" stroke-width=\"0.8\"");
    }

    double font_size() const
    {
        return std::clamp(largest_font_size * m_canvas.scale() / scale_of_largest_font,
                          smallest_font_size, largest_font_size);
    }

    // Hydrogen atoms of hydrogen bonds, too, unless that would crowd the picture.
    bool is_labelled(const DrawnAtom& atom) const
    {
        constexpr std::size_t crowd = 70;
        return !atom.is_hydrogen ||
               (atom.is_hydrogen_bond_donor_hydrogen && m_atoms.size() < crowd);
    }

    void draw_labels()
    {
        std::vector<LabelledDisc> discs;
        std::vector<LabelSegment> lines;
        for (const SeenAtom& seen : m_atoms)
            discs.push_back({m_canvas.at(seen.position),
                             m_canvas.scale() * outline_of(seen).half_axis,
                             is_labelled(*seen.atom) ? seen.atom->label : std::string()});
        for (const SeenBond& seen : m_bonds)
            lines.push_back(
                {m_canvas.at(seen.from), m_canvas.at(seen.to), bond_width * m_canvas.scale()});
        const auto positions = place_labels(discs, lines, font_size());
        const std::string style = "font-size=\"" + svg_number(font_size()) + "\" fill=\"#000000\"";
        for (std::size_t i = 0; i < discs.size(); ++i) {
            if (!discs[i].label.empty())
                m_svg.text(positions[i], discs[i].label, style);
        }
    }

    std::vector<SeenAtom> m_atoms;
    Canvas m_canvas;
    SvgWriter m_svg;
    std::vector<SeenBond> m_bonds;
};

} // namespace

std::string draw_structure(const StructureModel& model, std::string_view title)
{
    return Drawing(model, title).draw();
}

} // namespace quillet
