#include "quillet/experimental_details.h"

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
using test::readable;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

// The cells of a row of the table that a structure with these items gets.
std::vector<std::string> row(const std::string& key, const std::string& items)
{
    return cells_of(article_of("data_I\n_cell_length_a 7.1(2)\n" + items, "-htmPX"), key);
}

std::string label(const std::string& key, const std::string& items)
{
    return label_of(article_of("data_I\n_cell_length_a 7.1(2)\n" + items, "-htmPX"), key);
}

std::string notes_of(const std::string& items)
{
    const std::string html =
        readable(article_of("data_I\n_cell_length_a 7.1(2)\n" + items, "-htmPX"));
    const auto start = html.find("<h1>Notes on the CIF");
    return start == std::string::npos ? "" : html.substr(start, html.find("</ul>") - start);
}

TEST(ExperimentalDetails, FormulaOfMoietiesOnlyIfItParses)
{
    EXPECT_THAT(row("A.formula", "_chemical_formula_sum 'C2 H6 O'\n"
                                 "_chemical_formula_moiety 'C2 H4, H2 O'\n"),
                ElementsAre("C<sub>2</sub>H<sub>4</sub>\u00B7H<sub>2</sub>O"));
    EXPECT_THAT(row("A.formula", "_chemical_formula_sum 'C2 H6 O'\n"
                                 "_chemical_formula_moiety '[C2 H4].H2O'\n"),
                ElementsAre("C<sub>2</sub>H<sub>6</sub>O"));
    EXPECT_THAT(notes_of("_chemical_formula_sum 'C2H6O'\n"),
                HasSubstr("formula could not be read"));
    EXPECT_THAT(row("A.formula", "_chemical_formula_IUPAC 'C2 H6 O'\n"),
                ElementsAre("C<sub>2</sub>H<sub>6</sub>O"));
}

TEST(ExperimentalDetails, SystemAndGroup)
{
    EXPECT_THAT(row("A.cs_sg", "_symmetry_cell_setting MONOCLINIC\n"
                               "_symmetry_space_group_name_H-M 'P 21/c'\n"),
                ElementsAre("Monoclinic, <i>P</i>2<sub>1</sub>/<i>c</i>"));
    EXPECT_THAT(row("A.cs_sg", "_space_group_name_H-M_alt 'P b c a'\n"
                               "_symmetry_space_group_name_H-M 'P 1'\n"),
                ElementsAre("Orthorhombic, <i>Pbca</i>"));
    EXPECT_THAT(row("A.cs_sg", "_symmetry_space_group_name_Hall '-P 2ybc'\n"),
                ElementsAre("Monoclinic, <i>P</i>2<sub>1</sub>/<i>c</i>"));
    EXPECT_THAT(row("A.cs_sg", "_symmetry_Int_Tables_number 19\n"),
                ElementsAre("Orthorhombic, <i>P</i>2<sub>1</sub>2<sub>1</sub>2<sub>1</sub>"));
    EXPECT_THAT(row("A.cs_sg", "_space_group_crystal_system trigonal\n"),
                ElementsAre("Trigonal, ?"));
    EXPECT_THAT(row("A.cs_sg", ""), ElementsAre("?"));
}

TEST(ExperimentalDetails, SuperspaceAndMagneticGroupsAreNamed)
{
    EXPECT_THAT(row("A.cs_sg", "_space_group_crystal_system monoclinic\n"
                               "_space_group_ssg_name 'I2/c(\\a0\\g)0s'\n"),
                ElementsAre("Monoclinic, I2/c(\u03B10\u03B3)0s"));
    EXPECT_THAT(row("A.cs_sg", "_space_group_magn.name_BNS \"C2'/c'\"\n"),
                ElementsAre("?, C2'/c'"));
}

TEST(ExperimentalDetails, DoubtfulGroupsAreReported)
{
    EXPECT_THAT(notes_of("_symmetry_space_group_name_H-M P_1\n"), HasSubstr("not known"));
    EXPECT_THAT(notes_of("_symmetry_space_group_name_H-M 'P 21/c'\n_space_group_IT_number 15\n"),
                HasSubstr("does not agree"));
    EXPECT_THAT(notes_of("_symmetry_space_group_name_H-M 'P 21/n'\n_space_group_IT_number 14\n"),
                Not(HasSubstr("does not agree")));
}

TEST(ExperimentalDetails, Cell)
{
    const std::string cell = "_cell_length_b 8.12\n_cell_length_c .\n_cell_angle_alpha 90.00\n"
                             "_cell_angle_beta 95.1470(10)\n_cell_angle_gamma 90\n";
    EXPECT_THAT(row("A.abc", cell), ElementsAre("7.1 (2), 8.12, \u2013"));
    EXPECT_THAT(row("A.ang", cell), ElementsAre("90, 95.1470 (10), 90"));
    EXPECT_THAT(row("A.ang", ""), ElementsAre("?"));
}

TEST(ExperimentalDetails, SeparateUncertaintiesOfTheNewDictionary)
{
    const std::string html = article_of(
        "data_I\n_cell.length_a 39.374\n_cell.length_a_su 0.012\n_cell.length_b 8.1\n", "-htmPX");
    EXPECT_THAT(cells_of(html, "A.abc"), ElementsAre("39.374 (12), 8.1, ?"));
}

TEST(ExperimentalDetails, TemperatureHasNoUncertainty)
{
    EXPECT_THAT(row("A.T", "_cell_measurement_temperature 150(2)\n"), ElementsAre("150"));
    EXPECT_THAT(row("A.T", "_diffrn_ambient_temperature ?\n_cell_measurement_temperature 99\n"),
                ElementsAre("99"));
}

TEST(ExperimentalDetails, CrystalSize)
{
    EXPECT_THAT(row("A.size", "_exptl_crystal_size_max .25\n_exptl_crystal_size_mid 0.1\n"
                              "_exptl_crystal_size_min 0.0005\n"),
                ElementsAre("0.25 \u00D7 0.1 \u00D7 0.0005"));
    EXPECT_THAT(row("A.size", "_exptl_crystal_size_max 0.3\n"),
                ElementsAre("0.3 \u00D7 ? \u00D7 ?"));
    EXPECT_THAT(row("A.size", "_exptl_crystal_size_rad 0.15\n"), ElementsAre("0.15 (radius)"));
}

TEST(Radiation, CharacteristicLinesInAllSpellings)
{
    for (const char* text :
         {"MoK\\a", "Mo K\\a", "Mo-K\\a", "MoKa", "MoKalpha", "Mo-Kalpha", "Molybdenum K\\a",
          "MoK\\a\r", "'Mo K\\a'", "Mo K\u03B1", "moK\\alpha"}) {
        const auto html = format_characteristic_radiation(text);
        ASSERT_TRUE(html) << text;
        EXPECT_EQ(html->str(), "Mo <i>K</i>\u03B1") << text;
    }
    EXPECT_EQ(format_characteristic_radiation("MoK\\a~1~")->str(), "Mo <i>K</i>\u03B1<sub>1</sub>");
    EXPECT_EQ(format_characteristic_radiation("Cu K\\a1")->str(), "Cu <i>K</i>\u03B1<sub>1</sub>");
    EXPECT_EQ(format_characteristic_radiation("Ga K\\a")->str(), "Ga <i>K</i>\u03B1");
    for (const char* text : {"synchrotron", "neutron", "Mo", "Ag K-L~2,3~", "X-ray", ""})
        EXPECT_FALSE(format_characteristic_radiation(text)) << text;
}

TEST(Radiation, OtherRadiationHasItsWavelength)
{
    EXPECT_THAT(row("A.rad", "_diffrn_radiation_type synchrotron\n"
                             "_diffrn_radiation_wavelength 0.6889\n"),
                ElementsAre("Synchrotron, \u03BB = 0.6889 \u00C5"));
    EXPECT_THAT(
        row("A.rad", "_diffrn_radiation_type MoK\\a\n_diffrn_radiation_wavelength .71073\n"),
        ElementsAre("Mo <i>K</i>\u03B1"));
    EXPECT_THAT(row("A.rad", "_diffrn_radiation_type ?\n_diffrn_radiation_probe neutron\n"),
                ElementsAre("Neutron"));
    EXPECT_THAT(row("A.rad", "_diffrn_radiation_wavelength 0.5\n"),
                ElementsAre("\u03BB = 0.5 \u00C5"));
    EXPECT_THAT(row("A.rad", ""), ElementsAre("?"));
}

TEST(Radiation, WavelengthOfLargestWeight)
{
    EXPECT_THAT(row("A.rad", "_diffrn_radiation_type x\nloop_\n_diffrn_radiation_wavelength_id\n"
                             "_diffrn_radiation_wavelength\n_diffrn_radiation_wavelength_wt\n"
                             "1 1.5443 0.5\n2 1.5405 1.0\n"),
                ElementsAre("X, \u03BB = 1.5405 \u00C5"));
}

TEST(ExperimentalDetails, AbsorptionCorrection)
{
    EXPECT_THAT(row("A.abs", "_exptl_absorpt_correction_type multi-scan\n"
                             "_exptl_absorpt_process_details '(Prog; Author, 2000)'\n"),
                ElementsAre("Multi-scan (Prog; Author, 2000)"));
    EXPECT_THAT(row("A.abs", "_exptl_absorpt_correction_type '\\y scans'\n"
                             "_exptl_absorpt_process_details 'North et al.'\n"),
                ElementsAre("\u03C8 scans, North et al."));
    const std::string none =
        "_exptl_absorpt_correction_type none\n"
        "_exptl_absorpt_process_details x\n_exptl_absorpt_correction_T_min 0.9\n";
    EXPECT_THAT(row("A.abs", none), ElementsAre("None"));
    EXPECT_THAT(row("A.Tminmax", none), IsEmpty());
    EXPECT_THAT(row("A.Tminmax", "_exptl_absorpt_correction_T_min 0.84412\n"
                                 "_exptl_absorpt_correction_T_max .9\n"),
                ElementsAre("0.844, 0.9"));
}

std::string criterion(std::string_view text)
{
    const auto result = parse_criterion(text);
    return result ? readable(result->html.str()) : "none";
}

TEST(Criterion, IsReadInAllSpellings)
{
    for (const char* text : {"I>2\\s(I)", "I > 2\\s(I)", "'I > 2\\s(I)'", ">2sigma(I)", ">2\\s(I)",
                             "[I>2.0\\s(I)]", "I>2.00u(I)", "I>2*\\sigma(I)", "I>=2u(I)", ">2\\s"})
        EXPECT_EQ(criterion(text), "<i>I</i> &gt; 2\u03C3(<i>I</i>)") << text;
    EXPECT_EQ(criterion("I>3.00u(I)"), "<i>I</i> &gt; 3\u03C3(<i>I</i>)");
    EXPECT_EQ(criterion("F^2^>2.0\\s(F^2^)"),
              "<i>F</i><sup>2</sup> &gt; 2\u03C3(<i>F</i><sup>2</sup>)");
    EXPECT_EQ(criterion("F>4s(F)"), "<i>F</i> &gt; 4\u03C3(<i>F</i>)");
    EXPECT_EQ(criterion("I>\\s(I)"), "<i>I</i> &gt; \u03C3(<i>I</i>)");
    EXPECT_EQ(criterion("refl_observed"), "none");
}

TEST(Criterion, StandsInTheLabels)
{
    const std::string three = "_reflns_threshold_expression I>3\\s(I)\n";
    EXPECT_EQ(label("A.refl", three),
              "No. of measured, independent and observed [<i>I</i> &gt; 3\u03C3(<i>I</i>)] "
              "reflections");
    EXPECT_EQ(label("A.Rs", three),
              "<i>R</i>[<i>F</i><sup>2</sup> &gt; 3\u03C3(<i>F</i><sup>2</sup>)], "
              "<i>wR</i>(<i>F</i><sup>2</sup>), <i>S</i>");
    EXPECT_EQ(label("A.Rs", "_refine_ls_structure_factor_coef F\n"),
              "<i>R</i>[<i>F</i> &gt; 2\u03C3(<i>F</i>)], <i>wR</i>(<i>F</i>), <i>S</i>");
    EXPECT_THAT(notes_of(""), HasSubstr("counts as observed"));
}

TEST(Criterion, StandsInTheCellsWhereColumnsDiffer)
{
    const std::string html = article_of(
        "data_I\n_cell_length_a 1\n_reflns_threshold_expression I>2\\s(I)\n_reflns_number_gt 5\n"
        "data_II\n_cell_length_a 1\n_reflns_threshold_expression I>3\\s(I)\n"
        "data_III\n_cell_length_a 1\n",
        "-htmPX");
    EXPECT_EQ(label_of(html, "A.refl"), "No. of measured, independent and observed reflections");
    EXPECT_THAT(cells_of(html, "A.refl"), ElementsAre("?, ?, 5 [<i>I</i> &gt; 2\u03C3(<i>I</i>)]",
                                                      "? [<i>I</i> &gt; 3\u03C3(<i>I</i>)]", "?"));
    EXPECT_THAT(label_of(html, "A.Rs"), HasSubstr("&gt; <i>n</i>\u03C3("));
}

TEST(Criterion, UnusualFormIsPrintedAndReported)
{
    const std::string odd = "_reflns_observed_criterion 'refl observed if I > 2.5 sigma(I)'\n";
    EXPECT_THAT(label("A.refl", odd), HasSubstr("[refl observed if I &gt; 2.5 sigma(I)]"));
    EXPECT_THAT(notes_of(odd), HasSubstr("unusual form"));
}

TEST(ExperimentalDetails, Residuals)
{
    EXPECT_THAT(row("A.Rs",
                    "_refine_ls_R_factor_gt .03834\n_refine_ls_wR_factor_ref ?\n"
                    "_refine_ls_wR_factor_all 0.1\n_refine_ls_goodness_of_fit_ref 1.0449\n"),
                ElementsAre("0.038, 0.1, 1.04"));
}

TEST(ExperimentalDetails, OptionalRowsNeedAValue)
{
    EXPECT_THAT(row("A.Dx", ""), IsEmpty());
    EXPECT_THAT(row("A.Dx", "_exptl_crystal_density_diffrn 1.62109\n"), ElementsAre("1.621"));
    EXPECT_THAT(row("A.nres", "_refine_ls_number_restraints 0\n"), IsEmpty());
    EXPECT_THAT(row("A.nres", "_refine_ls_number_restraints 4\n"), ElementsAre("4"));
    EXPECT_THAT(row("A.ext", "_refine_ls_extinction_method none\n"), IsEmpty());
    EXPECT_THAT(row("A.ext", "_refine_ls_extinction_method SHELXL\n"
                             "_refine_ls_extinction_coef .013(8)\n"),
                ElementsAre("SHELXL; 0.013 (8)"));
    EXPECT_THAT(row("A.wt", "_refine_ls_weighting_scheme calc\n"), IsEmpty());
    EXPECT_THAT(row("A.wt", "_refine_ls_weighting_scheme w=1\n"), ElementsAre("w=1"));
    EXPECT_THAT(row("A.shift", "_refine_ls_shift/su_max_lt 0.001\n"), ElementsAre("&lt;0.001"));
    EXPECT_THAT(row("A.shift", "_refine_ls_shift/su_max_lt <0.001\n"), ElementsAre("&lt;0.001"));
    EXPECT_THAT(row("A.shift", "_refine_ls_shift/su_max <0.001\n"), ElementsAre("&lt;0.001"));
    EXPECT_THAT(row("A.Zp", "_cell.formula_units_Z_prime 0.5\n"), ElementsAre("0.5"));
    EXPECT_THAT(notes_of(""), HasSubstr("_exptl_crystal_density_diffrn"));
}

TEST(ExperimentalDetails, ComputedResolution)
{
    EXPECT_THAT(
        row("A.stl", "_diffrn_reflns_theta_max 29.83\n_diffrn_radiation_wavelength 0.71073\n"),
        ElementsAre("0.700"));
    EXPECT_THAT(row("A.stl", "_diffrn_reflns_theta_max 29.83\n"), IsEmpty());
}

TEST(ExperimentalDetails, HydrogenTreatment)
{
    EXPECT_THAT(row("A.H", "_refine_ls_hydrogen_treatment constr\n"),
                ElementsAre("H-atom parameters constrained"));
    EXPECT_THAT(row("A.H", "_refine_ls_hydrogen_treatment heteroU-mixed\n"),
                ElementsAre("H on C and of some heteroatoms constrained, only <i>U</i> of H on "
                            "remaining heteroatoms refined"));
    EXPECT_THAT(row("A.H", "_refine_ls_hydrogen_treatment 'see text'\n"), ElementsAre("see text"));
    EXPECT_THAT(row("A.H", "_refine_ls_hydrogen_treatment ?\n"), IsEmpty());
    EXPECT_THAT(row("A.H", "_refine_ls_hydrogen_treatment ?\nloop_\n_atom_site_label\n"
                           "_atom_site_type_symbol\nC1 C\nH1 H\n"),
                ElementsAre("?"));
}

TEST(ExperimentalDetails, OnlyWhatTheStructureCouldHaveIsMissed)
{
    const std::string polar = "_space_group_name_H-M_alt 'P 21'\n";
    const std::string centred = "_space_group_name_H-M_alt 'P 21/c'\n";
    EXPECT_THAT(notes_of(polar), HasSubstr("_refine_ls_abs_structure_Flack"));
    EXPECT_THAT(notes_of(centred), Not(HasSubstr("_refine_ls_abs_structure")));
    EXPECT_THAT(notes_of(centred + "data_II\n_cell_length_a 1\n" + polar),
                HasSubstr("_refine_ls_abs_structure_Flack"));
    EXPECT_THAT(row("A.flack", centred + "_refine_ls_abs_structure_Flack 0.1(2)\n"),
                ElementsAre("0.1 (2)"));

    const std::string atoms = "loop_\n_atom_site_label\n_atom_site_type_symbol\nC1 C\n";
    EXPECT_THAT(notes_of(""), HasSubstr("_refine_ls_hydrogen_treatment"));
    EXPECT_THAT(notes_of(atoms), Not(HasSubstr("_refine_ls_hydrogen_treatment")));

    EXPECT_THAT(notes_of(""), Not(HasSubstr("_cell_formula_units_Z_prime")));
    EXPECT_THAT(notes_of("_diffrn_radiation_wavelength 0.71\n"),
                Not(HasSubstr("_diffrn_radiation_wavelength")));
    EXPECT_THAT(notes_of("_diffrn_reflns_theta_max 25\n"),
                HasSubstr("_diffrn_radiation_wavelength"));
}

TEST(ExperimentalDetails, QuantitiesThatDifferAreToldOnce)
{
    const std::string on_f = "_refine_ls_structure_factor_coef F\n";
    const std::string notes =
        notes_of("data_II\n_cell_length_a 1\n" + on_f + "data_III\n_cell_length_a 1\n" + on_f);
    const auto first = notes.find("refined on the same quantity");
    ASSERT_NE(first, std::string::npos);
    EXPECT_EQ(notes.find("refined on the same quantity", first + 1), std::string::npos);
}

TEST(ExperimentalDetails, StructuresAreColumnsWithHeadings)
{
    const std::string html =
        article_of("data_global\n_publ_section_title x\ndata_I\n_cell_length_a 1\n_cell_volume 10\n"
                   "data_my_compound\n_cell_length_a 2\n_exptl_crystal_F_000 8\n",
                   "-htmPX");
    EXPECT_THAT(html, HasSubstr("<th scope=\"col\">(I)</th><th scope=\"col\">my compound</th>"));
    EXPECT_THAT(cells_of(html, "A.V"), ElementsAre("10", "?"));
    EXPECT_THAT(cells_of(html, "A.F000"), ElementsAre("?", "8"));
}

TEST(ExperimentalDetails, FileOfTextAloneHasAColumnOfQuestionMarks)
{
    const std::string html = article_of("data_global\n_publ_section_title x\n", "-htmPX");
    EXPECT_THAT(cells_of(html, "A.formula"), ElementsAre("?"));
    EXPECT_THAT(html, Not(HasSubstr("<thead>")));
}

TEST(ComputerPrograms, AreJoinedInOneLine)
{
    const std::string html =
        readable(article_of("data_global\n_computing_data_collection 'Collect 1.0.'\n"
                            "data_I\n_cell_length_a 1\n_computing_structure_solution\n;\nSHELXT\n "
                            "(Sheldrick, 2015<i>a</i>)\n;\n"
                            "_computing_molecular_graphics ?\n",
                            "-htmPX"));
    EXPECT_THAT(html,
                HasSubstr(">Computer programs: data collection: Collect 1.0; program(s) used to "
                          "solve structure: SHELXT (Sheldrick, 2015<i>a</i>).</p>"));
}

TEST(ComputerPrograms, DifferencesAreToldApart)
{
    const std::string html =
        readable(article_of("data_I\n_cell_length_a 1\n_computing_cell_refinement A\n"
                            "_computing_structure_solution S\n"
                            "data_II\n_cell_length_a 1\n_computing_cell_refinement B\n"
                            "_computing_structure_solution S\n",
                            "-htmPX"));
    EXPECT_THAT(html, HasSubstr("cell refinement: A for (I); B for (II); program(s) used to solve "
                                "structure: S."));
}

} // namespace
} // namespace quillet
