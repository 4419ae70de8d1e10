#include "quillet/svg.h"

#include "quillet/html.h"
#include "quillet/plain_number.h"

#include <cmath>

namespace quillet
{

namespace
{

std::string attribute(const char* name, double value)
{
    return std::string(" ") + name + "=\"" + svg_number(value) + "\"";
}

std::string escaped(std::string_view text)
{
    return to_ascii(escape(text).str());
}

const char* name_of(TextAnchor anchor)
{
    if (anchor == TextAnchor::start)
        return "start";
    return anchor == TextAnchor::middle ? "middle" : "end";
}

// How far the base line of a run lies below that of plain text.
double drop_of(TextRun::Style style, double font_size)
{
    if (style == TextRun::Style::superscript)
        return -0.36 * font_size;
    return style == TextRun::Style::subscript ? 0.22 * font_size : 0;
}

} // namespace

std::string svg_number(double value)
{
    std::string text = plain_number(value, 2);
    text.erase(text.find_last_not_of('0') + 1);
    if (text.back() == '.')
        text.pop_back();
    return text == "-0" ? "0" : text;
}

SvgWriter::SvgWriter(double width, double height, std::string_view title,
                     std::string_view description)
{
    m_text = "<svg xmlns=\"http://www.w3.org/2000/svg\"" + attribute("width", width) +
             attribute("height", height) + " viewBox=\"0 0 " + svg_number(width) + " " +
             svg_number(height) +
             "\" font-family=\"Liberation Sans, Arial, Helvetica, sans-serif\">\n<title>" +
             escaped(title) + "</title>\n<desc>" + escaped(description) + "</desc>\n";
    rectangle({0, 0}, width, height, "fill=\"#ffffff\"");
}

void SvgWriter::line(Point from, Point to, std::string_view style)
{
    m_text += "<line" + attribute("x1", from.x) + attribute("y1", from.y) + attribute("x2", to.x) +
              attribute("y2", to.y) + " " + std::string(style) + "/>\n";
}

void SvgWriter::circle(Point centre, double radius, std::string_view style)
{
    m_text += "<circle" + attribute("cx", centre.x) + attribute("cy", centre.y) +
              attribute("r", radius) + " " + std::string(style) + "/>\n";
}

void SvgWriter::ellipse(Point centre, double half_axis, double other_half_axis, double angle,
                        std::string_view style)
{
    const double degrees = angle * 180 / std::acos(-1.0);
    m_text += "<ellipse" + attribute("cx", centre.x) + attribute("cy", centre.y) +
              attribute("rx", half_axis) + attribute("ry", other_half_axis) +
              " transform=\"rotate(" + svg_number(degrees) + " " + svg_number(centre.x) + " " +
              svg_number(centre.y) + ")\" " + std::string(style) + "/>\n";
}

void SvgWriter::polyline(const std::vector<Point>& points, std::string_view style)
{
    m_text += "<polyline points=\"";
    for (std::size_t i = 0; i < points.size(); ++i)
        m_text += (i > 0 ? " " : "") + svg_number(points[i].x) + "," + svg_number(points[i].y);
    m_text += "\" " + std::string(style) + "/>\n";
}

void SvgWriter::rectangle(Point corner, double width, double height, std::string_view style)
{
    m_text += "<rect" + attribute("x", corner.x) + attribute("y", corner.y) +
              attribute("width", width) + attribute("height", height) + " " + std::string(style) +
              "/>\n";
}

void SvgWriter::text(Point position, std::string_view content, std::string_view style)
{
    m_text += "<text" + attribute("x", position.x) + attribute("y", position.y) +
              " text-anchor=\"middle\" " + std::string(style) + ">" + escaped(content) +
              "</text>\n";
}

void SvgWriter::rich_text(Point position, const RichText& content, double font_size,
                          TextAnchor anchor, double degrees)
{
    m_text += "<text" + attribute("x", position.x) + attribute("y", position.y) +
              attribute("font-size", font_size) + " text-anchor=\"" + name_of(anchor) +
              "\" xml:space=\"preserve\""; // else blanks at the ends of runs are lost
    if (degrees != 0)
        m_text += " transform=\"rotate(" + svg_number(degrees) + " " + svg_number(position.x) +
                  " " + svg_number(position.y) + ")\"";
    m_text += ">";
    double drop = 0;
    for (const TextRun& run : content) {
        const double wanted = drop_of(run.style, font_size);
        m_text += "<tspan";
        if (wanted != drop)
            m_text += attribute("dy", wanted - drop);
        if (run.style == TextRun::Style::italic)
            m_text += " font-style=\"italic\"";
        else if (run.style != TextRun::Style::plain)
            m_text += attribute("font-size", 0.72 * font_size);
        m_text += ">" + escaped(run.text) + "</tspan>";
        drop = wanted;
    }
    m_text += "</text>\n";
}

void SvgWriter::segments(const std::vector<std::pair<Point, Point>>& lines, std::string_view style)
{
    m_text += "<path d=\"";
    for (const auto& [from, to] : lines)
        m_text += "M" + svg_number(from.x) + "," + svg_number(from.y) + "L" + svg_number(to.x) +
                  "," + svg_number(to.y);
    m_text += "\" fill=\"none\" " + std::string(style) + "/>\n";
}

void SvgWriter::begin_style(std::string_view style)
{
    m_text += "<g " + std::string(style) + ">\n";
}

void SvgWriter::begin_group(std::string_view name, std::string_view value)
{
    m_text += "<g data-" + std::string(name) + "=\"" + escaped(value) + "\">\n";
}

void SvgWriter::end_group()
{
    m_text += "</g>\n";
}

std::string SvgWriter::finish() const
{
    return m_text + "</svg>\n";
}

} // namespace quillet
