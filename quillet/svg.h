// Writing SVG.
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace quillet
{

struct Point {
    double x = 0;
    double y = 0;
};

// A piece of a line of text.
struct TextRun {
    enum class Style { plain, italic, superscript, subscript } style = Style::plain;
    std::string text; // UTF-8

    friend bool operator==(const TextRun& a, const TextRun& b)
    {
        return a.style == b.style && a.text == b.text;
    }
};
using RichText = std::vector<TextRun>;

enum class TextAnchor { start, middle, end };

// A drawing in pixels, y downwards. Numbers are written with two decimals, so that the same
// drawing is the same file.
class SvgWriter
{
public:
    SvgWriter(double width, double height, std::string_view title, std::string_view description);

    // `style`: attributes such as fill="none"; written as it is, so never text from a file.
    void line(Point from, Point to, std::string_view style);
    void circle(Point centre, double radius, std::string_view style);
    // `angle` of the first half axis against the x axis, in radians.
    void ellipse(Point centre, double half_axis, double other_half_axis, double angle,
                 std::string_view style);
    void polyline(const std::vector<Point>& points, std::string_view style);
    void rectangle(Point corner, double width, double height, std::string_view style);
    // Text is escaped; its middle is at x, its base line at y.
    void text(Point position, std::string_view content, std::string_view style);

    // One line of text; `position` is where `anchor` says, on the base line. Turned by `degrees`,
    // clockwise, about it.
    void rich_text(Point position, const RichText& content, double font_size, TextAnchor anchor,
                   double degrees = 0);
    // Many lines at once.
    void segments(const std::vector<std::pair<Point, Point>>& lines, std::string_view style);

    // All in it has that style, unless it has one of its own.
    void begin_style(std::string_view style);
    void begin_group(std::string_view name, std::string_view value); // data-NAME="VALUE"
    void end_group();

    // The whole file, in ASCII.
    std::string finish() const;

private:
    std::string m_text;
};

// A number as it is written to SVG.
std::string svg_number(double value);

} // namespace quillet
