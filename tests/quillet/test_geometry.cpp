#include "quillet/geometry.h"

#include "tests/quillet/support.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quillet
{
namespace
{

using test::article_of;
using test::document_of;
using test::readable;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

const std::string head = "data_I\n_cell_length_a 1\nloop_\n_symmetry_equiv_pos_as_xyz\nx,y,z\n"
                         "-x,-y,-z\n";

std::vector<std::string> geometry_of(const std::string& items,
                                     GeometrySelection selection = GeometrySelection::marked)
{
    Notes notes;
    const Document document = document_of(head + items);
    SymmetryCodes codes(document.blocks.front(), notes);
    std::vector<std::string> lines;
    for (const auto& parameter : selected_geometry(document.blocks.front(), selection, codes))
        lines.push_back(readable(parameter.label.str() + " " + parameter.value.str()));
    return lines;
}

std::vector<std::string> bonds_of(const std::string& items)
{
    Notes notes;
    const Document document = document_of(head + items);
    SymmetryCodes codes(document.blocks.front(), notes);
    std::vector<std::string> lines;
    for (const auto& bond : hydrogen_bonds(document.blocks.front(), codes))
        lines.push_back(readable(bond.label.str() + " | " + bond.donor_hydrogen.str() + " | " +
                                 bond.hydrogen_acceptor.str() + " | " + bond.donor_acceptor.str() +
                                 " | " + bond.angle.str()));
    return lines;
}

const std::string bonds = "loop_\n_geom_bond_atom_site_label_1\n_geom_bond_atom_site_label_2\n"
                          "_geom_bond_distance\n_geom_bond_site_symmetry_2\n_geom_bond_publ_flag\n";

TEST(SelectedGeometry, OnlyWhatIsMarked)
{
    EXPECT_THAT(geometry_of(bonds + "P1 O1 1.490(3) . y\nP1 O2 1.5 . Yes\nP1 O3 1.6 . n\n"
                                    "P1 O4 1.7 . ?\nP1 O5 1.8 . no\n"),
                ElementsAre("P1\u2014O1 1.490 (3)", "P1\u2014O2 1.5"));
}

TEST(SelectedGeometry, NothingIsMarkedWithoutFlags)
{
    const std::string items = "loop_\n_geom_bond_atom_site_label_1\n_geom_bond_atom_site_label_2\n"
                              "_geom_bond_distance\nC1 C2 1.5\n";
    EXPECT_THAT(geometry_of(items), IsEmpty());
    const std::string html = article_of(head + items, "-htmPX");
    EXPECT_THAT(html, Not(HasSubstr("Selected geometric parameters")));
    EXPECT_THAT(html, HasSubstr("marked for publication"));
}

TEST(SelectedGeometry, AllWithoutHydrogenOnDemand)
{
    const std::string sites =
        "loop_\n_atom_site_label\n_atom_site_type_symbol\nHo1 Ho\nH1 H\nDA D\n"
        "H2 ?\nC1 C\n";
    EXPECT_THAT(geometry_of(sites + bonds +
                                "C1 Ho1 2.3 . n\nC1 H1 0.95 . y\nC1 DA 0.95 . .\n"
                                "C1 H2 0.95 . ?\n",
                            GeometrySelection::without_hydrogen),
                ElementsAre("C1\u2014Ho1 2.3"));
}

TEST(SelectedGeometry, BondsThenAnglesThenTorsions)
{
    EXPECT_THAT(
        geometry_of("loop_\n_geom_torsion_atom_site_label_1\n_geom_torsion_atom_site_label_2\n"
                    "_geom_torsion_atom_site_label_3\n_geom_torsion_atom_site_label_4\n"
                    "_geom_torsion\n_geom_torsion_publ_flag\nC5 N1 C1 O1 -3.2(4) y\n"
                    "loop_\n_geom_angle_atom_site_label_1\n_geom_angle_atom_site_label_2\n"
                    "_geom_angle_atom_site_label_3\n_geom_angle_site_symmetry_3\n"
                    "_geom_angle.value\n_geom_angle_publ_flag\nO6 P1 O8 2_665 109.5(2) y\n" +
                    bonds + "P1 O1 1.490(3) 2_555 y\n"),
        ElementsAre("P1\u2014O1<sup>i</sup> 1.490 (3)", "O6\u2014P1\u2014O8<sup>ii</sup> 109.5 (2)",
                    "C5\u2014N1\u2014C1\u2014O1 \u22123.2 (4)"));
}

// A row of the loop with a symmetry code for each of its atoms.
std::string loop_with_codes(const std::string& prefix, const std::string& value,
                            const std::vector<std::string>& atoms)
{
    std::string loop = "loop_\n" + value + "\n" + prefix + "_publ_flag\n";
    std::string row = "1.5 y";
    for (const std::string& atom : atoms) {
        loop +=
            prefix + "_atom_site_label_" + atom + "\n" + prefix + "_site_symmetry_" + atom + "\n";
        row += " C" + atom + " 2_555";
    }
    return loop + row + "\n";
}

TEST(SelectedGeometry, EveryAtomHasItsSymmetryCode)
{
    EXPECT_THAT(geometry_of(loop_with_codes("_geom_bond", "_geom_bond_distance", {"1", "2"})),
                ElementsAre("C1<sup>i</sup>\u2014C2<sup>i</sup> 1.5"));
    EXPECT_THAT(geometry_of(loop_with_codes("_geom_angle", "_geom_angle", {"1", "2", "3"})),
                ElementsAre("C1<sup>i</sup>\u2014C2<sup>i</sup>\u2014C3<sup>i</sup> 1.5"));
    EXPECT_THAT(
        geometry_of(loop_with_codes("_geom_torsion", "_geom_torsion.angle", {"1", "2", "3", "4"})),
        ElementsAre("C1<sup>i</sup>\u2014C2<sup>i</sup>\u2014C3<sup>i</sup>\u2014C4<sup>i</sup> "
                    "1.5"));
    EXPECT_THAT(
        bonds_of(loop_with_codes("_geom_hbond", "_geom_hbond_distance_DA", {"D", "H", "A"})),
        ElementsAre("CD<sup>i</sup>\u2014CH<sup>i</sup>\u00B7\u00B7\u00B7CA<sup>i</sup> | ? | "
                    "? | 1.5 | ?"));
}

TEST(SelectedGeometry, RepeatedRowsStandOnce)
{
    EXPECT_THAT(geometry_of(bonds + "P1 O1 1.49 2_555 y\nP1 O1 1.49 2 y\nP1 O1 1.49 . y\n"
                                    "P1 O1 1.50 . y\n"),
                ElementsAre("P1\u2014O1<sup>i</sup> 1.49", "P1\u2014O1 1.49", "P1\u2014O1 1.50"));
}

TEST(SelectedGeometry, LabelsAreNotMarkup)
{
    EXPECT_THAT(geometry_of(bonds + "'C<1>' C^2^ 1.49 . y\n"),
                ElementsAre("C&lt;1&gt;\u2014C^2^ 1.49"));
}

std::size_t rows_of_many(std::size_t count, std::string& html)
{
    std::vector<GeometricParameter> parameters;
    for (std::size_t i = 0; i < count; ++i)
        parameters.push_back({escape("L" + std::to_string(i)), escape(std::to_string(i))});
    html = geometry_rows(parameters).str();
    std::size_t rows = 0;
    for (auto at = html.find("<tr"); at != std::string::npos; at = html.find("<tr", at + 1))
        ++rows;
    return rows;
}

TEST(SelectedGeometry, ManyStandSideBySideFromTheTopDown)
{
    std::string html;
    EXPECT_EQ(rows_of_many(8, html), 8U);
    EXPECT_EQ(rows_of_many(9, html), 5U);
    EXPECT_THAT(html, HasSubstr("<th scope=\"row\">L0</th><td>0</td><td>L5</td><td>5</td></tr>"));
    EXPECT_THAT(html, HasSubstr("<th scope=\"row\">L4</th><td>4</td><td colspan=\"2\">"));
}

const std::string hydrogen = "loop_\n_geom_hbond_atom_site_label_D\n_geom_hbond_atom_site_label_H\n"
                             "_geom_hbond_atom_site_label_A\n_geom_hbond_distance_DH\n"
                             "_geom_hbond_distance_HA\n_geom_hbond_distance_DA\n"
                             "_geom_hbond_angle_DHA\n_geom_hbond_site_symmetry_A\n";

TEST(HydrogenBonds, DigitsDependOnTheUncertainty)
{
    EXPECT_THAT(
        bonds_of(hydrogen + "O2 H2 O4 0.840 1.675 2.457(4) 147.61 2_555\n"
                            "N1 . O5 . ? 2.8712(14) 165.2(18) .\n"),
        ElementsAre("O2\u2014H2\u00B7\u00B7\u00B7O4<sup>i</sup> | 0.84 | 1.68 | 2.457 (4) | 148",
                    "N1\u2014\u2013\u00B7\u00B7\u00B7O5 | \u2013 | ? | 2.8712 (14) | 165.2 (18)"));
}

TEST(HydrogenBonds, FlagsSelectOrExclude)
{
    const std::string flagged = hydrogen + "_geom_hbond_publ_flag\n";
    const auto count = [&](const char* flags) {
        std::string rows;
        for (const char* flag = flags; *flag; ++flag)
            rows += std::string("O2 H2 O4 0.8 1.7 2.5 147 . ") + *flag + "\n";
        return bonds_of(flagged + rows).size();
    };
    EXPECT_EQ(count("y?n"), 1U);
    EXPECT_EQ(count("??n"), 2U);
    EXPECT_EQ(count("nn"), 0U);
}

TEST(HydrogenBonds, FormsThatNobodyFilledInAreNone)
{
    EXPECT_THAT(bonds_of(hydrogen + "? ? ? ? ? ? ? ?\n"), IsEmpty());
    EXPECT_THAT(bonds_of(hydrogen + ". . . . . . . .\n"), IsEmpty());
    EXPECT_THAT(article_of(head + hydrogen + "? ? ? ? ? ? ? ?\n", "-htmPX"),
                Not(HasSubstr("Hydrogen-bond geometry")));
}

TEST(HydrogenBonds, ShareTheNumeralsOfTheSelectedGeometry)
{
    const std::string html =
        readable(article_of(head + bonds + "P1 O1 1.490(3) 2_555 y\n" + hydrogen +
                                "O2 H2 O4 0.8 1.7 2.5 147 2_655\nO2 H2 O4 0.8 1.7 2.5 147 2_555\n",
                            "-htmPX"));
    EXPECT_THAT(html, HasSubstr("Table 2. Selected geometric parameters (\u00C5, \u00B0)"));
    EXPECT_THAT(html, HasSubstr("Symmetry codes: (i) \u2212<i>x</i>, \u2212<i>y</i>, "
                                "\u2212<i>z</i>.</p>"));
    EXPECT_THAT(html, HasSubstr("Symmetry codes: (i) \u2212<i>x</i>, \u2212<i>y</i>, "
                                "\u2212<i>z</i>; (ii) \u2212<i>x</i>+1, \u2212<i>y</i>, "
                                "\u2212<i>z</i>.</p>"));
}

TEST(GeometryTables, OneNoteTellsOfAllStructuresWithoutThem)
{
    const std::string rows = bonds + "P1 O1 1.490(3) . n\n";
    const std::string html = article_of(head + rows + "data_II\n_cell_length_a 1\n" + rows +
                                            "data_III\n_cell_length_a 1\n",
                                        "-htmPX");
    EXPECT_THAT(html, HasSubstr("torsion angle of data_I, data_II is marked for publication"));
    const auto first = html.find("is marked for publication");
    EXPECT_EQ(html.find("is marked for publication", first + 1), std::string::npos);
}

TEST(GeometryTables, OfSeveralStructuresTellWhose)
{
    const std::string other =
        "data_II\n_cell_length_a 1\nloop_\n_symmetry_equiv_pos_as_xyz\nx,y,z\n"
        "x+1/2,y,z\n";
    const std::string rows = bonds + "P1 O1 1.490(3) 2_555 y\n";
    const std::string html = readable(article_of(head + rows + other + rows, "-htmPX"));
    EXPECT_THAT(html,
                HasSubstr("Table 2. Selected geometric parameters (\u00C5, \u00B0) for (I)<"));
    EXPECT_THAT(html,
                HasSubstr("Table 3. Selected geometric parameters (\u00C5, \u00B0) for (II)<"));
    EXPECT_THAT(html, HasSubstr("(i) <i>x</i>+1/2, <i>y</i>, <i>z</i>.</p>"));
}

TEST(FractionalCoordinates, MarkIsotropicAtomsAndPartialOccupancies)
{
    const Document document =
        document_of(head + "loop_\n_atom_site_label\n_atom_site_fract_x\n_atom_site_fract_y\n"
                           "_atom_site_fract_z\n_atom_site_U_iso_or_equiv\n_atom_site_adp_type\n"
                           "_atom_site_occupancy\nC1 .1(2) 0 -0.25 0.02 Uani 1\n"
                           "H1 0.1 ? . 0.03 Uiso 0.5\n");
    const CoordinateTable table = fractional_coordinates(document.blocks.front());
    EXPECT_TRUE(table.has_occupancies);
    EXPECT_FALSE(table.has_displacement_b);
    EXPECT_EQ(readable(table.rows.str()),
              "<tr data-row=\"A.atom\"><th scope=\"row\">C1</th><td>0.1 (2)</td><td>0</td>"
              "<td>\u22120.25</td><td>0.02</td><td>1</td></tr>\n"
              "<tr data-row=\"A.atom\"><th scope=\"row\">H1</th><td>0.1</td><td>?</td>"
              "<td>\u2013</td><td>0.03*</td><td>0.5</td></tr>\n");
}

TEST(FractionalCoordinates, AreThereForTemplatesThatWantThem)
{
    const test::TemporaryFile cif(head + "loop_\n_atom_site_label\n_atom_site_fract_x\n"
                                         "_atom_site_B_iso_or_equiv\nC1 0.1 1.5\n");
    const test::TemporaryFile wanting(
        "{{>article_start}}{{#coordinate_tables}}[{{number}} {{structure}} {{#displacement_b}}B"
        "{{/displacement_b}} {{rows}}]{{/coordinate_tables}}{{>article_end}}",
        "wanting.html");
    const test::Outcome outcome =
        test::run_quillet({"-htmPX", cif.path(), "C", wanting.path(), "--warnings=none"});
    EXPECT_EQ(outcome.err, "");
    EXPECT_THAT(outcome.out, HasSubstr("[1  B <tr data-row=\"A.atom\">"));
}

} // namespace
} // namespace quillet
