// Which data item fills which cell: for every row of the tables the items that may fill it, in
// order of preference, and how the number 1.23456 is printed there.

#include "tests/quillet/support.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quillet
{
namespace
{

using test::article_of;
using test::cells_of;
using testing::ElementsAre;

struct RowCase {
    const char* key;
    std::vector<std::string> items; // the first that has a value wins
    // The cell, with % where the number before the decimal point stands.
    std::string printed = "%.23456";
    std::string other_items = ""; // that the row needs
};

void PrintTo(const RowCase& row, std::ostream* out)
{
    *out << row.key << " from " << row.items.front();
}

struct ArticleCase {
    const char* option;
    std::string head;
};

const ArticleCase small_molecule = {"-htmPX", "data_I\n_cell_length_b 7.1\n_cell_length_a 7.1\n"};
const ArticleCase macromolecule = {"-htmmo6", "data_x\n_entry.id x\n_entity.id 1\n"
                                              "_entity.type polymer\n"
                                              "_exptl_crystal_grow.crystal_id 1\n"};
const ArticleCase scattering = {"-sas", "data_x_MAIN\n_sas_scan.id 1\n"};

// The items before number `first` are unknown in different ways, the others have values: 1.23456
// the first of all, 2.23456 the second, and so on.
std::string cif_with_values_from(std::size_t first, const RowCase& row, const ArticleCase& article)
{
    std::string cif = article.head + row.other_items;
    for (std::size_t i = 0; i < row.items.size(); ++i) {
        const std::string value = std::to_string(i + 1) + ".23456";
        cif += row.items[i] + (i >= first ? " " + value : i % 2 == 0 ? " ?" : " ' ? '") + "\n";
    }
    return cif;
}

void expect_order(const RowCase& row, const ArticleCase& article)
{
    for (std::size_t first = 0; first < row.items.size(); ++first) {
        std::string expected = row.printed;
        expected.replace(expected.find('%'), 1, std::to_string(first + 1));
        const std::string html =
            article_of(cif_with_values_from(first, row, article), article.option);
        EXPECT_THAT(cells_of(html, row.key), ElementsAre(expected)) << row.items[first];
    }
}

class SmallMoleculeRow : public testing::TestWithParam<RowCase>
{
};

class MacromoleculeRow : public testing::TestWithParam<RowCase>
{
};

class ScatteringRow : public testing::TestWithParam<RowCase>
{
};

TEST_P(SmallMoleculeRow, IsFilledByTheFirstItemWithAValue)
{
    expect_order(GetParam(), small_molecule);
}

TEST_P(MacromoleculeRow, IsFilledByTheFirstItemWithAValue)
{
    expect_order(GetParam(), macromolecule);
}

TEST_P(ScatteringRow, IsFilledByTheFirstItemWithAValue)
{
    expect_order(GetParam(), scattering);
}

const std::string criterion = "_reflns_threshold_expression I>2\\s(I)\n";

INSTANTIATE_TEST_SUITE_P(
    CrystalData, SmallMoleculeRow,
    testing::Values(RowCase{"A.Mr", {"_chemical_formula_weight"}},
                    RowCase{"A.T",
                            {"_diffrn_ambient_temperature", "_diffrn_ambient_temp",
                             "_cell_measurement_temperature", "_cell_measurement_temp"}},
                    RowCase{"A.V", {"_cell_volume"}}, RowCase{"A.Z", {"_cell_formula_units_Z"}},
                    RowCase{"A.Zp", {"_cell.formula_units_Z_prime"}},
                    RowCase{"A.ang", {"_cell_angle_alpha"}, "%.23456, ?, ?"},
                    RowCase{"A.Dx", {"_exptl_crystal_density_diffrn"}, "%.235"},
                    RowCase{"A.F000", {"_exptl_crystal_F_000"}},
                    RowCase{"A.rad", {"_diffrn_radiation_type", "_diffrn_radiation_probe"}},
                    RowCase{"A.mu", {"_exptl_absorpt_coefficient_mu"}, "%.23"},
                    RowCase{"A.col", {"_exptl_crystal_colour"}, "%.23456, ?"},
                    RowCase{"A.col", {"_exptl_crystal_description"}, "?, %.23456"},
                    RowCase{"A.size", {"_exptl_crystal_size_max"}, "%.23 \u00D7 ? \u00D7 ?"},
                    RowCase{"A.size", {"_exptl_crystal_size_mid"}, "? \u00D7 %.23 \u00D7 ?"},
                    RowCase{"A.size", {"_exptl_crystal_size_min"}, "? \u00D7 ? \u00D7 %.23"},
                    RowCase{"A.size", {"_exptl_crystal_size_rad"}, "%.23 (radius)"},
                    RowCase{"A.size", {"_exptl_crystal_size_length"}, "%.23 (length)"}));

INSTANTIATE_TEST_SUITE_P(
    DataCollection, SmallMoleculeRow,
    testing::Values(
        RowCase{"A.diff",
                {"_diffrn_measurement_device_type", "_diffrn_measurement.device_make",
                 "_diffrn_measurement_device", "_diffrn_measurement.device_class"}},
        RowCase{"A.abs", {"_exptl_absorpt_correction_type"}},
        RowCase{"A.Tminmax", {"_exptl_absorpt_correction_T_min"}, "%.235, ?"},
        RowCase{"A.Tminmax", {"_exptl_absorpt_correction_T_max"}, "?, %.235"},
        RowCase{"A.refl", {"_diffrn_reflns_number"}, "%.23456, ?, ?", criterion},
        RowCase{
            "A.refl", {"_reflns_number_total", "_reflns_number_all"}, "?, %.23456, ?", criterion},
        RowCase{
            "A.refl", {"_reflns_number_gt", "_reflns_number_observed"}, "?, ?, %.23456", criterion},
        RowCase{"A.Rint", {"_diffrn_reflns_av_R_equivalents"}, "%.235"},
        RowCase{"A.thmax", {"_diffrn_reflns_theta_max"}, "%.23"},
        RowCase{
            "A.compl",
            {"_diffrn_measured_fraction_theta_full", "_diffrn_reflns_Laue_measured_fraction_full"},
            "%.235"}));

INSTANTIATE_TEST_SUITE_P(
    Refinement, SmallMoleculeRow,
    testing::Values(
        RowCase{"A.Rs", {"_refine_ls_R_factor_gt", "_refine_ls_R_factor_obs"}, "%.235, ?, ?"},
        RowCase{"A.Rs",
                {"_refine_ls_wR_factor_ref", "_refine_ls_wR_factor_all", "_refine_ls_wR_factor_gt",
                 "_refine_ls_wR_factor_obs"},
                "?, %.235, ?"},
        RowCase{"A.Rs",
                {"_refine_ls_goodness_of_fit_ref", "_refine_ls_goodness_of_fit_all",
                 "_refine_ls_goodness_of_fit_gt", "_refine_ls_goodness_of_fit_obs"},
                "?, ?, %.23"},
        RowCase{"A.nref", {"_refine_ls_number_reflns"}},
        RowCase{"A.npar", {"_refine_ls_number_parameters"}},
        RowCase{"A.nres", {"_refine_ls_number_restraints"}},
        RowCase{"A.H", {"_refine_ls_hydrogen_treatment"}},
        RowCase{"A.wt", {"_refine_ls_weighting_details", "_refine_ls_weighting_scheme"}},
        RowCase{"A.shift",
                {"_refine_ls_shift/su_max", "_refine_ls_shift/esd_max",
                 "_refine_ls.shift_over_su_max"}},
        RowCase{"A.drho", {"_refine_diff_density_max"}, "%.23, ?"},
        RowCase{"A.drho", {"_refine_diff_density_min"}, "?, %.23"},
        RowCase{"A.ext",
                {"_refine_ls_extinction_coef"},
                "Zachariasen; %.23456",
                "_refine_ls_extinction_method Zachariasen\n"},
        RowCase{"A.absst", {"_refine_ls_abs_structure_details"}},
        RowCase{"A.flack", {"_refine_ls_abs_structure_Flack", "_refine_ls_abs_structure_Rogers"}},
        RowCase{"A.dep", {"_database_code_depnum_ccdc_archive"}}));

INSTANTIATE_TEST_SUITE_P(
    Production, MacromoleculeRow,
    testing::Values(
        RowCase{"B1.org",
                {"_entity_src_gen.pdbx_gene_src_scientific_name",
                 "_entity_src_nat.pdbx_organism_scientific",
                 "_pdbx_entity_src_syn.organism_scientific", "_entity_src_gen.gene_src_common_name",
                 "_entity_src_nat.common_name"},
                "<i>%.23456</i>"},
        RowCase{"B1.dna", {"_entity_src_gen.gene_src_details", "_entity_src_gen.gene_src_tissue"}},
        RowCase{"B1.gene", {"_entity_src_gen.pdbx_gene_src_gene"}, "<i>%.23456</i>"},
        RowCase{"B1.cvec",
                {"_pdbx_entity_src_gen_clone.vector_name",
                 "_entity_src_gen.pdbx_gene_src_plasmid_name"}},
        RowCase{"B1.evec",
                {"_entity_src_gen.plasmid_name", "_entity_src_gen.pdbx_host_org_vector",
                 "_entity_src_gen.pdbx_host_org_vector_type"}},
        RowCase{"B1.host",
                {"_entity_src_gen.pdbx_host_org_scientific_name",
                 "_entity_src_gen.host_org_common_name"},
                "<i>%.23456</i>"},
        RowCase{"B1.host",
                {"_entity_src_gen.pdbx_host_org_strain", "_entity_src_gen.host_org_strain"},
                "<i>Pichia</i> %.23456",
                "_entity_src_gen.pdbx_host_org_scientific_name Pichia\n"},
        RowCase{"B1.seq",
                {"_entity_poly.pdbx_seq_one_letter_code_sample",
                 "_entity_poly.pdbx_seq_one_letter_code"},
                "<code>%.23456</code>"},
        RowCase{"B1.mut", {"_entity.pdbx_mutation"}}, RowCase{"B1.frag", {"_entity.pdbx_fragment"}},
        RowCase{"B1.uni",
                {"_struct_ref.pdbx_db_accession", "_struct_ref.db_code"},
                "UniProt %.23456",
                "_struct_ref.db_name UNP\n"},
        RowCase{"B1.mw", {"_entity.formula_weight"}}));

INSTANTIATE_TEST_SUITE_P(
    Crystallization, MacromoleculeRow,
    testing::Values(RowCase{"B2.meth", {"_exptl_crystal_grow.method"}},
                    RowCase{"B2.plate", {"_exptl_crystal_grow.apparatus"}},
                    RowCase{"B2.T", {"_exptl_crystal_grow.temp"}},
                    RowCase{"B2.pH",
                            {"_exptl_crystal_grow.pH", "_exptl_crystal_grow.pdbx_pH_range"}},
                    RowCase{"B2.res", {"_exptl_crystal_grow.pdbx_details"}},
                    RowCase{"B2.seed", {"_exptl_crystal_grow.seeding"}},
                    RowCase{"B2.time", {"_exptl_crystal_grow.time"}},
                    RowCase{"B2.cryo",
                            {"_pdbx_exptl_crystal_cryo_treatment.final_solution_details",
                             "_pdbx_exptl_crystal_cryo_treatment.soaking_details"}},
                    RowCase{"B2.det", {"_exptl_crystal_grow.details"}},
                    RowCase{"B2.vm", {"_exptl_crystal.density_Matthews"}, "%.23, ?"},
                    RowCase{"B2.vm", {"_exptl_crystal.density_percent_sol"}, "?, %.2"}));

INSTANTIATE_TEST_SUITE_P(
    Measurement, MacromoleculeRow,
    testing::Values(
        RowCase{"B3.src", {"_diffrn_source.type", "_diffrn_source.source"}},
        RowCase{"B3.wl",
                {"_diffrn_radiation_wavelength.wavelength", "_diffrn_source.pdbx_wavelength_list",
                 "_diffrn_source.pdbx_wavelength", "_diffrn_radiation.pdbx_wavelength_list",
                 "_diffrn_radiation.pdbx_wavelength"}},
        RowCase{"B3.T", {"_diffrn.ambient_temp"}}, RowCase{"B3.det", {"_diffrn_detector.type"}},
        RowCase{"B3.det", {"_diffrn_detector.detector"}},
        RowCase{"B3.date", {"_diffrn_detector.pdbx_collection_date"}},
        RowCase{"B3.dist", {"_diffrn_measurement.sample_detector_distance"}},
        RowCase{"B3.rot", {"_diffrn_scan_axis.angle_increment"}},
        RowCase{"B3.tot", {"_diffrn_scan_axis.angle_range"}},
        RowCase{"B3.exp", {"_diffrn_scan.integration_time", "_diffrn_scan_frame.integration_time"}},
        RowCase{"B3.nimg", {"_diffrn_detector.pdbx_frames_total", "_diffrn_scan.frames"}},
        RowCase{"B3.abc", {"_cell.length_b"}, "?, %.23, ?"},
        RowCase{"B3.ang", {"_cell.angle_beta"}, "?, %.23, ?"}, RowCase{"B3.Z", {"_cell.Z_PDB"}},
        RowCase{"B3.mos", {"_exptl_crystal.pdbx_mosaicity"}, "%.23"},
        RowCase{"B3.wil", {"_reflns.B_iso_Wilson_estimate"}, "%.2"}));

INSTANTIATE_TEST_SUITE_P(
    MergedData, MacromoleculeRow,
    testing::Values(RowCase{"B3.res", {"_reflns.d_resolution_low"}, "%.23\u2013?"},
                    RowCase{"B3.nmeas", {"_reflns.pdbx_number_measured_all"}},
                    RowCase{"B3.nuniq", {"_reflns.number_obs", "_reflns.number_all"}},
                    RowCase{"B3.compl", {"_reflns.percent_possible_obs"}, "%.2"},
                    RowCase{"B3.mult", {"_reflns.pdbx_redundancy"}, "%.2"},
                    RowCase{"B3.isig",
                            {"_reflns.pdbx_netI_over_sigmaI", "_reflns.pdbx_netI_over_av_sigmaI"},
                            "%.2"},
                    RowCase{"B3.rmerge",
                            {"_reflns.pdbx_Rmerge_I_obs", "_reflns.pdbx_Rmerge_I_all",
                             "_reflns.pdbx_Rsym_value"},
                            "%.235"},
                    RowCase{"B3.rrim", {"_reflns.pdbx_Rrim_I_all"}, "%.235"},
                    RowCase{"B3.rpim", {"_reflns.pdbx_Rpim_I_all"}, "%.235"},
                    RowCase{"B3.cc", {"_reflns.pdbx_CC_half"}, "%.235"},
                    RowCase{"B3.ccs", {"_reflns.pdbx_CC_star"}, "%.235"},
                    RowCase{"B3.split", {"_reflns.pdbx_R_split"}, "%.235"},
                    RowCase{"B3.ell", {"_reflns.pdbx_percent_possible_ellipsoidal"}, "%.2"}));

const std::string shell = "_reflns_shell.d_res_high 1.5\n";

INSTANTIATE_TEST_SUITE_P(
    OuterShellOfTheData, MacromoleculeRow,
    testing::Values(
        RowCase{"B3.res", {"_reflns_shell.d_res_low"}, "? (%.23\u20131.5)", shell},
        RowCase{"B3.nmeas",
                {"_reflns_shell.number_measured_obs", "_reflns_shell.number_measured_all"},
                "? (%.23456)",
                shell},
        RowCase{"B3.nuniq",
                {"_reflns_shell.number_unique_obs", "_reflns_shell.number_unique_all"},
                "? (%.23456)",
                shell},
        RowCase{"B3.compl",
                {"_reflns_shell.percent_possible_obs", "_reflns_shell.percent_possible_all"},
                "? (%.2)",
                shell},
        RowCase{"B3.mult", {"_reflns_shell.pdbx_redundancy"}, "? (%.2)", shell},
        RowCase{"B3.isig",
                {"_reflns_shell.meanI_over_sigI_obs", "_reflns_shell.pdbx_netI_over_sigmaI_obs",
                 "_reflns_shell.meanI_over_sigI_all", "_reflns_shell.pdbx_netI_over_sigmaI_all"},
                "? (%.2)",
                shell},
        RowCase{"B3.rmerge",
                {"_reflns_shell.Rmerge_I_obs", "_reflns_shell.Rmerge_I_all",
                 "_reflns_shell.pdbx_Rsym_value"},
                "? (%.235)",
                shell},
        RowCase{"B3.rrim", {"_reflns_shell.pdbx_Rrim_I_all"}, "? (%.235)", shell},
        RowCase{"B3.rpim", {"_reflns_shell.pdbx_Rpim_I_all"}, "? (%.235)", shell},
        RowCase{"B3.cc", {"_reflns_shell.pdbx_CC_half"}, "? (%.235)", shell},
        RowCase{"B3.ccs", {"_reflns_shell.pdbx_CC_star"}, "? (%.235)", shell},
        RowCase{"B3.split", {"_reflns_shell.pdbx_R_split"}, "? (%.235)", shell},
        RowCase{"B3.ell", {"_reflns_shell.pdbx_percent_possible_ellipsoidal"}, "? (%.2)", shell}));

INSTANTIATE_TEST_SUITE_P(
    Model, MacromoleculeRow,
    testing::Values(
        RowCase{"B4.meth", {"_refine.pdbx_method_to_determine_struct", "_phasing.method"}},
        RowCase{"B4.start", {"_refine.pdbx_starting_model"}},
        RowCase{"B4.res", {"_refine.ls_d_res_high"}, "?\u2013%.23"},
        RowCase{"B4.compl", {"_refine.ls_percent_reflns_obs"}, "%.2"},
        RowCase{"B4.sig", {"_refine.pdbx_ls_sigma_F"}, "<i>F</i> &gt; %.23456\u03C3(<i>F</i>)"},
        RowCase{"B4.sig", {"_refine.pdbx_ls_sigma_I"}, "<i>I</i> &gt; %.23456\u03C3(<i>I</i>)"},
        RowCase{"B4.nwork",
                {"_refine.ls_number_reflns_R_work", "_refine.ls_number_reflns_obs",
                 "_refine.ls_number_reflns_all"}},
        RowCase{"B4.ntest", {"_refine.ls_number_reflns_R_free"}},
        RowCase{
            "B4.rwork",
            {"_refine.ls_R_factor_R_work", "_refine.ls_R_factor_obs", "_refine.ls_R_factor_all"},
            "%.235"},
        RowCase{"B4.rfree", {"_refine.ls_R_factor_R_free"}, "%.235"},
        RowCase{"B4.dpi", {"_refine.overall_SU_R_Cruickshank_DPI"}, "%.235"},
        RowCase{"B4.n.protein", {"_refine_hist.pdbx_number_atoms_protein"}},
        RowCase{"B4.n.nucleic", {"_refine_hist.pdbx_number_atoms_nucleic_acid"}},
        RowCase{"B4.n.carb", {"_refine_hist.pdbx_number_atoms_carb"}},
        RowCase{"B4.n.lipid", {"_refine_hist.pdbx_number_atoms_lipid"}},
        RowCase{"B4.n.ligand", {"_refine_hist.pdbx_number_atoms_ligand"}},
        RowCase{"B4.n.solvent", {"_refine_hist.number_atoms_solvent"}},
        RowCase{"B4.n.total", {"_refine_hist.number_atoms_total"}},
        RowCase{"B4.b.all", {"_refine.B_iso_mean"}, "%.2"},
        RowCase{"B4.b.lig", {"_refine_hist.pdbx_B_iso_mean_ligand"}, "%.2"},
        RowCase{"B4.b.wat", {"_refine_hist.pdbx_B_iso_mean_solvent"}, "%.2"}));

const std::string refined_shell = "_refine_ls_shell.d_res_high 1.5\n";

INSTANTIATE_TEST_SUITE_P(
    OuterShellOfTheRefinement, MacromoleculeRow,
    testing::Values(
        RowCase{"B4.res", {"_refine_ls_shell.d_res_low"}, "? (%.23\u20131.5)", refined_shell},
        RowCase{"B4.compl", {"_refine_ls_shell.percent_reflns_obs"}, "? (%.2)", refined_shell},
        RowCase{"B4.nwork",
                {"_refine_ls_shell.number_reflns_R_work"},
                "7 (%.23456)",
                refined_shell + "_refine.ls_number_reflns_R_work 7\n"},
        RowCase{"B4.nwork",
                {"_refine_ls_shell.number_reflns_obs"},
                "7 (%.23456)",
                refined_shell + "_refine.ls_number_reflns_obs 7\n"},
        RowCase{"B4.nwork",
                {"_refine_ls_shell.number_reflns_all"},
                "7 (%.23456)",
                refined_shell + "_refine.ls_number_reflns_all 7\n"},
        RowCase{
            "B4.ntest", {"_refine_ls_shell.number_reflns_R_free"}, "? (%.23456)", refined_shell},
        RowCase{"B4.rwork",
                {"_refine_ls_shell.R_factor_R_work", "_refine_ls_shell.R_factor_obs",
                 "_refine_ls_shell.R_factor_all"},
                "? (%.235)",
                refined_shell},
        RowCase{"B4.rfree", {"_refine_ls_shell.R_factor_R_free"}, "? (%.235)", refined_shell}));

INSTANTIATE_TEST_SUITE_P(
    Sample, ScatteringRow,
    testing::Values(RowCase{"C1.title", {"_sas_scan.title"}},
                    RowCase{"C1.name", {"_sas_sample.name"}},
                    RowCase{"C1.mwc", {"_entity.formula_weight", "_sas_sample.sample_MW"}},
                    RowCase{"C1.ext", {"_sas_sample.ext_coefficient"}},
                    RowCase{"C1.vbar", {"_sas_sample.specific_vol"}},
                    RowCase{"C1.dryvol", {"_sas_sample.dry_vol"}},
                    RowCase{"C1.contr", {"_sas_sample.contrast"}},
                    RowCase{"C1.conc", {"_sas_sample.specimen_concentration"}},
                    RowCase{"C1.cmeth", {"_sas_sample.concentration_method"}},
                    RowCase{"C1.pur", {"_sas_sample.purity_method"}},
                    RowCase{"C1.pK", {"_sas_buffer.pK"}},
                    RowCase{"C1.bcom", {"_sas_buffer.comment"}}));

INSTANTIATE_TEST_SUITE_P(
    Collection, ScatteringRow,
    testing::Values(RowCase{"C2.inst", {"_sas_beam.instrument_city"}},
                    RowCase{"C2.src", {"_sas_beam.type_of_source", "_sas_beam.type"}},
                    RowCase{"C2.wl", {"_sas_beam.radiation_wavelength"}},
                    RowCase{"C2.geom", {"_sas_beam.shape"}},
                    RowCase{
                        "C2.dist",
                        {"_sas_beam.dist_spec_to_detc", "_sas_detc.sample_to_detector_distance"}},
                    RowCase{"C2.det", {"_sas_detc.name"}},
                    RowCase{"C2.pix", {"_sas_detc.pixsize_x", "_sas_detc.pixsize"}, "%234.56"},
                    RowCase{"C2.exp", {"_sas_scan.exposure_time"}, "%.23456, ?"},
                    RowCase{"C2.exp", {"_sas_scan.number_of_frames"}, "?, %.23456"},
                    RowCase{"C2.mode", {"_sas_result.type_of_curve"}},
                    RowCase{"C2.T", {"_sas_scan.cell_temperature", "_sas_sample.cell_temperature"}},
                    RowCase{"C2.Ts", {"_sas_scan.storage_temperature"}},
                    RowCase{"C2.thick", {"_sas_sample.thickness"}},
                    RowCase{"C2.date", {"_sas_scan.measurement_date"}},
                    RowCase{"C2.std", {"_sas_result.standard"}}));

INSTANTIATE_TEST_SUITE_P(
    Parameters, ScatteringRow,
    testing::Values(
        RowCase{"C4.gI0", {"_sas_result.I0_from_Guinier", "_sas_result.reciprocal_space_I0"}},
        RowCase{"C4.gRg", {"_sas_result.Rg_from_Guinier", "_sas_result.reciprocal_space_Rg"}},
        RowCase{"C4.pI0", {"_sas_result.I0_from_PR"}},
        RowCase{"C4.pRg", {"_sas_result.Rg_from_PR"}}, RowCase{"C4.dmax", {"_sas_result.D_max"}},
        RowCase{"C4.vp", {"_sas_result.Porod_volume"}},
        RowCase{"C4.vest", {"_sas_result.estimated_volume"}},
        RowCase{"C4.mexp", {"_sas_result.experimental_MW"}},
        RowCase{"C4.mstd", {"_sas_result.MW_standard"}},
        RowCase{"C4.mpor", {"_sas_result.MW_Porod"}}, RowCase{"C4.com", {"_sas_result.comments"}},
        RowCase{"C6.code", {"_sas_result.SASBDB_code"}}));

TEST(SpaceGroupRow, IsFilledByTheFirstItemWithAValue)
{
    const std::vector<std::pair<std::string, std::string>> items = {
        {"_space_group_name_H-M_alt 'P 2'", "<i>P</i>2"},
        {"_symmetry_space_group_name_H-M 'P m'", "<i>Pm</i>"},
        {"_space_group.name_H-M_full 'P c'", "<i>Pc</i>"},
        {"_space_group.name_H-M_ref 'C 2'", "<i>C</i>2"},
        {"_space_group_name_Hall '-P 2y'", "<i>P</i>2/<i>m</i>"},
        {"_space_group_IT_number 9", "<i>Cc</i>"}};
    for (std::size_t first = 0; first < items.size(); ++first) {
        std::string cif = small_molecule.head;
        for (std::size_t i = first; i < items.size(); ++i)
            cif += items[i].first + "\n";
        EXPECT_THAT(cells_of(article_of(cif, small_molecule.option), "A.cs_sg"),
                    ElementsAre("Monoclinic, " + items[first].second));
    }
}

} // namespace
} // namespace quillet
