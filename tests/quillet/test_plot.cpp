// Plots and what they are made of: axes, scattering curves, statistics in shells.

#include "quillet/plot.h"

#include "quillet/render_png.h"
#include "quillet/resolution_plot.h"
#include "quillet/scattering_plot.h"
#include "tests/quillet/support.h"

#include <cmath>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <iterator>
#include <limits>
#include <regex>

namespace quillet
{
namespace
{

using test::article_of;
using test::document_of;
using test::Outcome;
using test::readable;
using test::run_quillet;
using test::TemporaryFile;
using test::texts_of;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;
using testing::StartsWith;

using Scale = PlotAxis::Scale;

// All lines of text in the drawing, without their markup.
std::vector<std::string> texts_in(const std::string& svg)
{
    std::vector<std::string> texts;
    const std::regex text("<text[^>]*>(.*?)</text>");
    const std::regex tag("<[^>]*>");
    for (std::sregex_iterator it(svg.begin(), svg.end(), text), end; it != end; ++it)
        texts.push_back(readable(std::regex_replace((*it)[1].str(), tag, "")));
    return texts;
}

std::size_t count(const std::string& text, const std::string& part)
{
    std::size_t result = 0;
    for (auto at = text.find(part); at != std::string::npos; at = text.find(part, at + 1))
        ++result;
    return result;
}

PlotPanel panel_of(std::vector<PlotPoint> points, Scale y_scale = Scale::linear,
                   PlotSeries::Kind kind = PlotSeries::Kind::dots)
{
    std::vector<double> x;
    std::vector<double> y;
    for (const PlotPoint& point : points) {
        x.push_back(point.x);
        y.push_back(point.y);
    }
    PlotPanel panel;
    panel.x = axis_for(Scale::linear, plain_text("x"), x);
    panel.y = axis_for(y_scale, plain_text("y"), y);
    panel.series.push_back({kind, 0, {}, std::move(points)});
    return panel;
}

std::string drawn(const PlotPanel& panel)
{
    return draw_plot({panel}, "title", "description");
}

TEST(PlotAxis, HasRoomButNotBeyondZero)
{
    const PlotAxis axis = axis_for(Scale::linear, {}, {0, 5, 10, NAN, INFINITY});
    EXPECT_EQ(axis.low, 0);
    EXPECT_NEAR(axis.high, 10.4, 1e-9);
    EXPECT_LT(axis_for(Scale::linear, {}, {-1, 1}).low, -1);
    const PlotAxis logarithmic = axis_for(Scale::logarithmic, {}, {0, -3, 0.01, 10});
    EXPECT_GT(logarithmic.low, 0.005);
    EXPECT_LT(logarithmic.low, 0.01);
}

TEST(PlotAxis, OfOneValueIsNotEmpty)
{
    for (const double value : {0.0, 5.0, -2.0, 1e-12, 1e20}) {
        const PlotAxis axis = axis_for(Scale::linear, {}, {value, value});
        EXPECT_LT(axis.low, value);
        EXPECT_GT(axis.high, value);
        EXPECT_THAT(texts_in(drawn(panel_of({{value, value, 0}}))), Not(IsEmpty()));
    }
    const PlotAxis axis = axis_for(Scale::logarithmic, {}, {3});
    EXPECT_LT(axis.low, 3);
    EXPECT_GT(axis.high, 3);
}

TEST(Plot, TicksAreRoundAndAlike)
{
    const auto texts = texts_in(drawn(panel_of({{0, -0.5, 0}, {0.39, 0.5, 0}})));
    for (const char* tick : {"0.00", "0.05", "0.35", "0.40", "\u22120.4", "0.0", "0.4"})
        EXPECT_THAT(texts, Contains(tick));
}

TEST(Plot, LargeAndSmallNumbersShareAPowerOfTen)
{
    const auto texts = texts_in(drawn(panel_of({{0, 0, 0}, {0.0031, 250000, 0}})));
    EXPECT_THAT(texts, Contains("103 x")); // 10^3 x
    EXPECT_THAT(texts, Contains("10\u22125 y"));
    EXPECT_THAT(texts, Contains("2.0"));
}

TEST(Plot, LogarithmicAxisHasPowersOfTen)
{
    const std::string svg = drawn(panel_of({{0, 1e-4, 0}, {1, 50, 0}}, Scale::logarithmic));
    EXPECT_THAT(texts_in(svg), Contains("10\u22124"));
    EXPECT_THAT(texts_in(svg), Contains("101"));
    // Over less than a power of ten there are numbers between.
    const auto near = texts_in(drawn(panel_of({{0, 2, 0}, {1, 12, 0}}, Scale::logarithmic)));
    EXPECT_THAT(near, Contains("2"));
    EXPECT_THAT(near, Contains("5"));
    EXPECT_THAT(near, Contains("10"));
}

TEST(Plot, ResolutionAxisIsLabelledWithSpacings)
{
    PlotPanel panel = panel_of({{0, 0, 0}, {0.25, 1, 0}});
    panel.x = axis_for(Scale::resolution, plain_text("d"), {0, 0.25});
    const auto texts = texts_in(drawn(panel));
    EXPECT_THAT(texts, Contains("2.0"));
    EXPECT_THAT(texts, Contains("3.0"));
    EXPECT_THAT(texts, Not(Contains("1.9")));
}

TEST(Plot, NothingIsDrawnOutsideTheFrame)
{
    PlotPanel panel = panel_of({{0, 0, 0}, {1, 1, 0}}, Scale::linear, PlotSeries::Kind::line);
    panel.series[0].points = {{-5, 0.5, 0}, {5, 0.5, 0}, {5, 8, 0}, {0.5, 9, 0}, {0.5, -9, 0}};
    const std::string svg = drawn(panel);
    const std::regex number("points=\"([^\"]*)\"");
    std::size_t lines = 0;
    for (std::sregex_iterator it(svg.begin(), svg.end(), number), end; it != end; ++it, ++lines) {
        std::istringstream list((*it)[1].str());
        double x = 0;
        double y = 0;
        char comma = 0;
        while (list >> x >> comma >> y) {
            EXPECT_GE(x, 0);
            EXPECT_LE(x, 640);
            EXPECT_GE(y, 0);
            EXPECT_LE(y, 450);
        }
    }
    EXPECT_EQ(lines, 2U);
}

TEST(Plot, LongCurvesMakeSmallPictures)
{
    std::vector<PlotPoint> points;
    for (int i = 0; i < 200000; ++i)
        points.push_back({i * 1e-5, std::sin(i * 1e-4), 0.01});
    const std::string dots = drawn(panel_of(points));
    EXPECT_LT(dots.size(), 300000U);
    EXPECT_GT(count(dots, "<circle"), 500U);
    EXPECT_LT(drawn(panel_of(points, Scale::linear, PlotSeries::Kind::line)).size(), 200000U);
}

TEST(Plot, PanelsHaveLettersIfThereAreSeveral)
{
    PlotPanel panel = panel_of({{0, 0, 0}, {1, 1, 0}});
    EXPECT_THAT(texts_in(drawn(panel)), Not(Contains("(a)")));
    PlotPanel half = panel;
    half.size = PlotPanel::Size::half;
    const std::string svg = draw_plot({panel, half, half}, "", "");
    EXPECT_THAT(texts_in(svg), testing::IsSupersetOf({"(a)", "(b)", "(c)"}));
    EXPECT_EQ(svg, draw_plot({panel, half, half}, "", ""));
    EXPECT_THAT(render_png(svg), StartsWith("\x89PNG"));
}

TEST(Plot, NamesCannotBecomeMarkup)
{
    PlotPanel panel = panel_of({{0, 0, 0}, {1, 1, 0}});
    panel.series[0].name = plain_text("<b>&\"");
    EXPECT_THAT(drawn(panel), HasSubstr("&lt;b&gt;&amp;&quot;"));
}

// I(q) of a sphere-like particle with Rg = 2 nm, in reciprocal angstrom.
double intensity(double q)
{
    return 5 * std::exp(-q * q * 400 / 3) + 0.001;
}

std::string main_block(const std::string& items, double unit = 1)
{
    std::ostringstream cif;
    cif << "data_a_MAIN\n_sas_scan.id 1\n_sas_scan.result_id 1\n_sas_result.id 1\n"
        << items
        << "loop_\n_sas_scan_intensity.scan_id\n_sas_scan_intensity.momentum_transfer\n"
           "_sas_scan_intensity.intensity\n_sas_scan_intensity.intensity_su_counting\n";
    for (int i = 1; i <= 40; ++i)
        cif << "1 " << i * 0.005 * unit << " " << intensity(i * 0.005) << " 0.001\n";
    return cif.str();
}

std::string fit_block(const std::string& unit, double factor, double scale = 1)
{
    std::ostringstream cif;
    cif << "data_a_FIT\n_sas_model_fitting_details.id 26\n"
           "_sas_model_fitting_details.result_id 1\n_sas_model_fitting_details.chi_square 1.0369\n"
        << (unit.empty() ? "" : "_sas_model_fitting_details.unit " + unit + "\n")
        << "loop_\n_sas_model_fitting.id\n_sas_model_fitting.momentum_transfer\n"
           "_sas_model_fitting.intensity\n_sas_model_fitting.fit\n26 0.0 5.1 5.0\n";
    for (int i = 1; i <= 40; ++i)
        cif << "26 " << i * 0.005 * factor << " " << intensity(i * 0.005) * scale << " "
            << intensity(i * 0.005) * scale * 1.01 << "\n";
    return cif.str();
}

struct Plotted {
    ScatteringPlot plot;
    std::vector<std::string> notes;
};

Plotted plotted(const std::string& cif)
{
    Notes notes;
    const Document document = document_of(cif);
    const auto measurements = measurements_of(document, notes);
    const auto fits = model_fits_of(document, measurements, notes);
    Plotted result{plot_of(measurements.front(), 0, fits), {}};
    result.notes = texts_of(notes);
    return result;
}

const std::string angstrom = "_sas_scan.unit 1/A\n";
const std::string guinier = "_sas_result.Rg_from_Guinier 2.00\n_sas_result.I0_from_Guinier 5.0\n"
                            "_sas_result.Guinier_point_min 2\n_sas_result.Guinier_point_max 12\n";

TEST(ScatteringPlot, OfACurveAlone)
{
    const Plotted result = plotted(main_block(angstrom));
    ASSERT_THAT(result.plot.panels, SizeIs(1));
    EXPECT_EQ(result.plot.panels[0].y.scale, Scale::logarithmic);
    EXPECT_THAT(result.plot.panels[0].series, SizeIs(1));
    EXPECT_TRUE(result.plot.has_errors);
    EXPECT_FALSE(result.plot.has_fits);
    const std::string svg = draw_plot(result.plot.panels, "", "");
    EXPECT_THAT(texts_in(svg), Contains("q (\u00C5\u22121)"));
    EXPECT_THAT(texts_in(draw_plot(plotted(main_block("")).plot.panels, "", "")),
                Contains("q (unit not stated)"));
}

TEST(ScatteringPlot, FitIsConvertedToTheUnitOfTheCurve)
{
    const Plotted result = plotted(main_block(angstrom) + fit_block("nanometer", 10));
    ASSERT_TRUE(result.plot.has_fits);
    const PlotSeries& fit = result.plot.panels[0].series[1];
    EXPECT_NEAR(fit.points.back().x, 0.2, 1e-9);
    EXPECT_THAT(texts_in(draw_plot(result.plot.panels, "", "")), Contains("Fit 26, \u03C72 1.04"));
}

TEST(ScatteringPlot, FitWithoutUnitIsPlacedByItsPoints)
{
    for (const double factor : {1.0, 10.0, 0.1}) {
        const Plotted result = plotted(main_block(angstrom) + fit_block(".", factor));
        ASSERT_TRUE(result.plot.has_fits) << factor;
        EXPECT_NEAR(result.plot.panels[0].series[1].points.back().x, 0.2, 1e-9) << factor;
    }
    const Plotted other = plotted(main_block(angstrom) + fit_block(".", 3.33));
    EXPECT_FALSE(other.plot.has_fits);
    EXPECT_THAT(other.notes, Contains(HasSubstr("The fit of data_a_FIT is not drawn: its unit")));
}

TEST(ScatteringPlot, FitIsPutOnTheScaleOfTheCurve)
{
    const Plotted result = plotted(main_block(angstrom) + fit_block("1/A", 1, 250));
    ASSERT_TRUE(result.plot.has_fits);
    EXPECT_NEAR(result.plot.panels[0].series[1].points[1].y, intensity(0.005) * 1.01, 1e-3);
}

TEST(ScatteringPlot, GuinierLineIsThatOfTheFile)
{
    const Plotted result = plotted(main_block(angstrom + guinier));
    ASSERT_TRUE(result.plot.has_guinier);
    const PlotPanel& panel = result.plot.panels[1];
    EXPECT_EQ(panel.series[1].points.size(), 11U); // points 2 to 12
    const PlotSeries& line = panel.series.back();
    EXPECT_NEAR(line.points[0].x, 0.01 * 0.01, 1e-12);
    EXPECT_NEAR(line.points[1].x, 0.06 * 0.06, 1e-12);
    EXPECT_NEAR(line.points[1].y, std::log(5.0) - 0.06 * 0.06 * 400 / 3, 1e-9);
    const auto texts = texts_in(draw_plot(result.plot.panels, "", ""));
    EXPECT_THAT(texts, Contains("Rg = 2 nm"));
    EXPECT_THAT(texts, Contains("qRg = 0.20\u20131.20"));
}

TEST(ScatteringPlot, GuinierRangeMustBeOfTheCurve)
{
    EXPECT_FALSE(plotted(main_block(angstrom + "_sas_result.Guinier_point_min 2\n"
                                               "_sas_result.Guinier_point_max 99\n"))
                     .plot.has_guinier);
    EXPECT_FALSE(plotted(main_block(angstrom + "_sas_result.Guinier_point_min 2\n"
                                               "_sas_result.Guinier_point_max 2\n"))
                     .plot.has_guinier);
    // Without Rg there are points, but no line.
    const Plotted points = plotted(main_block(angstrom + "_sas_result.Guinier_point_min 2\n"
                                                         "_sas_result.Guinier_point_max 9\n"));
    ASSERT_TRUE(points.plot.has_guinier);
    EXPECT_THAT(points.plot.panels[1].series, SizeIs(2));
    // I(0) on another scale than the curve makes no line either.
    const Plotted scaled = plotted(main_block(angstrom + "_sas_result.Rg_from_Guinier 2\n"
                                                         "_sas_result.I0_from_Guinier 9000\n"
                                                         "_sas_result.Guinier_point_min 2\n"
                                                         "_sas_result.Guinier_point_max 9\n"));
    EXPECT_THAT(scaled.plot.panels[1].series, SizeIs(2));
    EXPECT_THAT(scaled.notes, Contains(HasSubstr("not on the scale of the curve")));
}

TEST(ScatteringPlot, DistanceDistributionAndItsTransform)
{
    const std::string distribution =
        "_sas_p_of_R_details.intensity_id 1\n_sas_p_of_R_details.id 1\n"
        "_sas_p_of_R_details.qmax 0.2\n"
        "loop_\n_sas_p_of_R.id\n_sas_p_of_R.r\n_sas_p_of_R.P\n1 0 0\n1 30 2e-5\n1 60 0\n"
        "2 0 9\n"
        "loop_\n_sas_p_of_R_extrapolated_intensity.id\n"
        "_sas_p_of_R_extrapolated_intensity.momentum_transfer\n"
        "_sas_p_of_R_extrapolated_intensity.intensity_reg\n1 0.0 5\n1 0.11 3\n1 0.2 1\n";
    const Plotted result = plotted(main_block(angstrom + distribution));
    EXPECT_TRUE(result.plot.has_transform);
    ASSERT_TRUE(result.plot.has_distribution);
    EXPECT_THAT(result.plot.panels.back().series[0].points, SizeIs(3));
    const auto texts = texts_in(draw_plot(result.plot.panels, "", ""));
    EXPECT_THAT(texts, Contains("r (\u00C5)"));
    EXPECT_THAT(texts, Contains("105 p(r)"));
    EXPECT_THAT(texts, Contains("Transform of p(r)"));
}

TEST(ScatteringPlot, WhatIsNoNumberIsReported)
{
    const Plotted result =
        plotted("data_x\n_sas_scan.id 1\nloop_\n_sas_scan_intensity.momentum_transfer\n"
                "_sas_scan_intensity.intensity\n0.1 5\n0.2 abc\n0.3 4\n0.4 -1\n0.5 1e99\n0.6 .\n");
    EXPECT_THAT(result.plot.panels, SizeIs(1));
    EXPECT_THAT(result.notes, Contains(HasSubstr("\u201Cabc\u201D of _sas_scan_intensity")));
    EXPECT_THAT(result.notes, Contains(HasSubstr("\u201C1e99\u201D")));
    EXPECT_THAT(result.notes, Contains(HasSubstr("1 points of the curve are not drawn")));
}

Outcome figure_of(const std::string& cif, const std::vector<std::string>& more = {})
{
    const TemporaryFile file(cif);
    const TemporaryFile out("", "out.svg");
    std::vector<std::string> arguments = {"--figure", file.path(), out.path()};
    arguments.insert(arguments.end(), more.begin(), more.end());
    Outcome outcome = run_quillet(arguments);
    std::ifstream written(out.path(), std::ios::binary);
    outcome.out = {std::istreambuf_iterator<char>(written), std::istreambuf_iterator<char>()};
    return outcome;
}

TEST(ScatteringFigure, IsOfTheBlockThatIsAskedFor)
{
    const std::string second = "data_b_MAIN\n_sas_scan.id 2\nloop_\n"
                               "_sas_scan_intensity.momentum_transfer\n"
                               "_sas_scan_intensity.intensity\n0.1 5\n0.2 3\n";
    const std::string cif = main_block(angstrom) + second;
    EXPECT_THAT(figure_of(cif).out, HasSubstr("<title>Scattering of a_MAIN</title>"));
    EXPECT_THAT(figure_of(cif, {"--block=B_main"}).out,
                HasSubstr("<title>Scattering of b_MAIN</title>"));
    const Outcome missing = figure_of(cif, {"--block=c"});
    EXPECT_EQ(missing.status, 1);
    EXPECT_THAT(missing.err, HasSubstr("no block data_c has a scattering curve"));
}

TEST(ScatteringFigure, ErrorsTellThePlace)
{
    const Outcome none = figure_of("data_x\n_sas_result.id 1\n_sas_scan.id 1\n");
    EXPECT_EQ(none.status, 1);
    EXPECT_EQ(none.out, "");
    EXPECT_THAT(none.err, HasSubstr(":3:1: error: there is nothing to draw: "));
    const Outcome bad = figure_of("data_x\n_sas_scan.id 1\nloop_\n"
                                  "_sas_scan_intensity.momentum_transfer\n"
                                  "_sas_scan_intensity.intensity\n0.1 ?\n0.2 -5\n");
    EXPECT_THAT(bad.err, HasSubstr(":5:1: error: there is nothing to draw: "));
}

TEST(ScatteringFigure, IsAnnouncedWithItsPanels)
{
    const std::string html =
        article_of(main_block(angstrom + guinier) + fit_block("1/A", 1), "-sas");
    EXPECT_THAT(html, HasSubstr("Fig. 1. Small-angle scattering. (a) Scattering curve (bars: "
                                "standard uncertainties) and the curves of the models fitted to "
                                "it. (b) Guinier plot;"));
    EXPECT_THAT(html, HasSubstr("--block=a_MAIN"));
    EXPECT_THAT(article_of("data_x\n_sas_scan.id 1\n", "-sas"), Not(HasSubstr("Fig. 1.")));
    EXPECT_THAT(
        article_of("data_g\n_publ_section_figure_captions Mine\n" + main_block(angstrom), "-sas"),
        Not(HasSubstr("Fig. 1.")));
}

const std::string shells = "data_1abc\n_entry.id 1ABC\nloop_\n_reflns_shell.d_res_high\n"
                           "_reflns_shell.d_res_low\n_reflns_shell.meanI_over_sigI_obs\n"
                           "_reflns_shell.pdbx_CC_half\n_reflns_shell.Rmerge_I_obs\n"
                           "_reflns_shell.pdbx_diffrn_id\n";

ResolutionPlot resolution_plot_of(const std::string& cif, std::vector<std::string>* notes = nullptr)
{
    Notes collected;
    const Document document = document_of(cif);
    ResolutionPlot plot = resolution_plot(document.blocks.front(), collected);
    if (notes)
        *notes = texts_of(collected);
    return plot;
}

TEST(ResolutionPlot, ShellsAreInTheOrderOfResolution)
{
    const ResolutionPlot plot = resolution_plot_of(
        shells + "2.0 2.5 1.5 0.5 0.9 1\n2.5 5.0 10 0.95 0.1 1\n5.0 . 30 0.99 0.05 1\n");
    ASSERT_THAT(plot.panels, SizeIs(2));
    const auto& points = plot.panels[0].series[0].points;
    ASSERT_THAT(points, SizeIs(3));
    EXPECT_NEAR(points[0].x, 0.04, 1e-9); // the innermost shell has no lower limit
    EXPECT_EQ(points[0].y, 30);
    EXPECT_NEAR(points[2].x, (0.25 + 0.16) / 2, 1e-9);
    EXPECT_TRUE(plot.has_correlation);
    EXPECT_TRUE(plot.has_merging_r);
    EXPECT_FALSE(plot.has_model_agreement);
    EXPECT_THAT(texts_in(draw_plot(plot.panels, "", "")), Contains("CC1/2, R"));
}

TEST(ResolutionPlot, DataSetsAreNotMixed)
{
    std::vector<std::string> notes;
    const ResolutionPlot plot = resolution_plot_of(
        shells + "2.0 2.5 1.5 ? ? 1\n2.5 5.0 10 ? ? 1\n3.0 4.0 7 ? ? 2\n4.0 9.0 8 ? ? 2\n", &notes);
    ASSERT_THAT(plot.panels, SizeIs(1));
    EXPECT_THAT(plot.panels[0].series[0].points, SizeIs(2));
    EXPECT_THAT(notes, Contains(HasSubstr("shells of several")));
    // Files have the numbers of the rows as ids.
    EXPECT_THAT(resolution_plot_of(shells + "2.0 2.5 1.5 ? ? 1\n2.5 5.0 10 ? ? 2\n").panels,
                SizeIs(1));
}

TEST(ResolutionPlot, ValuesThatCannotBeAreReported)
{
    std::vector<std::string> notes;
    const ResolutionPlot plot =
        resolution_plot_of(shells + "2.0 2.5 1.5 65.0 0.5 1\n2.5 5.0 10 99.0 0.1 1\n", &notes);
    EXPECT_FALSE(plot.has_correlation);
    EXPECT_TRUE(plot.has_merging_r);
    EXPECT_THAT(notes, Contains(HasSubstr("_reflns_shell.pdbx_CC_half is too large")));
}

TEST(ResolutionFigure, NeedsTwoShells)
{
    const Outcome one = figure_of(shells + "2.0 2.5 1.5 0.5 0.9 1\n");
    EXPECT_EQ(one.status, 1);
    EXPECT_THAT(one.err, HasSubstr(":4:1: error: there is nothing to draw: no block has "
                                   "statistics for two or more resolution shells"));
    const Outcome two = figure_of(shells + "2.0 2.5 1.5 0.5 0.9 1\n2.5 5.0 10 0.95 0.1 1\n");
    EXPECT_EQ(two.status, 0);
    EXPECT_THAT(two.out, HasSubstr("<title>Data quality of 1abc</title>"));
    const Outcome model = figure_of("data_x\n_entry.id x\nloop_\n_refine_ls_shell.d_res_high\n"
                                    "_refine_ls_shell.d_res_low\n_refine_ls_shell.R_factor_R_work\n"
                                    "_refine_ls_shell.R_factor_R_free\n2 3 0.2 0.3\n3 9 0.1 0.2\n");
    EXPECT_THAT(texts_in(model.out), testing::IsSupersetOf({"Rwork", "Rfree"}));
}

TEST(ResolutionFigure, IsAnnouncedWithItsPanels)
{
    const std::string cif = shells + "2.0 2.5 1.5 0.5 0.9 1\n2.5 5.0 10 0.95 0.1 1\n"
                                     "loop_\n_refine_ls_shell.d_res_high\n"
                                     "_refine_ls_shell.d_res_low\n"
                                     "_refine_ls_shell.R_factor_R_work\n2 3 0.2\n3 9 0.1\n";
    const std::string full = readable(article_of(cif));
    EXPECT_THAT(full, HasSubstr("Fig. 1. Statistics in resolution shells. (a) Mean \u27E8"));
    EXPECT_THAT(full, HasSubstr("(b) Correlation CC<sub>1/2</sub> between halves of the data, and "
                                "agreement factors <i>R</i> of the merged data. (c) <i>R</i> "
                                "factors of the model."));
    const std::string communication = readable(article_of(cif, "-htmmo5"));
    EXPECT_THAT(communication, HasSubstr("(b) Correlation"));
    EXPECT_THAT(communication, Not(HasSubstr("factors of the model")));
    EXPECT_THAT(communication, HasSubstr("Its last panel"));
    EXPECT_THAT(article_of(shells + "2.0 2.5 1.5 0.5 0.9 1\n"), Not(HasSubstr("Fig. 1.")));
}

TEST(Figures, AreTheSameEachTime)
{
    for (const char* example : {"scattering.cif", "scattering_series.cif", "macromolecule.cif"}) {
        const std::string path = std::string(VEXA_SOURCE_DIR) + "/examples/" + example;
        std::string first;
        for (int time = 0; time < 2; ++time) {
            const TemporaryFile out("", "out.svg");
            ASSERT_EQ(run_quillet({"--figure", path, out.path()}).err, "");
            std::ifstream written(out.path(), std::ios::binary);
            const std::string svg{std::istreambuf_iterator<char>(written),
                                  std::istreambuf_iterator<char>()};
            EXPECT_THAT(svg, Not(HasSubstr("nan")));
            EXPECT_TRUE(time == 0 || svg == first) << example;
            first = svg;
        }
    }
}

} // namespace
} // namespace quillet
