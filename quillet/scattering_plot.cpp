#include "quillet/scattering_plot.h"

#include "quillet/cif_text.h"
#include "quillet/number.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <set>

namespace quillet
{

namespace
{

using Kind = PlotSeries::Kind;
using Scale = PlotAxis::Scale;

constexpr double largest_number = 1e30; // what is beyond is a mistake, and spoils any axis
constexpr double nothing = std::numeric_limits<double>::quiet_NaN();

double number_in(const Column* column, std::size_t row)
{
    const auto number = column && row < column->values.size()
                            ? parse_number(column->values[row].text)
                            : std::nullopt;
    const double value = number ? number->value() : nothing;
    return std::abs(value) < largest_number ? value : nothing;
}

// The rows of columns that run together, as points. Rows without x or y are left out and, if they
// hold something else than a number, reported.
std::vector<PlotPoint> points_in(const Block& block, const std::vector<std::size_t>& rows,
                                 std::string_view x_tag, std::string_view y_tag,
                                 std::string_view error_tag, Notes& notes)
{
    const Column* x = block.find(x_tag);
    const Column* y = block.find(y_tag);
    const Column* error = block.find(error_tag);
    std::vector<PlotPoint> points;
    for (const std::size_t row : rows) {
        const PlotPoint point{number_in(x, row), number_in(y, row), number_in(error, row)};
        if (std::isfinite(point.x) && std::isfinite(point.y)) {
            points.push_back(point);
            continue;
        }
        for (const Column* column : {x, y}) {
            if (column && row < column->values.size() &&
                state_of(column->values[row].text) == State::given &&
                !std::isfinite(number_in(column, row)))
                notes.add(column->values[row].where, "\u201c" + column->values[row].text +
                                                         "\u201d of " + column->tag +
                                                         " is no number that can be drawn.");
        }
    }
    return points;
}

// Of the curve, "" if the file does not tell.
struct PlotUnits {
    std::string momentum; // "\u00C5"
    double per_nm = 0;    // reciprocal nanometres in one unit of momentum transfer, or 0
};

PlotUnits plot_units_of(const Measurement& m)
{
    Notes dropped; // the article tells
    const ScatteringUnits units =
        units_of_item(of_scan(m, {"_sas_scan.unit"}), m.block->where(), dropped);
    if (units.momentum_per_nm == 0)
        return {};
    return {units.momentum_per_nm == 1 ? "nm" : "\u00C5", units.momentum_per_nm};
}

RichText in_unit(RichText quantity, const PlotUnits& units, const char* power)
{
    if (units.momentum.empty())
        return quantity + plain_text(" (unit not stated)");
    quantity = quantity + plain_text(" (" + units.momentum);
    if (*power != '\0')
        quantity = quantity + superscript_text(power);
    return quantity + plain_text(")");
}

RichText function_of(const char* function, const char* variable)
{
    return italic_text(function) + plain_text("(") + italic_text(variable) + plain_text(")");
}

struct Curve {
    std::vector<PlotPoint> points; // in the order of the file
    PlotUnits units;
};

Curve measured_curve(const Measurement& m)
{
    return {points_in(*m.block, rows_of_curve(m), "_sas_scan_intensity.momentum_transfer",
                      "_sas_scan_intensity.intensity", "_sas_scan_intensity.intensity_su_counting",
                      *m.notes),
            plot_units_of(m)};
}

// Pairs of points of two curves that have the same momentum transfer once that of the second is
// multiplied by `factor`.
std::vector<std::pair<PlotPoint, PlotPoint>> common_points(const std::vector<PlotPoint>& curve,
                                                           const std::vector<PlotPoint>& other,
                                                           double factor)
{
    constexpr double tolerance = 1e-3; // relative: files round
    std::vector<PlotPoint> sorted = curve;
    const auto by_x = [](const PlotPoint& a, const PlotPoint& b) { return a.x < b.x; };
    std::stable_sort(sorted.begin(), sorted.end(), by_x);
    std::vector<std::pair<PlotPoint, PlotPoint>> pairs;
    for (const PlotPoint& point : other) {
        const double x = point.x * factor;
        const auto found = std::lower_bound(sorted.begin(), sorted.end(),
                                            PlotPoint{x * (1 - tolerance), 0, 0}, by_x);
        if (x > 0 && found != sorted.end() && found->x <= x * (1 + tolerance))
            pairs.emplace_back(*found, point);
    }
    return pairs;
}

// What to multiply the momentum transfers of a curve with to have them in the unit of the measured
// one: told by the points that they share. Nothing if that is not clear.
std::optional<double> factor_by_points(const std::vector<PlotPoint>& measured,
                                       const std::vector<PlotPoint>& other)
{
    constexpr double enough = 0.5;
    std::optional<double> result;
    for (const double factor : {1.0, 10.0, 0.1}) {
        const auto pairs = common_points(measured, other, factor);
        const auto positive =
            std::count_if(other.begin(), other.end(), [](const PlotPoint& p) { return p.x > 0; });
        const auto [low, high] =
            std::minmax_element(other.begin(), other.end(),
                                [](const PlotPoint& a, const PlotPoint& b) { return a.x < b.x; });
        const auto covered = std::count_if(
            measured.begin(), measured.end(), [&, low = low, high = high](const PlotPoint& p) {
                return p.x >= low->x * factor * 0.999 && p.x <= high->x * factor * 1.001;
            });
        const bool fits =
            positive > 1 &&
            static_cast<double>(pairs.size()) > enough * static_cast<double>(positive) &&
            static_cast<double>(covered) > enough / 2 * static_cast<double>(measured.size());
        if (fits && result)
            return std::nullopt;
        if (fits)
            result = factor;
    }
    return result;
}

// What to multiply the intensities of a fit with to have them on the scale of the measured curve:
// programs write the curve that they fitted beside the fit, on a scale of their own.
double intensity_scale(const std::vector<PlotPoint>& measured,
                       const std::vector<PlotPoint>& fitted_data, double factor)
{
    std::vector<double> ratios;
    for (const auto& [point, other] : common_points(measured, fitted_data, factor)) {
        if (point.y > 0 && other.y > 0)
            ratios.push_back(point.y / other.y);
    }
    if (ratios.size() < 3)
        return 1;
    std::sort(ratios.begin(), ratios.end());
    const double median = ratios[ratios.size() / 2];
    const double spread = ratios[ratios.size() * 3 / 4] / ratios[ratios.size() / 4];
    const bool is_same_data = spread < 1.05;
    const bool is_same_scale = std::abs(median - 1) < 0.02;
    return is_same_data && !is_same_scale ? median : 1;
}

// "Fit 41 (DAMMIF)"
RichText name_of_fit(const ModelFit& fit, const std::vector<ModelFit>& fits)
{
    const Item id = fit.fit_item({"_sas_model_fitting_details.id"});
    std::string programs;
    for (const ModelFit& other : fits) {
        const Item software = other.model_item({"_sas_model.software"});
        const bool is_of_fit = other.fit_block == fit.fit_block && other.fit == fit.fit;
        if (is_of_fit && software.is_given())
            programs += (programs.empty() ? "" : ", ") + text_to_plain(software.text);
    }
    RichText name = plain_text("Fit" + (id.is_given() ? " " + text_to_plain(id.text) : "") +
                               (programs.empty() ? "" : " (" + programs + ")"));
    const auto chi = parse_number(fit.fit_item({"_sas_model_fitting_details.chi_square"}).text);
    if (!chi)
        return name;
    return name + plain_text(", ") + italic_text("\u03C7") + superscript_text("2") +
           plain_text(" " + text_to_plain(format_number(*chi, rounded(2)).str()));
}

void leave_out(const ModelFit& fit, const std::string& reason)
{
    fit.notes->add(fit.fit_block->where(),
                   "The fit of data_" + fit.fit_block->name() + " is not drawn: " + reason + ".");
}

// The fitted curve on the axes of the measured one; no points if that is not possible.
std::vector<PlotPoint> fitted_curve(const Curve& measured, const ModelFit& fit)
{
    constexpr std::string_view q = "_sas_model_fitting.momentum_transfer";
    const auto rows = rows_of_fit(fit);
    const Block& block = *fit.fit_block;
    auto points = points_in(block, rows, q, "_sas_model_fitting.fit", {}, *fit.notes);
    if (points.size() < 2) {
        leave_out(fit, "it has no curve (_sas_model_fitting.fit)");
        return {};
    }
    const auto stated = units_from_text(fit.fit_item({"_sas_model_fitting_details.unit"}).text);
    const auto factor = stated && measured.units.per_nm > 0
                            ? stated->momentum_per_nm / measured.units.per_nm
                            : factor_by_points(measured.points, points);
    if (!factor) {
        leave_out(fit, "its unit is not stated (_sas_model_fitting_details.unit), and its points "
                       "are not those of the measured curve");
        return {};
    }
    Notes dropped; // as for the fit
    const auto data = points_in(block, rows, q, "_sas_model_fitting.intensity", {}, dropped);
    const double scale = intensity_scale(measured.points, data, *factor);
    for (PlotPoint& point : points) {
        point.x *= *factor;
        point.y *= scale;
    }
    return points;
}

void add_fits(ScatteringPlot& plot, PlotPanel& panel, const Curve& measured, std::size_t index,
              const std::vector<ModelFit>& fits)
{
    std::set<std::pair<const Block*, std::size_t>> known;
    for (const ModelFit& fit : fits) {
        if (fit.measurement != index || !fit.fit_block ||
            !known.emplace(fit.fit_block, fit.fit).second)
            continue;
        auto points = fitted_curve(measured, fit);
        if (points.empty())
            continue;
        plot.has_fits = true;
        const int colour = static_cast<int>(panel.series.size());
        panel.series.push_back({Kind::line, colour, name_of_fit(fit, fits), std::move(points)});
    }
}

// As factor_by_points(): the transform of p(r) ends where the range of its analysis does, which is
// in the unit of the curve.
std::optional<double> factor_of_transform(const Measurement& m, const Curve& measured,
                                          const std::vector<PlotPoint>& transform)
{
    const auto end = parse_number(of_distance_distribution(m, {"_sas_p_of_R_details.qmax"}).text);
    double last = 0;
    for (const PlotPoint& point : transform)
        last = std::max(last, point.x);
    for (const double factor : {1.0, 10.0, 0.1}) {
        if (end && std::abs(last * factor - end->value()) < 0.02 * end->value())
            return factor;
    }
    return factor_by_points(measured.points, transform);
}

// The curve that the distance distribution gives.
void add_transform(ScatteringPlot& plot, PlotPanel& panel, const Measurement& m,
                   const Curve& measured)
{
    constexpr std::string_view q = "_sas_p_of_R_extrapolated_intensity.momentum_transfer";
    const Item id = of_distance_distribution(m, {"_sas_p_of_R_details.id"});
    auto points = points_in(
        *m.block, rows_of_id(*m.block, q, "_sas_p_of_R_extrapolated_intensity.id", id.text), q,
        "_sas_p_of_R_extrapolated_intensity.intensity_reg", {}, *m.notes);
    const auto factor = points.size() > 1 ? factor_of_transform(m, measured, points) : std::nullopt;
    if (!factor)
        return;
    for (PlotPoint& point : points)
        point.x *= *factor;
    plot.has_transform = true;
    const int colour = static_cast<int>(panel.series.size());
    panel.series.push_back({Kind::line, colour, plain_text("Transform of ") + function_of("p", "r"),
                            std::move(points)});
}

// Intensities that scatter about zero have no lower end on a logarithmic axis: the lowest are left
// outside.
double lowest_intensity(const std::vector<PlotPoint>& points)
{
    constexpr std::size_t left_outside = 50; // one of so many
    std::vector<double> positive;
    for (const PlotPoint& point : points) {
        if (point.y > 0)
            positive.push_back(point.y);
    }
    std::sort(positive.begin(), positive.end());
    return positive[positive.size() / left_outside];
}

void report_intensities_without_logarithm(const Measurement& m, const Curve& curve)
{
    const auto count = std::count_if(curve.points.begin(), curve.points.end(),
                                     [](const PlotPoint& p) { return p.y <= 0; });
    if (count > 0)
        m.notes->add(m.block->find("_sas_scan_intensity.intensity")->where,
                     std::to_string(count) +
                         " points of the curve are not drawn, for they have no positive intensity.",
                     Note::Severity::remark);
}

PlotPanel intensity_panel(ScatteringPlot& plot, const Measurement& m, const Curve& curve,
                          std::size_t index, const std::vector<ModelFit>& fits)
{
    PlotPanel panel;
    panel.series.push_back({Kind::dots, 0, plain_text("Experiment"), curve.points});
    add_fits(plot, panel, curve, index, fits);
    add_transform(plot, panel, m, curve);
    std::vector<double> momenta;
    std::vector<double> intensities = {lowest_intensity(curve.points)};
    for (const PlotPoint& point : curve.points) {
        momenta.push_back(point.x);
        intensities.push_back(std::max(point.y, intensities.front()));
    }
    momenta.push_back(0);
    panel.x = axis_for(Scale::linear, in_unit(italic_text("q"), curve.units, "\u22121"), momenta);
    panel.y = axis_for(Scale::logarithmic, function_of("I", "q") + plain_text(" (as deposited)"),
                       intensities);
    return panel;
}

// The text of a number with its error as a table would print it.
std::string number_with_error(const Item& value, const Item& error)
{
    const auto with_error = format_with_error(value.text, error.text);
    return text_to_plain(
        (with_error ? *with_error : format_number_text(value.text, trimmed_zeros)).str());
}

struct GuinierFit {
    std::size_t first = 0; // points of the curve
    std::size_t last = 0;
    std::optional<double> rg; // in the unit of the curve
    std::optional<double> i0;
};

std::optional<GuinierFit> guinier_fit(const Measurement& m, const Curve& curve)
{
    const auto first = parse_integer(of_result(m, {"_sas_result.Guinier_point_min"}).text);
    const auto last = parse_integer(of_result(m, {"_sas_result.Guinier_point_max"}).text);
    const int count = static_cast<int>(rows_of_curve(m).size());
    // Points are counted in the file, so none may be left out.
    if (!first || !last || *first < 1 || *last <= *first || *last > count ||
        curve.points.size() != static_cast<std::size_t>(count))
        return std::nullopt;
    GuinierFit fit;
    fit.first = static_cast<std::size_t>(*first) - 1;
    fit.last = static_cast<std::size_t>(*last) - 1;
    const auto rg = parse_number(
        of_result(m, {"_sas_result.Rg_from_Guinier", "_sas_result.reciprocal_space_Rg"}).text);
    const auto i0 = parse_number(
        of_result(m, {"_sas_result.I0_from_Guinier", "_sas_result.reciprocal_space_I0"}).text);
    if (rg && rg->value() > 0 && curve.units.per_nm > 0)
        fit.rg = rg->value() * curve.units.per_nm;
    if (i0 && i0->value() > 0)
        fit.i0 = i0->value();
    return fit;
}

PlotPoint guinier_point(const PlotPoint& p)
{
    const double relative = p.error > 0 && p.error < p.y ? p.error / p.y : 0;
    return {p.x * p.x, std::log(p.y), relative};
}

PlotSeries guinier_line(const GuinierFit& fit, double from, double to, Kind kind)
{
    const auto at = [&](double x) { return std::log(*fit.i0) - x * *fit.rg * *fit.rg / 3; };
    return {kind, 1, {}, {{from, at(from), 0}, {to, at(to), 0}}};
}

void add_guinier_remarks(PlotPanel& panel, const Measurement& m, const GuinierFit& fit,
                         const Curve& curve)
{
    const Item rg =
        of_result(m, {"_sas_result.Rg_from_Guinier", "_sas_result.reciprocal_space_Rg"});
    const Item error = of_result(m, {"_sas_result.Rg_from_Guinier_error"});
    if (!fit.rg)
        return;
    panel.remarks.push_back(italic_text("R") + subscript_text("g") +
                            plain_text(" = " + number_with_error(rg, error) + " nm"));
    const auto product = [&](std::size_t point) {
        return format_computed(curve.points[point].x * *fit.rg, 2).str();
    };
    panel.remarks.push_back(italic_text("qR") + subscript_text("g") +
                            plain_text(" = " + product(fit.first) + "\u2013" + product(fit.last)));
}

// ln I against q^2 over the range of the fit and half as much beyond.
std::optional<PlotPanel> guinier_panel(const Measurement& m, const Curve& curve)
{
    const auto fit = guinier_fit(m, curve);
    if (!fit)
        return std::nullopt;
    const double end = std::pow(curve.points[fit->last].x, 2);
    const double start = std::pow(curve.points[fit->first].x, 2);
    PlotSeries used{Kind::dots, 0, {}, {}};
    PlotSeries others{Kind::circles, 0, {}, {}};
    std::vector<double> logarithms;
    for (std::size_t i = 0; i < curve.points.size(); ++i) {
        const PlotPoint& point = curve.points[i];
        if (!(point.y > 0) || point.x * point.x > 1.4 * end)
            continue;
        PlotSeries& series = i >= fit->first && i <= fit->last ? used : others;
        series.points.push_back(guinier_point(point));
        logarithms.push_back(series.points.back().y);
    }
    if (used.points.size() < 2 || !(end > start))
        return std::nullopt;
    PlotPanel panel;
    panel.size = PlotPanel::Size::half;
    panel.series = {std::move(others), std::move(used)};
    if (fit->rg && fit->i0) {
        const auto [low, high] = std::minmax_element(logarithms.begin(), logarithms.end());
        const double intercept = std::log(*fit->i0);
        const bool is_on_scale =
            intercept > *low - 1 && intercept < *high + 1; // else I(0) is in other units
        if (is_on_scale) {
            panel.series.push_back(guinier_line(*fit, 0, start, Kind::dashed_line));
            panel.series.push_back(guinier_line(*fit, start, end, Kind::line));
            logarithms.push_back(intercept);
        } else {
            m.notes->add(of_result(m, {"_sas_result.I0_from_Guinier"}).where(),
                         "I(0) from the Guinier analysis is not on the scale of the curve; its "
                         "line is not drawn.");
        }
    }
    add_guinier_remarks(panel, m, *fit, curve);
    const RichText square = italic_text("q") + superscript_text("2");
    panel.x = axis_for(Scale::linear, in_unit(square, curve.units, "\u22122"), {0, 1.4 * end});
    panel.y = axis_for(Scale::linear, plain_text("ln ") + function_of("I", "q"), logarithms);
    return panel;
}

std::optional<PlotPanel> distribution_panel(const Measurement& m, const Curve& curve)
{
    const Item id = of_distance_distribution(m, {"_sas_p_of_R_details.id"});
    auto points =
        points_in(*m.block, rows_of_id(*m.block, "_sas_p_of_R.r", "_sas_p_of_R.id", id.text),
                  "_sas_p_of_R.r", "_sas_p_of_R.P", "_sas_p_of_R.P_error", *m.notes);
    constexpr std::size_t fewest = 3;
    if (points.size() < fewest)
        return std::nullopt;
    std::vector<double> distances = {0};
    std::vector<double> heights = {0};
    for (const PlotPoint& point : points) {
        distances.push_back(point.x);
        heights.push_back(point.y + (point.error > 0 ? point.error : 0));
        heights.push_back(point.y);
    }
    PlotPanel panel;
    panel.size = PlotPanel::Size::half;
    panel.x = axis_for(Scale::linear, in_unit(italic_text("r"), curve.units, ""), distances);
    panel.y = axis_for(Scale::linear, function_of("p", "r"), heights);
    panel.series.push_back({Kind::line, 0, {}, std::move(points)});
    return panel;
}

} // namespace

ScatteringPlot plot_of(const Measurement& m, std::size_t index, const std::vector<ModelFit>& fits)
{
    ScatteringPlot plot;
    const Curve curve = measured_curve(m);
    const auto positive = std::count_if(curve.points.begin(), curve.points.end(),
                                        [](const PlotPoint& p) { return p.y > 0; });
    if (positive < 2)
        return plot;
    report_intensities_without_logarithm(m, curve);
    plot.has_errors = std::any_of(curve.points.begin(), curve.points.end(),
                                  [](const PlotPoint& p) { return p.error > 0; });
    plot.panels.push_back(intensity_panel(plot, m, curve, index, fits));
    if (auto panel = guinier_panel(m, curve)) {
        plot.panels.push_back(std::move(*panel));
        plot.has_guinier = true;
    }
    if (auto panel = distribution_panel(m, curve)) {
        plot.panels.push_back(std::move(*panel));
        plot.has_distribution = true;
    }
    return plot;
}

} // namespace quillet
