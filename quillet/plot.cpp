#include "quillet/plot.h"

#include "quillet/plain_number.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <set>

namespace quillet
{

namespace
{

// In pixels. The picture is to be printed 8.8 cm wide, so 18 pixels are 7 points.
constexpr double picture_width = 640;
constexpr double left_margin = 84;
constexpr double right_margin = 24;
constexpr double top_margin = 32;
constexpr double bottom_margin = 66;
constexpr double font_size = 18;
constexpr double legend_font_size = 16;
constexpr double legend_line = 22;
constexpr double legend_sample = 34; // length of the line that stands for a series
constexpr double tick_length = 7;
constexpr double minor_tick_length = 4;

// They keep apart in grey and for colour-blind readers.
struct Look {
    const char* colour;
    const char* dashes;
};
constexpr Look looks[] = {{"#333333", ""},    {"#d55e00", ""},         {"#0072b2", "9 4"},
                          {"#009e73", "3 4"}, {"#a0458b", "12 4 3 4"}, {"#b58900", "6 3"},
                          {"#56b4e9", "2 3"}};

const Look& look_of(int colour)
{
    constexpr int count = sizeof looks / sizeof looks[0];
    return looks[colour <= 0 ? 0 : 1 + (colour - 1) % (count - 1)];
}

double height_of(PlotPanel::Size size)
{
    if (size == PlotPanel::Size::large)
        return 450;
    return size == PlotPanel::Size::flat ? 340 : 345;
}

std::string stroke(const char* colour, double width, const char* dashes = "")
{
    std::string style =
        std::string("stroke=\"") + colour + "\" stroke-width=\"" + svg_number(width) + "\"";
    if (*dashes != '\0')
        style += std::string(" stroke-dasharray=\"") + dashes + "\"";
    return style;
}

struct Tick {
    double value = 0;
    RichText label; // a minor tick has none
};

std::string with_minus_sign(std::string text)
{
    return !text.empty() && text.front() == '-' ? "\u2212" + text.substr(1) : text;
}

RichText number_label(double value, int decimals)
{
    return plain_text(with_minus_sign(plain_number(value, decimals)));
}

RichText power_of_ten(int exponent)
{
    return plain_text("10") + superscript_text(with_minus_sign(std::to_string(exponent)));
}

// 1, 2 or 5 times a power of ten, so that `range` has at most about `count` of them.
double round_step(double range, int count)
{
    const double rough = range / count;
    const double power = std::pow(10.0, std::floor(std::log10(rough)));
    for (const double factor : {1.0, 2.0, 5.0}) {
        if (factor * power >= rough * 0.85)
            return factor * power;
    }
    return 10 * power;
}

int decimals_of_step(double step)
{
    return std::max(0, static_cast<int>(-std::floor(std::log10(step * 1.001))));
}

// The power of ten to take out of the labels so that they have few digits; 0 mostly.
int common_exponent(const PlotAxis& axis)
{
    const double largest = std::max(std::abs(axis.low), std::abs(axis.high));
    if (axis.scale != PlotAxis::Scale::linear || (largest >= 0.02 && largest < 20000))
        return 0;
    return static_cast<int>(std::floor(std::log10(largest) + 1e-9));
}

std::vector<Tick> linear_ticks(const PlotAxis& axis, int count)
{
    const double unit = std::pow(10.0, common_exponent(axis));
    const double low = axis.low / unit;
    const double high = axis.high / unit;
    const double step = round_step(high - low, count);
    std::vector<Tick> ticks;
    const double slack = step * 1e-6;
    for (double i = std::ceil((low - slack) / step); i * step <= high + slack; i += 1) {
        const double value = i == 0 ? 0 : i * step; // no negative zero
        ticks.push_back({value * unit, number_label(value, decimals_of_step(step))});
    }
    return ticks;
}

// Powers of ten and, between them, minor ticks; with few powers in sight these have labels, too.
std::vector<Tick> logarithmic_ticks(const PlotAxis& axis)
{
    const int first = static_cast<int>(std::floor(std::log10(axis.low) - 1e-9));
    const int last = static_cast<int>(std::ceil(std::log10(axis.high) + 1e-9));
    const double decades = std::log10(axis.high / axis.low);
    const int every = std::max(1, static_cast<int>(std::ceil(decades / 7)));
    std::vector<Tick> ticks;
    for (int exponent = first; exponent <= last; ++exponent) {
        for (int digit = 1; digit <= 9; ++digit) {
            const double value = digit * std::pow(10.0, exponent);
            if (value < axis.low * (1 - 1e-9) || value > axis.high * (1 + 1e-9))
                continue;
            RichText label;
            const bool is_round = digit == 1 || digit == 2 || digit == 5;
            if (decades < 1.5 && is_round)
                label = std::abs(exponent) < 4 ? number_label(value, std::max(0, -exponent))
                                               : plain_text(std::to_string(digit) + " \u00D7 ") +
                                                     power_of_ten(exponent);
            else if (decades >= 1.5 && digit == 1 && exponent % every == 0)
                label = power_of_ten(exponent);
            if (!label.empty() || decades < 8)
                ticks.push_back({value, label});
        }
    }
    return ticks;
}

// Round resolutions as close as the labels allow, the roundest first.
std::vector<Tick> resolution_ticks(const PlotAxis& axis, double pixels)
{
    constexpr double closest = 44; // pixels
    constexpr double candidates[] = {1.0, 2.0, 3.0, 4.0, 5.0, 10,  0.5, 1.5, 2.5, 3.5, 6.0, 8.0,
                                     20,  0.8, 1.2, 1.8, 2.2, 2.8, 7.0, 15,  50,  0.6, 0.7, 0.9,
                                     1.1, 1.3, 1.4, 1.6, 1.7, 1.9, 2.1, 2.3, 2.4, 2.6, 3.2, 4.5};
    std::vector<Tick> ticks;
    std::vector<double> taken;
    for (const double d : candidates) {
        const double value = 1 / (d * d);
        const double at = (value - axis.low) / (axis.high - axis.low) * pixels;
        const bool is_free = std::none_of(taken.begin(), taken.end(), [&](double other) {
            return std::abs(at - other) < closest;
        });
        if (at < -0.01 || at > pixels + 0.01 || !is_free)
            continue;
        ticks.push_back({value, number_label(d, d < 9.5 ? 1 : 0)});
        taken.push_back(at);
    }
    return ticks;
}

std::vector<Tick> ticks_of(const PlotAxis& axis, double pixels, double pixels_of_tick)
{
    if (axis.scale == PlotAxis::Scale::logarithmic)
        return logarithmic_ticks(axis);
    if (axis.scale == PlotAxis::Scale::resolution)
        return resolution_ticks(axis, pixels);
    return linear_ticks(axis, std::max(2, static_cast<int>(pixels / pixels_of_tick)));
}

RichText label_of(const PlotAxis& axis)
{
    const int exponent = common_exponent(axis);
    return exponent == 0 ? axis.label : power_of_ten(-exponent) + plain_text(" ") + axis.label;
}

// From 0 at the low end to 1 at the high end.
double position_on(const PlotAxis& axis, double value)
{
    if (axis.scale == PlotAxis::Scale::logarithmic)
        return std::log(value / axis.low) / std::log(axis.high / axis.low);
    return (value - axis.low) / (axis.high - axis.low);
}

// The place of a panel in the picture: the inside of its frame.
struct Frame {
    double left = 0;
    double top = 0;
    double width = 0;
    double height = 0;
    double right() const { return left + width; }
    double bottom() const { return top + height; }
    bool contains(Point p) const
    {
        return p.x >= left - 0.01 && p.x <= right() + 0.01 && p.y >= top - 0.01 &&
               p.y <= bottom() + 0.01;
    }
};

// The part of a line inside the frame (after Liang and Barsky, 1984); nothing if it is outside.
std::optional<std::pair<Point, Point>> clipped(Point from, Point to, const Frame& frame)
{
    const double dx = to.x - from.x;
    const double dy = to.y - from.y;
    const double directions[] = {-dx, dx, -dy, dy};
    const double distances[] = {from.x - frame.left, frame.right() - from.x, from.y - frame.top,
                                frame.bottom() - from.y};
    double start = 0;
    double end = 1;
    for (int i = 0; i < 4; ++i) {
        if (directions[i] == 0) {
            if (distances[i] < 0)
                return std::nullopt;
            continue;
        }
        const double t = distances[i] / directions[i];
        if (directions[i] < 0)
            start = std::max(start, t);
        else
            end = std::min(end, t);
    }
    if (start > end)
        return std::nullopt;
    return std::pair(Point{from.x + start * dx, from.y + start * dy},
                     Point{from.x + end * dx, from.y + end * dy});
}

class PanelDrawing
{
public:
    PanelDrawing(SvgWriter& svg, const PlotPanel& panel, const Frame& frame)
        : m_svg(svg),
          m_panel(panel),
          m_frame(frame)
    {
    }

    void draw(const std::string& letter)
    {
        for (const PlotSeries& series : m_panel.series)
            draw_series(series);
        m_svg.rectangle({m_frame.left, m_frame.top}, m_frame.width, m_frame.height,
                        "fill=\"none\" " + stroke("#000000", 1.5));
        draw_x_axis();
        draw_y_axis();
        draw_legend();
        if (!letter.empty())
            m_svg.rich_text({m_frame.left - left_margin + 6, m_frame.top + 4}, plain_text(letter),
                            font_size, TextAnchor::start);
    }

private:
    // Where a point is drawn; nothing if it has no place on the axes.
    std::optional<Point> at(double x, double y) const
    {
        const Point p{m_frame.left + position_on(m_panel.x, x) * m_frame.width,
                      m_frame.bottom() - position_on(m_panel.y, y) * m_frame.height};
        return std::isfinite(p.x) && std::isfinite(p.y) ? std::optional(p) : std::nullopt;
    }

    void draw_series(const PlotSeries& series)
    {
        using Kind = PlotSeries::Kind;
        const bool is_line = series.kind != Kind::dots && series.kind != Kind::circles;
        draw_error_bars(series);
        if (is_line)
            draw_line(series);
        if (series.kind != Kind::line && series.kind != Kind::dashed_line)
            draw_dots(series);
    }

    // Bars in the same column of pixels are drawn as one.
    void draw_error_bars(const PlotSeries& series)
    {
        std::map<long, std::pair<Point, Point>> bars;
        for (const PlotPoint& point : series.points) {
            if (!(point.error > 0))
                continue;
            const auto high = at(point.x, point.y + point.error);
            auto low = at(point.x, point.y - point.error);
            if (!low && m_panel.y.scale == PlotAxis::Scale::logarithmic && high)
                low = Point{high->x, m_frame.bottom() + 1};
            const auto bar = high && low ? clipped(*high, *low, m_frame) : std::nullopt;
            if (!bar)
                continue;
            const auto [known, is_new] = bars.emplace(std::lround(bar->first.x), *bar);
            if (is_new)
                continue;
            known->second.first.y = std::min(known->second.first.y, bar->first.y);
            known->second.second.y = std::max(known->second.second.y, bar->second.y);
        }
        std::vector<std::pair<Point, Point>> lines;
        for (const auto& [column, bar] : bars)
            lines.push_back(bar);
        if (!lines.empty())
            m_svg.segments(lines, stroke(series.colour == 0 ? "#a8a8a8" : "#c0c0c0", 1));
    }

    void draw_dots(const PlotSeries& series)
    {
        constexpr double cell = 1.5; // pixels; of points in the same cell one is drawn
        const bool is_open = series.kind == PlotSeries::Kind::circles;
        const bool is_marker = series.kind == PlotSeries::Kind::line_with_dots;
        const char* colour = look_of(series.colour).colour;
        m_svg.begin_style(is_open ? "fill=\"#ffffff\" " + stroke(colour, 1.2)
                                  : std::string("fill=\"") + colour + "\"");
        std::set<std::pair<long, long>> taken;
        for (const PlotPoint& point : series.points) {
            const auto p = at(point.x, point.y);
            if (!p || !m_frame.contains(*p) ||
                !taken.emplace(std::lround(p->x / cell), std::lround(p->y / cell)).second)
                continue;
            m_svg.circle(*p, is_marker ? 4 : (is_open ? 2.8 : 2.2), "");
        }
        m_svg.end_group();
    }

    void draw_line(const PlotSeries& series)
    {
        constexpr double shortest = 0.7; // pixels
        std::vector<Point> run;
        const auto finish_run = [&] {
            if (run.size() > 1)
                m_svg.polyline(run,
                               "fill=\"none\" stroke-linejoin=\"round\" " + line_style(series));
            run.clear();
        };
        std::optional<Point> last;
        for (std::size_t i = 0; i < series.points.size(); ++i) {
            const auto p = at(series.points[i].x, series.points[i].y);
            const bool is_end = i + 1 == series.points.size();
            if (p && last && !is_end && std::hypot(p->x - last->x, p->y - last->y) < shortest)
                continue;
            const auto part = p && last ? clipped(*last, *p, m_frame) : std::nullopt;
            if (part) {
                const bool continues =
                    !run.empty() && run.back().x == part->first.x && run.back().y == part->first.y;
                if (!continues) {
                    finish_run();
                    run.push_back(part->first);
                }
                run.push_back(part->second);
            }
            last = p;
        }
        finish_run();
    }

    static std::string line_style(const PlotSeries& series)
    {
        const Look& look = look_of(series.colour);
        return series.kind == PlotSeries::Kind::dashed_line ? stroke(look.colour, 1.6, "6 5")
                                                            : stroke(look.colour, 2.2, look.dashes);
    }

    void draw_x_axis()
    {
        std::vector<std::pair<Point, Point>> marks;
        for (const Tick& tick : ticks_of(m_panel.x, m_frame.width, 56)) {
            const double x = m_frame.left + position_on(m_panel.x, tick.value) * m_frame.width;
            const double length = tick.label.empty() ? minor_tick_length : tick_length;
            marks.push_back({{x, m_frame.bottom()}, {x, m_frame.bottom() - length}});
            marks.push_back({{x, m_frame.top}, {x, m_frame.top + length}});
            if (!tick.label.empty())
                m_svg.rich_text({x, m_frame.bottom() + 22}, tick.label, font_size,
                                TextAnchor::middle);
        }
        m_svg.segments(marks, stroke("#000000", 1.2));
        m_svg.rich_text({m_frame.left + m_frame.width / 2, m_frame.bottom() + 50},
                        label_of(m_panel.x), font_size, TextAnchor::middle);
    }

    void draw_y_axis()
    {
        std::vector<std::pair<Point, Point>> marks;
        for (const Tick& tick : ticks_of(m_panel.y, m_frame.height, 48)) {
            const double y = m_frame.bottom() - position_on(m_panel.y, tick.value) * m_frame.height;
            const double length = tick.label.empty() ? minor_tick_length : tick_length;
            marks.push_back({{m_frame.left, y}, {m_frame.left + length, y}});
            marks.push_back({{m_frame.right(), y}, {m_frame.right() - length, y}});
            if (!tick.label.empty())
                m_svg.rich_text({m_frame.left - 7, y + 0.35 * font_size}, tick.label, font_size,
                                TextAnchor::end);
        }
        m_svg.segments(marks, stroke("#000000", 1.2));
        m_svg.rich_text({m_frame.left - left_margin + 22, m_frame.top + m_frame.height / 2},
                        label_of(m_panel.y), font_size, TextAnchor::middle, -90);
    }

    void draw_legend()
    {
        if (m_panel.legend == PlotPanel::LegendPlace::above)
            draw_legend_above();
        else
            draw_legend_inside();
    }

    // A line each, its sample to the right.
    void draw_legend_inside()
    {
        const double right = m_frame.right() - 14;
        double y = m_frame.top + 26;
        for (const PlotSeries& series : m_panel.series) {
            if (series.name.empty())
                continue;
            draw_sample(series, right - legend_sample, y - 0.32 * legend_font_size);
            m_svg.rich_text({right - legend_sample - 8, y}, series.name, legend_font_size,
                            TextAnchor::end);
            y += legend_line;
        }
        for (const RichText& remark : m_panel.remarks) {
            m_svg.rich_text({right, y}, remark, legend_font_size, TextAnchor::end);
            y += legend_line;
        }
    }

    // Side by side over the frame.
    void draw_legend_above()
    {
        constexpr double width_of_entry = 120;
        double x = m_frame.left + 8;
        for (const PlotSeries& series : m_panel.series) {
            if (series.name.empty())
                continue;
            const double y = m_frame.top - 10;
            draw_sample(series, x, y - 0.32 * legend_font_size);
            m_svg.rich_text({x + legend_sample + 8, y}, series.name, legend_font_size,
                            TextAnchor::start);
            x += width_of_entry;
        }
    }

    void draw_sample(const PlotSeries& series, double x, double y)
    {
        using Kind = PlotSeries::Kind;
        const char* colour = look_of(series.colour).colour;
        const Point middle{x + legend_sample / 2, y};
        if (series.kind != Kind::dots && series.kind != Kind::circles)
            m_svg.line({x, y}, {x + legend_sample, y}, line_style(series));
        if (series.kind == Kind::circles)
            m_svg.circle(middle, 3, "fill=\"#ffffff\" " + stroke(colour, 1.2));
        else if (series.kind != Kind::line && series.kind != Kind::dashed_line)
            m_svg.circle(middle, series.kind == Kind::dots ? 3 : 4,
                         std::string("fill=\"") + colour + "\"");
    }

    SvgWriter& m_svg;
    const PlotPanel& m_panel;
    Frame m_frame;
};

// Where the panels stand; the height of the picture is where the last ends.
std::vector<Frame> place_panels(const std::vector<PlotPanel>& panels, double& picture_height)
{
    std::vector<Frame> frames;
    double top = 0;
    for (std::size_t i = 0; i < panels.size(); ++i) {
        const auto is_half = [&](std::size_t panel) {
            return panel < panels.size() && panels[panel].size == PlotPanel::Size::half;
        };
        const bool shares_row = is_half(i) && is_half(i + 1);
        // One that finds no other to share the row with takes all of it.
        const double height =
            height_of(is_half(i) && !shares_row ? PlotPanel::Size::large : panels[i].size);
        const double width = shares_row ? picture_width / 2 : picture_width;
        for (int column = 0; column < (shares_row ? 2 : 1); ++column)
            frames.push_back({column * width + left_margin, top + top_margin,
                              width - left_margin - right_margin,
                              height - top_margin - bottom_margin});
        i += shares_row ? 1 : 0;
        top += height;
    }
    picture_height = top;
    return frames;
}

} // namespace

RichText plain_text(std::string text)
{
    return {{TextRun::Style::plain, std::move(text)}};
}

RichText italic_text(std::string text)
{
    return {{TextRun::Style::italic, std::move(text)}};
}

RichText superscript_text(std::string text)
{
    return {{TextRun::Style::superscript, std::move(text)}};
}

RichText subscript_text(std::string text)
{
    return {{TextRun::Style::subscript, std::move(text)}};
}

RichText operator+(RichText left, const RichText& right)
{
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

std::string draw_plot(const std::vector<PlotPanel>& panels, std::string_view title,
                      std::string_view description)
{
    double height = 0;
    const std::vector<Frame> frames = place_panels(panels, height);
    SvgWriter svg(picture_width, height, title, description);
    for (std::size_t i = 0; i < panels.size(); ++i) {
        const std::string letter =
            panels.size() > 1 ? std::string("(") + static_cast<char>('a' + i) + ")" : "";
        svg.begin_group("panel", letter);
        PanelDrawing(svg, panels[i], frames[i]).draw(letter);
        svg.end_group();
    }
    return svg.finish();
}

PlotAxis axis_for(PlotAxis::Scale scale, RichText label, const std::vector<double>& values)
{
    PlotAxis axis{std::move(label), scale, 0, 0};
    bool is_first = true;
    for (const double value : values) {
        if (!std::isfinite(value) || (scale == PlotAxis::Scale::logarithmic && value <= 0))
            continue;
        axis.low = is_first ? value : std::min(axis.low, value);
        axis.high = is_first ? value : std::max(axis.high, value);
        is_first = false;
    }
    if (scale == PlotAxis::Scale::logarithmic) {
        const double room = std::pow(axis.high / axis.low, 0.04) * 1.1;
        axis.low /= room;
        axis.high *= room;
        return axis;
    }
    constexpr double finest = 1e-9; // relative; what differs by less is the same
    if (!(axis.high - axis.low > finest * std::max(std::abs(axis.low), std::abs(axis.high)))) {
        const double half = axis.low == 0 ? 1 : std::abs(axis.low) * 0.1;
        axis.low -= half;
        axis.high += half;
    }
    constexpr double room = 0.04;
    const double range = axis.high - axis.low;
    if (axis.low != 0)
        axis.low -= room * range;
    if (axis.high != 0)
        axis.high += room * range;
    return axis;
}

} // namespace quillet
