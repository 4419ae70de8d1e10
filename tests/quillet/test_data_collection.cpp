#include "quillet/data_collection.h"

#include "tests/quillet/support.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quillet
{
namespace
{

using test::article_of;
using test::cells_of;
using test::label_of;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

std::vector<std::string> row(const std::string& key, const std::string& items)
{
    return cells_of(article_of("data_x\n_entry.id x\n" + items), key);
}

TEST(DataCollection, SkeletonOfAFileWithoutData)
{
    const std::string html = article_of("data_x\n_entry.id x\n");
    EXPECT_THAT(cells_of(html, "B3.rmerge"), ElementsAre("?"));
    EXPECT_THAT(cells_of(html, "B3.rpim"), IsEmpty());
    EXPECT_THAT(html, Not(HasSubstr("outer shell")));
}

TEST(DataCollection, OuterShellIsChosenByResolution)
{
    const std::string head = "_reflns.d_resolution_low 30.00\n_reflns.d_resolution_high 1.450\n"
                             "_reflns.percent_possible_obs 96.200\nloop_\n"
                             "_reflns_shell.d_res_high\n_reflns_shell.d_res_low\n"
                             "_reflns_shell.percent_possible_obs\n"
                             "_reflns_shell.percent_possible_all\n";
    const std::string outer_first = head + "1.450 1.490 ? 87.600\n1.490 1.53 ? 95.6\n6.48 ? ? 99\n";
    EXPECT_THAT(row("B3.res", outer_first), ElementsAre("30.00\u20131.45 (1.49\u20131.45)"));
    EXPECT_THAT(row("B3.compl", outer_first), ElementsAre("96.2 (87.6)"));
    const std::string outer_last = head + "6.48 ? 99 ?\n1.490 1.53 95.6 ?\n1.450 1.490 88.100 ?\n";
    EXPECT_THAT(row("B3.res", outer_last), ElementsAre("30.00\u20131.45 (1.49\u20131.45)"));
    EXPECT_THAT(row("B3.compl", outer_last), ElementsAre("96.2 (88.1)"));
    EXPECT_THAT(article_of("data_x\n_entry.id x\n" + outer_last),
                HasSubstr("Values in parentheses are for the outer shell."));
}

TEST(DataCollection, ShellWithoutOverallValue)
{
    const std::string items = "_reflns_shell.d_res_high 1.5\n_reflns_shell.pdbx_redundancy 3.44\n"
                              "_reflns_shell.Rmerge_I_obs .\n_reflns.pdbx_Rmerge_I_obs 0.04900\n";
    EXPECT_THAT(row("B3.mult", items), ElementsAre("? (3.4)"));
    EXPECT_THAT(row("B3.rmerge", items), ElementsAre("0.049"));
}

TEST(DataCollection, SourceAndDetector)
{
    EXPECT_THAT(row("B3.src", "_diffrn_source.pdbx_synchrotron_site APS\n"
                              "_diffrn_source.pdbx_synchrotron_beamline 24-ID-C\n"
                              "_diffrn_source.type 'APS BEAMLINE 24-ID-C'\n"),
                ElementsAre("APS beamline 24-ID-C"));
    EXPECT_THAT(row("B3.src", "_diffrn_source.source 'ROTATING ANODE'\n"),
                ElementsAre("Rotating anode"));
    EXPECT_THAT(row("B3.src", "_diffrn_source.source MYSOURCE\n"), ElementsAre("MYSOURCE"));
    EXPECT_THAT(row("B3.det", "_diffrn_detector.type 'PILATUS 6M'\n"
                              "_diffrn_detector.detector PIXEL\n"),
                ElementsAre("PILATUS 6M (PIXEL)"));
    EXPECT_THAT(row("B3.det", "_diffrn_detector.type ?\n_diffrn_detector.detector CCD\n"),
                ElementsAre("CCD"));
}

TEST(DataCollection, WavelengthsOnceEach)
{
    EXPECT_THAT(row("B3.wl",
                    "loop_\n_diffrn_radiation_wavelength.id\n"
                    "_diffrn_radiation_wavelength.wavelength\n1 0.9792\n2 0.9794\n3 0.9792\n"
                    "_diffrn_source.pdbx_wavelength_list 0.9792,0.9794,0.9796\n"),
                ElementsAre("0.9792, 0.9794"));
    EXPECT_THAT(row("B3.wl", "_diffrn_radiation_wavelength.wavelength ?\n"
                             "_diffrn_source.pdbx_wavelength_list 0.9792,0.9794,0.9796\n"),
                ElementsAre("0.9792, 0.9794, 0.9796"));
}

TEST(DataCollection, CellAndGroup)
{
    const std::string items = "_cell.length_a 29.457\n_cell.length_b 10.5\n_cell.length_c 39.374\n"
                              "_cell.length_c_esd 0.0235\n_cell.angle_alpha 90.00\n"
                              "_cell.angle_beta 111.980\n_cell.angle_gamma 90\n"
                              "_symmetry.space_group_name_H-M 'P 1 21 1'\n";
    EXPECT_THAT(row("B3.abc", items), ElementsAre("29.46, 10.5, 39.37 (2)"));
    EXPECT_THAT(row("B3.ang", items), ElementsAre("90, 111.98, 90"));
    EXPECT_THAT(row("B3.sg", items), ElementsAre("<i>P</i>2<sub>1</sub>"));
    EXPECT_THAT(row("B3.sg", "_symmetry.Int_Tables_number 20\n"),
                ElementsAre("<i>C</i>222<sub>1</sub>"));
}

TEST(DataCollection, Scans)
{
    const std::string items = "loop_\n_diffrn_scan_axis.scan_id\n_diffrn_scan_axis.axis_id\n"
                              "_diffrn_scan_axis.angle_range\n_diffrn_scan_axis.angle_increment\n"
                              "S1 KAPPA 0.0 0.0\nS1 OMEGA 180.0 0.10\nS2 OMEGA 90.5 0.10\n";
    EXPECT_THAT(row("B3.rot", items), ElementsAre("0.1"));
    EXPECT_THAT(row("B3.tot", items), ElementsAre("270.5"));
}

TEST(DataCollection, MergingRIsCalledByItsName)
{
    const std::string html = article_of("data_x\n_entry.id x\n_reflns.pdbx_Rsym_value 0.051\n");
    EXPECT_EQ(label_of(html, "B3.rmerge"), "<i>R</i><sub>sym</sub>");
    EXPECT_THAT(cells_of(html, "B3.rmerge"), ElementsAre("0.051"));
}

TEST(DataCollection, DataSetsAreColumnsByTheirOrdinals)
{
    const std::string html =
        article_of("data_x\n_entry.id x\nloop_\n_reflns.pdbx_ordinal\n_reflns.pdbx_diffrn_id\n"
                   "_reflns.number_obs\n2 2 200\n1 1,3 100\n"
                   "loop_\n_reflns_shell.pdbx_diffrn_id\n_reflns_shell.d_res_high\n"
                   "_reflns_shell.number_unique_obs\n1 2.0 10\n2 1.8 20\n"
                   "loop_\n_diffrn.id\n_diffrn.ambient_temp\n1 100.0\n2 293\n");
    EXPECT_THAT(cells_of(html, "B3.nuniq"), ElementsAre("100 (10)", "200 (20)"));
    EXPECT_THAT(cells_of(html, "B3.T"), ElementsAre("100", "293"));
    EXPECT_THAT(html, HasSubstr("<thead>"));
}

TEST(DataCollection, DataSetsOfDifferentRadiationAreToldApart)
{
    const std::string html = article_of(
        "data_x\n_entry.id x\nloop_\n_reflns.pdbx_ordinal\n_reflns.pdbx_diffrn_id\n1 1\n2 2\n"
        "loop_\n_diffrn_radiation.diffrn_id\n_diffrn_radiation.pdbx_scattering_type\n"
        "1 x-ray\n2 NEUTRON\n");
    EXPECT_THAT(html, HasSubstr("<th scope=\"col\">Data set 1, X-ray</th>"
                                "<th scope=\"col\">Data set 2, Neutron</th>"));
}

TEST(DataCollection, WhatNamesNoExperimentBelongsToTheFirst)
{
    const std::string html =
        article_of("data_x\n_entry.id x\nloop_\n_reflns.pdbx_ordinal\n_reflns.number_obs\n"
                   "2 200\n1 100\n_diffrn.ambient_temp 100\n");
    EXPECT_THAT(cells_of(html, "B3.T"), ElementsAre("100", "?"));
}

} // namespace
} // namespace quillet
