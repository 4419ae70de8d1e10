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

std::string article(const std::string& items)
{
    return article_of("data_x\n_entry.id 1abc\n" + items);
}

std::vector<std::string> row(const std::string& key, const std::string& items)
{
    return cells_of(article(items), key);
}

TEST(StructureRefinement, SkeletonOfAFileWithoutRefinement)
{
    const std::string html = article("");
    for (const char* key : {"B4.res", "B4.compl", "B4.sig", "B4.nwork", "B4.ntest", "B4.rwork",
                            "B4.rfree", "B4.n.total", "B4.rb", "B4.ra", "B4.b.all", "B4.rama.fav",
                            "B4.rama.allow", "B4.rama.out"})
        EXPECT_THAT(cells_of(html, key), ElementsAre("?")) << key;
    for (const char* key : {"B4.meth", "B4.start", "B4.dpi", "B4.n.protein", "B4.b.pol"})
        EXPECT_THAT(cells_of(html, key), IsEmpty()) << key;
    EXPECT_THAT(cells_of(html, "B4.pdb"), ElementsAre("1abc"));
}

TEST(StructureRefinement, MethodsKeepTheirAcronyms)
{
    const auto method = [](const std::string& text) {
        return row("B4.meth", "_refine.pdbx_method_to_determine_struct '" + text + "'\n");
    };
    EXPECT_THAT(method("MOLECULAR REPLACEMENT"), ElementsAre("Molecular replacement"));
    EXPECT_THAT(method("SAD"), ElementsAre("SAD"));
    EXPECT_THAT(method("SIRAS, MOLECULAR REPLACEMENT"),
                ElementsAre("SIRAS, molecular replacement"));
    EXPECT_THAT(method("Fourier synthesis"), ElementsAre("Fourier synthesis"));
    EXPECT_THAT(row("B4.meth", "_phasing.method MAD\n"), ElementsAre("MAD"));
}

TEST(StructureRefinement, OuterShellIsChosenByResolution)
{
    const std::string head =
        "_refine.ls_d_res_low 30.0100\n_refine.ls_d_res_high 1.4500\n"
        "_refine.ls_R_factor_R_work 0.14300\nloop_\n_refine_ls_shell.d_res_high\n"
        "_refine_ls_shell.d_res_low\n_refine_ls_shell.R_factor_R_work\n";
    const std::string shells[] = {"1.4500 1.4900 0.2250\n", "2.0 2.1 0.2\n", "5.0 ? 0.15\n"};
    for (const std::string& order :
         {shells[0] + shells[1] + shells[2], shells[2] + shells[0] + shells[1]}) {
        EXPECT_THAT(row("B4.res", head + order), ElementsAre("30.01\u20131.45 (1.49\u20131.45)"));
        EXPECT_THAT(row("B4.rwork", head + order), ElementsAre("0.143 (0.225)"));
    }
}

// Programs differ on whether the observed reflections include the test set.
TEST(StructureRefinement, CountsOfReflectionsAreNeverMixed)
{
    const std::string free = "_refine.ls_number_reflns_R_free 313\n";
    const std::string observed =
        article(free + "_refine.ls_number_reflns_obs 2812\n_refine_ls_shell.d_res_high 1.45\n"
                       "_refine_ls_shell.number_reflns_R_work 194\n");
    EXPECT_THAT(cells_of(observed, "B4.nwork"), ElementsAre("2812"));
    EXPECT_EQ(label_of(observed, "B4.nwork"), "No. of reflections");
    const std::string working =
        article(free + "_refine.ls_number_reflns_obs 3125\n_refine.ls_number_reflns_R_work 2812\n"
                       "_refine_ls_shell.d_res_high 1.45\n"
                       "_refine_ls_shell.number_reflns_R_work 194\n"
                       "_refine_ls_shell.number_reflns_obs 217\n");
    EXPECT_THAT(cells_of(working, "B4.nwork"), ElementsAre("2812 (194)"));
    EXPECT_EQ(label_of(working, "B4.nwork"), "No. of reflections, working set");
    EXPECT_THAT(cells_of(working, "B4.ntest"), ElementsAre("313"));
}

TEST(StructureRefinement, SigmaCutoff)
{
    EXPECT_THAT(row("B4.sig", "_refine.pdbx_ls_sigma_F 0.000\n"),
                ElementsAre("<i>F</i> &gt; 0.000\u03C3(<i>F</i>)"));
    EXPECT_THAT(row("B4.sig", "_refine.pdbx_ls_sigma_F ?\n_refine.pdbx_ls_sigma_I 2\n"),
                ElementsAre("<i>I</i> &gt; 2\u03C3(<i>I</i>)"));
    EXPECT_THAT(row("B4.sig", "_refine.pdbx_ls_sigma_F .\n"), ElementsAre("\u2013"));
    EXPECT_THAT(row("B4.sig", "_refine.pdbx_ls_sigma_F none\n"), ElementsAre("none"));
}

std::string restraints(const std::string& rows)
{
    return "loop_\n_refine_ls_restr.type\n_refine_ls_restr.dev_ideal\n" + rows;
}

TEST(StructureRefinement, DeviationsByTheWholeNameOfTheirType)
{
    const std::string several = restraints("x_bond_d_na ?\nx_bond_d 0.0140\nx_angle_d ?\n"
                                           "x_angle_d_na ?\nx_angle_deg 1.90\n");
    EXPECT_THAT(row("B4.rb", several), ElementsAre("0.014"));
    EXPECT_THAT(row("B4.ra", several), ElementsAre("1.90"));
    EXPECT_THAT(row("B4.ra", restraints("r_angle_refined_deg ?\nf_angle_d 2.604\n")),
                ElementsAre("2.60"));
}

TEST(StructureRefinement, SomeAngleRestraintsAreDistances)
{
    EXPECT_THAT(row("B4.ra", restraints("s_bond_d 0.011\ns_angle_d 0.0360\n")),
                ElementsAre("0.036 \u00C5 (1,3 distance)"));
    EXPECT_THAT(row("B4.ra", restraints("p_angle_d 0.04\n")),
                ElementsAre("0.04 \u00C5 (1,3 distance)"));
    EXPECT_THAT(row("B4.ra", restraints("p_angle_d 0.04\np_angle_deg 1.5\n")), ElementsAre("1.5"));
}

const std::string entities = "loop_\n_entity.id\n_entity.type\n1 polymer\n2 polymer\n"
                             "3 non-polymer\n4 branched\n5 water\n"
                             "loop_\n_entity_poly.entity_id\n_entity_poly.type\n"
                             "1 'polypeptide(L)'\n2 polyribonucleotide\n";
const std::string atoms =
    "loop_\n_atom_site.type_symbol\n_atom_site.label_entity_id\n_atom_site.Cartn_x\n"
    "_atom_site.B_iso_or_equiv\n_atom_site.pdbx_PDB_model_num\n"
    "N 1 1.0 10.00 1\nC 1 1.0 20.50 1\nH 1 1.0 90 1\nD 1 1.0 90 1\nP 2 1.0 30.25 1\n"
    "ZN 3 1.0 40 1\nO 4 1.0 41 1\nC 4 1.0 42 1\nO 5 1.0 50.04 1\nO 5 1.0 50.05 1\n"
    "N 1 1.0 99 2\n";

TEST(StructureRefinement, AtomsAreCountedWhereTheFileDoesNot)
{
    const std::string html = article(entities + atoms);
    EXPECT_THAT(cells_of(html, "B4.n.protein"), ElementsAre("2"));
    EXPECT_THAT(cells_of(html, "B4.n.nucleic"), ElementsAre("1"));
    EXPECT_THAT(cells_of(html, "B4.n.carb"), ElementsAre("2"));
    EXPECT_THAT(cells_of(html, "B4.n.ligand"), ElementsAre("1"));
    EXPECT_THAT(cells_of(html, "B4.n.solvent"), ElementsAre("2"));
    EXPECT_THAT(cells_of(html, "B4.n.total"), ElementsAre("8"));
    EXPECT_THAT(cells_of(html, "B4.b.pol"), ElementsAre("20.3"));
    EXPECT_THAT(cells_of(html, "B4.b.lig"), ElementsAre("41.0"));
    EXPECT_THAT(cells_of(html, "B4.b.wat"), ElementsAre("50.0"));
    EXPECT_EQ(label_of(html, "B4.b.pol"), "Protein and nucleic acid");
    EXPECT_THAT(cells_of(html, "B4.b.all"), ElementsAre("?"));
}

TEST(StructureRefinement, LoneAtomMayStandInPairs)
{
    const std::string html =
        article("_entity.id 1\n_entity.type non-polymer\n_atom_site.type_symbol ZN\n"
                "_atom_site.label_entity_id 1\n_atom_site.Cartn_x 1.5\n"
                "_atom_site.B_iso_or_equiv 12.34\n");
    EXPECT_THAT(cells_of(html, "B4.n.total"), ElementsAre("1"));
    EXPECT_THAT(cells_of(html, "B4.b.lig"), ElementsAre("12.3"));
}

TEST(StructureRefinement, StatedCountsAreThoseOfTheLastCycle)
{
    const std::string cycles =
        "loop_\n_refine_hist.cycle_id\n_refine_hist.pdbx_number_atoms_protein\n"
        "_refine_hist.pdbx_number_atoms_nucleic_acid\n_refine_hist.number_atoms_total\n"
        "_refine_hist.pdbx_B_iso_mean_solvent\n";
    const std::string html =
        article(entities + atoms + cycles + "last 185 0 209 25.9200\n1 180 0 190 ?\n");
    EXPECT_THAT(cells_of(html, "B4.n.protein"), ElementsAre("185"));
    EXPECT_THAT(cells_of(html, "B4.n.nucleic"), IsEmpty());
    EXPECT_THAT(cells_of(html, "B4.n.solvent"), IsEmpty());
    EXPECT_THAT(cells_of(html, "B4.n.total"), ElementsAre("209"));
    EXPECT_THAT(cells_of(html, "B4.b.wat"), ElementsAre("25.9"));
    EXPECT_THAT(cells_of(html, "B4.b.lig"), ElementsAre("41.0"));
    EXPECT_THAT(row("B4.n.total", cycles + "0 1 0 2 ?\n1 180 0 190 ?\n"), ElementsAre("190"));
}

TEST(StructureRefinement, RamachandranOutliersOfTheFirstModel)
{
    EXPECT_THAT(row("B4.rama.out", "loop_\n_pdbx_validate_torsion.id\n"
                                   "_pdbx_validate_torsion.PDB_model_num\n1 1\n2 1\n3 2\n"),
                ElementsAre("2"));
}

TEST(StructureRefinement, ColumnForEachRefinement)
{
    const std::string html = article(
        "loop_\n_refine.pdbx_refine_id\n_refine.ls_R_factor_R_free\n'X-RAY DIFFRACTION' 0.2\n"
        "'NEUTRON DIFFRACTION' 0.25\nloop_\n_refine_ls_shell.pdbx_refine_id\n"
        "_refine_ls_shell.d_res_high\n_refine_ls_shell.R_factor_R_free\n"
        "'NEUTRON DIFFRACTION' 2.0 0.3\n'X-RAY DIFFRACTION' 1.5 0.28\n"
        "loop_\n_exptl.entry_id\n_exptl.method\n1abc 'X-RAY DIFFRACTION'\n"
        "1abc 'NEUTRON DIFFRACTION'\n");
    EXPECT_THAT(cells_of(html, "B4.rfree"), ElementsAre("0.2 (0.28)", "0.25 (0.3)"));
    EXPECT_THAT(html, HasSubstr("<th scope=\"col\">Neutron diffraction</th>"));
}

TEST(StructureRefinement, PdbCode)
{
    EXPECT_THAT(row("B4.pdb", "loop_\n_database_2.database_id\n_database_2.database_code\n"
                              "RCSB D_1\nPDB 5i55\n"),
                ElementsAre("5i55"));
    EXPECT_THAT(cells_of(article_of("data_x\n_entry.id pdb_00001abc\n"), "B4.pdb"),
                ElementsAre("pdb_00001abc"));
    EXPECT_THAT(cells_of(article_of("data_x\n_entry.id model\n"), "B4.pdb"), ElementsAre("?"));
}

} // namespace
} // namespace quillet
