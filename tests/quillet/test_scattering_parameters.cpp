#include "quillet/scattering_parameters.h"

#include "quillet/scattering_sample.h"
#include "tests/quillet/support.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quillet
{
namespace
{

using test::article_of;
using test::cells_of;
using test::document_of;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

std::vector<std::string> row(const std::string& key, const std::string& items)
{
    return cells_of(article_of("data_x_MAIN\n_sas_scan.id 1\n_sas_scan.result_id 1\n"
                               "_sas_result.id 1\n" +
                               items),
                    key);
}

TEST(StructuralParameters, ValuesWithErrors)
{
    EXPECT_THAT(row("C4.gRg", "_sas_result.Rg_from_Guinier 3.819\n"
                              "_sas_result.Rg_from_Guinier_error 0.046\n"),
                ElementsAre("3.819 \u00B1 0.046"));
    EXPECT_THAT(row("C4.gI0", "_sas_result.I0_from_Guinier 63.2500000000\n"
                              "_sas_result.I0_from_Guinier_error .\n"),
                ElementsAre("63.25"));
    EXPECT_THAT(row("C4.vp", "_sas_result.Porod_volume .\n"), ElementsAre("?"));
    EXPECT_THAT(row("C4.mstd", "_sas_result.MW_standard .\n"), IsEmpty());
}

const std::string curve = "loop_\n_sas_scan_intensity.id\n_sas_scan_intensity.momentum_transfer\n"
                          "1 0.01\n2 0.02\n3 0.05\n";
const std::string guinier = "_sas_result.Rg_from_Guinier 2.00\n_sas_result.Guinier_point_min 2\n"
                            "_sas_result.Guinier_point_max 3\n";

TEST(StructuralParameters, GuinierRangeIsInOneUnit)
{
    EXPECT_THAT(row("C4.qRg", "_sas_scan.unit 1/A\n" + guinier + curve),
                ElementsAre("0.40\u20131.00"));
    EXPECT_THAT(row("C4.qRg", "_sas_scan.unit nanometer\n" + guinier + curve),
                ElementsAre("0.04\u20130.10"));
    EXPECT_THAT(row("C4.gpt", guinier), ElementsAre("2\u20133"));
    EXPECT_THAT(row("C4.qRg", "_sas_scan.unit 1/A\n" + guinier), IsEmpty());
}

TEST(StructuralParameters, UnitsFollowTheFile)
{
    const std::string items = "_sas_p_of_R_details.qmin 0.0153\n_sas_p_of_R_details.qmax 0.3704\n"
                              "_sas_p_of_R_details.Rmin 0.0\n_sas_p_of_R_details.Rmax 70.50\n";
    EXPECT_THAT(row("C4.pq", items + "_sas_scan.unit 1/A\n"),
                ElementsAre("0.0153\u20130.3704 \u00C5<sup>\u22121</sup>"));
    EXPECT_THAT(row("C4.prr", items + "_sas_scan.unit 1/A\n"), ElementsAre("0\u201370.5 \u00C5"));
    EXPECT_THAT(row("C4.pq", items + "_sas_scan.unit nanometer\n"),
                ElementsAre("0.0153\u20130.3704 nm<sup>\u22121</sup>"));
    EXPECT_THAT(row("C4.pq", items + "_sas_scan.unit .\n"), ElementsAre("0.0153\u20130.3704"));
    EXPECT_THAT(article_of("data_x\n_sas_scan.unit furlong\n" + items), HasSubstr("furlong"));
}

TEST(StructuralParameters, PointsUsed)
{
    EXPECT_THAT(row("C4.pn", "_sas_p_of_R_details.p_of_R_point_min 1\n"
                             "_sas_p_of_R_details.p_of_R_point_max 318\n"
                             "_sas_p_of_R_details.number_of_points 318\n"),
                ElementsAre("1\u2013318 (318)"));
}

const std::string two_entities =
    "_sas_result.experimental_MW 34.2\n"
    "loop_\n_sas_sample.entity_id\n1\n2\n"
    "loop_\n_entity.id\n_entity.formula_weight\n"
    "_entity.pdbx_number_of_molecules\n1 8.565 2\n2 8535.5 ?\n3 99 1\n";

TEST(StructuralParameters, MassIsComparedWithTheComposition)
{
    EXPECT_THAT(row("C4.ratio", two_entities), ElementsAre("1.33"));
}

TEST(MassFromComposition, IsAnExactSumOverTheSample)
{
    Notes notes;
    const Document document = document_of("data_x\n_sas_scan.id 1\n" + two_entities);
    const auto mass = mass_from_composition(measurements_of(document, notes).front());
    ASSERT_TRUE(mass);
    EXPECT_EQ(mass->text(), "25.6655"); // 2 x 8.565 + 8535.5 / 1000
}

TEST(Scattering, MeasurementsAreColumns)
{
    const std::string html =
        article_of("data_a_MAIN\n_sas_scan.id 1\n_sas_scan.title First\n_sas_result.D_max 7.0\n"
                   "data_a_FIT_1\n_sas_model_fitting_details.id 1\n"
                   "data_b_MAIN\n_sas_scan.id 2\n_sas_result.D_max 8.5\n");
    EXPECT_THAT(cells_of(html, "C4.dmax"), ElementsAre("7", "8.5"));
    EXPECT_THAT(html, HasSubstr("<th scope=\"col\">First</th><th scope=\"col\">b_MAIN</th>"));
}

TEST(Scattering, RowsAreLinkedByTheirIds)
{
    const std::string html =
        article_of("data_a\nloop_\n_sas_scan.id\n_sas_scan.result_id\n1 12\n2 11\n"
                   "loop_\n_sas_result.id\n_sas_result.D_max\n11 5.0\n12 6.0\n");
    EXPECT_THAT(cells_of(html, "C4.dmax"), ElementsAre("6", "5"));
}

} // namespace
} // namespace quillet
