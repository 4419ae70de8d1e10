#include "quillet/resolution_plot.h"

#include "quillet/number.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <set>

namespace quillet
{

namespace
{

constexpr std::size_t fewest_shells = 2;

// A quantity of shells, under the first of the names that a shell has.
struct Quantity {
    RichText name;  // in the legend
    RichText label; // of the axis
    std::vector<std::string_view> tags;
    double largest; // what is beyond is in other units or a mistake
};

// Shells of one data set or refinement, the one of the first row. Ids that are different in all
// rows are none: files have numbers of the rows there.
struct Shells {
    Rows rows;
    std::vector<std::size_t> members;
    std::string category;
};

Shells shells_of(const Block& block, const std::string& category, const std::string& set_id,
                 Notes& notes)
{
    Shells shells{block.rows(category + ".d_res_high"), {}, category};
    const std::string tag = category + "." + set_id;
    std::set<std::string_view> ids;
    for (std::size_t row = 0; row < shells.rows.size(); ++row)
        ids.insert(shells.rows.item(row, tag).text);
    const bool numbers_rows = ids.size() == shells.rows.size();
    for (std::size_t row = 0; row < shells.rows.size(); ++row) {
        if (numbers_rows || shells.rows.item(row, tag).text == shells.rows.item(0, tag).text)
            shells.members.push_back(row);
    }
    if (shells.members.size() < shells.rows.size())
        notes.add(block.find(tag)->where,
                  "There are shells of several " + tag + "; those of \u201c" +
                      std::string(shells.rows.item(0, tag).text) + "\u201d are drawn.",
                  Note::Severity::remark);
    return shells;
}

std::optional<double> number_in(const Rows& rows, std::size_t row,
                                const std::vector<std::string_view>& tags)
{
    for (const std::string_view tag : tags) {
        if (const auto number = parse_number(rows.item(row, tag).text))
            return number->value();
    }
    return std::nullopt;
}

std::optional<double> inverse_square(std::optional<double> d)
{
    constexpr double finest = 0.3; // Angstrom
    return d && *d >= finest ? std::optional(1 / (*d * *d)) : std::nullopt;
}

// The middle of the shell in 1/d^2; the innermost shell may have no lower limit.
std::optional<double> middle_of_shell(const Shells& shells, std::size_t row)
{
    const std::string high_tag = shells.category + ".d_res_high";
    const std::string low_tag = shells.category + ".d_res_low";
    const auto high = inverse_square(number_in(shells.rows, row, {high_tag}));
    const auto low = inverse_square(number_in(shells.rows, row, {low_tag}));
    if (!high)
        return std::nullopt;
    return (*high + low.value_or(*high)) / 2;
}

PlotSeries series_of(const Shells& shells, const Quantity& quantity, int colour, Notes& notes)
{
    PlotSeries series{PlotSeries::Kind::line_with_dots, colour, quantity.name, {}};
    for (const std::size_t row : shells.members) {
        const auto x = middle_of_shell(shells, row);
        const auto y = number_in(shells.rows, row, quantity.tags);
        if (!x || !y)
            continue;
        if (std::abs(*y) <= quantity.largest) {
            series.points.push_back({*x, *y, 0});
            continue;
        }
        const Item item = shells.rows.item(row, quantity.tags.front());
        notes.add(item.is_given() ? item.where() : Position(),
                  "A value of " + std::string(quantity.tags.front()) +
                      " is too large to be what it should be; it is not drawn.");
    }
    std::stable_sort(series.points.begin(), series.points.end(),
                     [](const PlotPoint& a, const PlotPoint& b) { return a.x < b.x; });
    return series;
}

// A panel of those quantities that enough shells have.
std::optional<PlotPanel> panel_of(const Shells& shells, const std::vector<Quantity>& quantities,
                                  Notes& notes)
{
    PlotPanel panel;
    panel.size = PlotPanel::Size::flat;
    panel.legend = PlotPanel::LegendPlace::above;
    std::vector<double> squares;
    std::vector<double> values = {0};
    RichText label;
    for (const Quantity& quantity : quantities) {
        const int colour = static_cast<int>(panel.series.size()) + 1;
        PlotSeries series = series_of(shells, quantity, colour, notes);
        if (series.points.size() < fewest_shells)
            continue;
        for (const PlotPoint& point : series.points) {
            squares.push_back(point.x);
            values.push_back(point.y);
        }
        panel.series.push_back(std::move(series));
        const bool is_new = label.empty() || label.back().text != quantity.label.back().text;
        if (is_new)
            label = (label.empty() ? label : label + plain_text(", ")) + quantity.label;
    }
    if (panel.series.empty())
        return std::nullopt;
    squares.push_back(0);
    panel.x =
        axis_for(PlotAxis::Scale::resolution,
                 plain_text("Resolution ") + italic_text("d") + plain_text(" (\u00C5)"), squares);
    panel.y = axis_for(PlotAxis::Scale::linear, label, values);
    return panel;
}

Quantity r_factor(const char* index, std::vector<std::string_view> tags, double largest)
{
    return {italic_text("R") + subscript_text(index), italic_text("R"), std::move(tags), largest};
}

const std::vector<Quantity>& signal()
{
    static const std::vector<Quantity> quantities = {
        {{},
         plain_text("\u27E8") + italic_text("I") + plain_text("/\u03C3(") + italic_text("I") +
             plain_text(")\u27E9"),
         {"_reflns_shell.meanI_over_sigI_obs", "_reflns_shell.pdbx_netI_over_sigmaI_obs",
          "_reflns_shell.meanI_over_sigI_all", "_reflns_shell.pdbx_netI_over_sigmaI_all"},
         1e5}};
    return quantities;
}

const std::vector<Quantity>& agreement()
{
    constexpr double largest_r = 20;
    const RichText cc_half = plain_text("CC") + subscript_text("1/2");
    static const std::vector<Quantity> quantities = {
        {cc_half, cc_half, {"_reflns_shell.pdbx_CC_half"}, 1},
        r_factor("merge",
                 {"_reflns_shell.Rmerge_I_obs", "_reflns_shell.Rmerge_I_all",
                  "_reflns_shell.pdbx_Rsym_value"},
                 largest_r),
        r_factor("meas", {"_reflns_shell.pdbx_Rrim_I_all"}, largest_r),
        r_factor("p.i.m.", {"_reflns_shell.pdbx_Rpim_I_all"}, largest_r)};
    return quantities;
}

const std::vector<Quantity>& model_agreement()
{
    static const std::vector<Quantity> quantities = {
        r_factor("work",
                 {"_refine_ls_shell.R_factor_R_work", "_refine_ls_shell.R_factor_obs",
                  "_refine_ls_shell.R_factor_all"},
                 1),
        r_factor("free", {"_refine_ls_shell.R_factor_R_free"}, 1)};
    return quantities;
}

} // namespace

ResolutionPlot resolution_plot(const Block& block, Notes& notes)
{
    const Shells shells = shells_of(block, "_reflns_shell", "pdbx_diffrn_id", notes);
    const Shells model_shells = shells_of(block, "_refine_ls_shell", "pdbx_refine_id", notes);
    ResolutionPlot plot;
    if (auto panel = panel_of(shells, signal(), notes)) {
        plot.has_signal = true;
        plot.panels.push_back(std::move(*panel));
    }
    if (auto panel = panel_of(shells, agreement(), notes)) {
        plot.has_correlation = panel->series.front().name == agreement().front().name;
        plot.has_merging_r = !plot.has_correlation || panel->series.size() > 1;
        plot.panels.push_back(std::move(*panel));
    }
    if (auto panel = panel_of(model_shells, model_agreement(), notes)) {
        plot.has_model_agreement = true;
        plot.panels.push_back(std::move(*panel));
    }
    return plot;
}

} // namespace quillet
