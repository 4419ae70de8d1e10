#include "quillet/figure.h"

#include "quillet/label_placement.h"
#include "quillet/render_png.h"
#include "quillet/structure_drawing.h"
#include "quillet/structure_model.h"
#include "quillet/view_direction.h"
#include "tests/quillet/support.h"

#include <cmath>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <iterator>

namespace quillet
{
namespace
{

using test::document_of;
using test::Outcome;
using test::run_quillet;
using test::TemporaryFile;
using test::texts_of;
using testing::Contains;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

const std::string cell = "data_I\n_cell_length_a 10\n_cell_length_b 10\n_cell_length_c 10\n"
                         "_cell_angle_alpha 90\n_cell_angle_beta 90\n_cell_angle_gamma 90\n";
const std::string sites = "loop_\n_atom_site_label\n_atom_site_type_symbol\n_atom_site_fract_x\n"
                          "_atom_site_fract_y\n_atom_site_fract_z\n_atom_site_U_iso_or_equiv\n";

StructureModel model_of(const std::string& items, Notes* notes = nullptr)
{
    Notes dropped;
    const Document document = document_of(items);
    return asymmetric_unit(document.blocks.front(), notes ? *notes : dropped);
}

std::vector<std::string> bonds_of(const StructureModel& model)
{
    std::vector<std::string> bonds;
    for (const DrawnBond& bond : model.bonds)
        bonds.push_back(model.atoms[bond.first].label +
                        (bond.kind == DrawnBond::Kind::bond ? "-" : "...") +
                        model.atoms[bond.second].label);
    return bonds;
}

TEST(StructureModel, CoordinatesBecomeCartesian)
{
    const StructureModel model = model_of(
        "data_I\n_cell_length_a 4\n_cell_length_b 5\n_cell_length_c 6\n_cell_angle_gamma 60\n" +
        sites +
        "C1 C 0.5(1) 0.2 -.5 0.02\nC2 C ? 0 0 0.02\nC3 C 0 0 . 0.02\nC4 C 0 0 1e300 0.02\n");
    ASSERT_EQ(model.atoms.size(), 1U);
    EXPECT_NEAR(model.atoms[0].position.x, 2.5, 1e-9);
    EXPECT_NEAR(model.atoms[0].position.y, std::sqrt(3) / 2, 1e-9);
    EXPECT_NEAR(model.atoms[0].position.z, -3, 1e-9);
}

TEST(StructureModel, NothingWithoutCell)
{
    EXPECT_TRUE(model_of("data_I\n_cell_length_a 4\n" + sites + "C1 C 0 0 0 0.02\n").atoms.empty());
    EXPECT_TRUE(model_of("data_I\n_cell_length_a 4\n_cell_length_b 0\n_cell_length_c 5\n" + sites +
                         "C1 C 0 0 0 0.02\n")
                    .atoms.empty());
}

TEST(StructureModel, ElementsComeFromTypesOrLabels)
{
    const StructureModel model = model_of(cell + sites +
                                          "M1 Fe3+ 0 0 0 0.02\nCl1 ? 0 0 .3 0.02\n"
                                          "HA1 ? 0 .5 0 .02\nQ1 ? .5 0 0 .02\n");
    EXPECT_EQ(model.atoms[0].element, gemmi::El::Fe);
    EXPECT_EQ(model.atoms[1].element, gemmi::El::Cl);
    EXPECT_EQ(model.atoms[2].element, gemmi::El::H);
    EXPECT_EQ(model.atoms[3].element, gemmi::El::X);
}

TEST(StructureModel, BondsAreThoseListedBetweenAtomsAsTheyStand)
{
    const std::string atoms = sites + "C1 C 0 0 0 .02\nC2 C .15 0 0 .02\nC3 C 0 .15 0 .02\n"
                                      "O1 O .5 .5 .5 .02\n";
    const std::string list = "loop_\n_geom_bond_atom_site_label_1\n_geom_bond_atom_site_label_2\n"
                             "_geom_bond_distance\n_geom_bond_site_symmetry_2\n";
    EXPECT_THAT(bonds_of(model_of(cell + atoms + list +
                                  "C1 C2 1.5 .\nC1 C3 1.5 2_555\n"
                                  "C2 C1 1.5 1_555\nC1 O1 1.4 ?\nC1 X9 1 .\n")),
                testing::ElementsAre("C1-C2"));
    EXPECT_THAT(bonds_of(model_of(cell + atoms)), testing::ElementsAre("C1-C2", "C1-C3"));
}

TEST(StructureModel, HydrogenAtomsWithoutABondGetTheNearestAtom)
{
    EXPECT_THAT(bonds_of(model_of(cell + sites +
                                  "C1 C 0 0 0 .02\nC2 C .15 0 0 .02\nH1 H 0 .095 0 .03\n"
                                  "H2 H .5 .5 .5 .03\n"
                                  "loop_\n_geom_bond_atom_site_label_1\n"
                                  "_geom_bond_atom_site_label_2\nC1 C2\n")),
                testing::ElementsAre("C1-C2", "H1-C1"));
}

TEST(StructureModel, AlternativesOfADisorderAreNotBondedToEachOther)
{
    const StructureModel model = model_of(
        cell + "loop_\n_atom_site_label\n_atom_site_fract_x\n_atom_site_fract_y\n"
               "_atom_site_fract_z\n_atom_site_disorder_assembly\n_atom_site_disorder_group\n"
               "C1 0 0 0 . .\nF1 .13 0 0 A 1\nF2 .1 .08 0 A 2\nF3 0 0 .13 . -1\n");
    EXPECT_THAT(bonds_of(model), testing::ElementsAre("C1-F1", "C1-F2", "C1-F3"));
    EXPECT_FALSE(model.atoms[1].is_minor);
    EXPECT_TRUE(model.atoms[2].is_minor);
    EXPECT_TRUE(model.atoms[3].is_minor);
}

TEST(StructureModel, HydrogenBondsWithinTheAsymmetricUnit)
{
    const StructureModel model =
        model_of(cell + sites +
                 "O1 O 0 0 0 .02\nH1 H .085 0 0 .03\nO2 O .28 0 0 .02\n"
                 "loop_\n_geom_hbond_atom_site_label_D\n_geom_hbond_atom_site_label_H\n"
                 "_geom_hbond_atom_site_label_A\n_geom_hbond_site_symmetry_A\n"
                 "O1 H1 O2 .\nO1 H1 O2 2_555\n");
    EXPECT_THAT(bonds_of(model), testing::ElementsAre("O1-H1", "H1...O2"));
    EXPECT_TRUE(model.atoms[1].is_hydrogen_bond_donor_hydrogen);
}

const std::string aniso = "loop_\n_atom_site_aniso_label\n_atom_site_aniso_U_11\n"
                          "_atom_site_aniso_U_22\n_atom_site_aniso_U_33\n_atom_site_aniso_U_12\n"
                          "_atom_site_aniso_U_13\n_atom_site_aniso_U_23\n";

TEST(StructureModel, DisplacementTensorsAreCartesian)
{
    const StructureModel model =
        model_of(cell + sites + "C1 C 0 0 0 .02\n" + aniso + "C1 .01 .02 .03(1) .004 .005 .006\n");
    const auto& u = model.atoms[0].displacement;
    EXPECT_TRUE(model.has_ellipsoids);
    EXPECT_NEAR(u.u11, 0.01, 1e-9);
    EXPECT_NEAR(u.u33, 0.03, 1e-9);
    EXPECT_NEAR(u.u12, 0.004, 1e-9);
    EXPECT_NEAR(u.u23, 0.006, 1e-9);
}

TEST(StructureModel, IsotropicAtomInAnObliqueCellStaysASphere)
{
    // U(cif) of an isotropic atom in a hexagonal cell: U12 is half of U11.
    const StructureModel model =
        model_of("data_I\n_cell_length_a 5\n_cell_length_b 5\n_cell_length_c 7\n"
                 "_cell_angle_gamma 120\n" +
                 sites + "C1 C 0 0 0 .02\n" + aniso + "C1 .02 .02 .02 .01 0 0\n");
    const auto& u = model.atoms[0].displacement;
    EXPECT_NEAR(u.u11, 0.02, 1e-9);
    EXPECT_NEAR(u.u22, 0.02, 1e-9);
    EXPECT_NEAR(u.u12, 0, 1e-9);
}

TEST(StructureModel, ImpossibleEllipsoidsAreReported)
{
    Notes notes;
    const StructureModel model =
        model_of(cell + sites + "C1 C 0 0 0 .02\n" + aniso + "C1 .01 -.02 .03 0 0 0\n", &notes);
    EXPECT_FALSE(model.atoms[0].has_displacement);
    EXPECT_THAT(texts_of(notes), Contains(HasSubstr("C1")));
}

TEST(View, FlatMoleculeIsSeenFromAbove)
{
    std::vector<WeightedPoint> ring;
    for (int i = 0; i < 6; ++i) {
        const double t = i * std::acos(-1.0) / 3;
        ring.push_back({{1.4 * std::cos(t), 0.3, 1.4 * std::sin(t)}, 1});
    }
    const View view = most_spread_out_view(ring);
    EXPECT_GT(std::abs(view.toward_viewer.y), 0.99);
}

TEST(View, KeepsTheHandednessAndPutsTheLongestExtensionAcross)
{
    const View view = most_spread_out_view(
        {{{0, 0, 0}, 1}, {{0, 3, 0.1}, 1}, {{0.2, 6, 0}, 1}, {{1, 9, 0}, 1}, {{0, 10, 2}, 1}});
    EXPECT_NEAR(view.right.cross(view.up).dot(view.toward_viewer), 1, 1e-9);
    EXPECT_GT(std::abs(view.right.y), 0.9);
}

TEST(View, OnePointOrPointsInALineAreNoProblem)
{
    for (const auto& points :
         std::vector<std::vector<WeightedPoint>>{{},
                                                 {{{1, 2, 3}, 1}},
                                                 {{{0, 0, 0}, 1}, {{0, 0, 2}, 1}},
                                                 {{{1, 1, 1}, 1}, {{1, 1, 1}, 1}}}) {
        const View view = most_spread_out_view(points);
        EXPECT_NEAR(view.right.cross(view.up).dot(view.toward_viewer), 1, 1e-6);
    }
}

TEST(Labels, StandBesideTheirDiscsAndNotOnEachOther)
{
    const auto positions =
        place_labels({{{100, 100}, 20, "C1"}, {{140, 100}, 20, "C2"}, {{500, 500}, 5, ""}},
                     {{{100, 100}, {140, 100}, 4}}, 16);
    ASSERT_EQ(positions.size(), 3U);
    const auto distance = [](Point a, Point b) { return std::hypot(a.x - b.x, a.y - b.y); };
    EXPECT_GT(distance(positions[0], {100, 106}), 20);
    EXPECT_LT(distance(positions[0], {100, 106}), 60);
    EXPECT_GT(distance(positions[0], positions[1]), 16);
    EXPECT_EQ(positions[2].x, 500);
}

std::string read_whole(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

const std::string example = std::string(VEXA_SOURCE_DIR) + "/examples/small_molecule.cif";

TEST(Figure, ShowsAllAtomsAndLabels)
{
    const TemporaryFile out("", "out.svg");
    const Outcome outcome = run_quillet({"--figure", example, out.path()});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.err, "");
    const std::string svg = read_whole(out.path());
    EXPECT_THAT(svg, StartsWith("<svg xmlns="));
    EXPECT_THAT(svg, HasSubstr("50% probability level"));
    for (const char* label : {"C1", "C9", "O1W", "N1", "H1B", "H2W"})
        EXPECT_THAT(svg, HasSubstr(std::string("<g data-atom=\"") + label + "\">"));
    EXPECT_THAT(svg, HasSubstr(">O1W</text>"));
    EXPECT_THAT(svg, HasSubstr(">H3O</text>"));
    EXPECT_THAT(svg, Not(HasSubstr(">H1B</text>")));
    EXPECT_THAT(svg, Not(HasSubstr("nan")));
}

TEST(Figure, IsTheSameEveryTime)
{
    const TemporaryFile first("", "first.svg");
    const TemporaryFile second("", "second.svg");
    run_quillet({"--figure", example, first.path()});
    run_quillet({"--figure", example, second.path()});
    EXPECT_EQ(read_whole(first.path()), read_whole(second.path()));
}

TEST(Figure, CanBeAPng)
{
    const TemporaryFile out("", "out.png");
    EXPECT_EQ(run_quillet({"--figure", example, out.path()}).status, 0);
    const std::string png = read_whole(out.path());
    EXPECT_THAT(png, StartsWith("\x89PNG\r\n"));
    EXPECT_GT(png.size(), 10000U);
}

TEST(Figure, LabelsCannotBecomeMarkup)
{
    const TemporaryFile cif(cell + sites + "'<b>&\"' C 0 0 0 .02\n");
    const TemporaryFile out("", "out.svg");
    EXPECT_EQ(run_quillet({"--figure", cif.path(), out.path()}).status, 0);
    EXPECT_THAT(read_whole(out.path()), HasSubstr(">&lt;b&gt;&amp;&quot;</text>"));
    EXPECT_THAT(render_png(read_whole(out.path())), StartsWith("\x89PNG"));
}

TEST(Figure, OfANamedBlock)
{
    const TemporaryFile cif(cell + sites +
                            "C1 C 0 0 0 .02\ndata_II\n_cell_length_a 5\n"
                            "_cell_length_b 5\n_cell_length_c 5\n" +
                            sites + "N7 N 0 0 0 .02\n");
    const TemporaryFile out("", "out.svg");
    EXPECT_EQ(run_quillet({"--figure", cif.path(), out.path(), "--block=ii"}).status, 0);
    EXPECT_THAT(read_whole(out.path()), HasSubstr(">N7</text>"));
    const Outcome missing = run_quillet({"--figure", cif.path(), out.path(), "--block=III"});
    EXPECT_EQ(missing.status, 1);
    EXPECT_THAT(missing.err, HasSubstr("data_III"));
    EXPECT_THAT(read_whole(out.path()), HasSubstr(">N7</text>")); // the old one stays
}

TEST(Figure, FilesThatCannotBeWrittenAreErrors)
{
    const Outcome outcome = run_quillet({"--figure", example, "/nonexistent/folder/out.svg"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.err, StartsWith("quillet: /nonexistent/folder/out.svg: error: cannot be "
                                        "written: "));
    EXPECT_EQ(run_quillet({"--figure", example}).status, 2);
    EXPECT_EQ(run_quillet({"--figure", example, "out.gif"}).status, 2);
}

TEST(Figure, IsAnnouncedWhereTheCifHasNoCaptions)
{
    const std::string with_atoms = cell + sites + "C1 C 0 0 0 .02\n";
    EXPECT_THAT(test::article_of(with_atoms, "-htmPX"), HasSubstr("Fig. 1. The asymmetric unit"));
    EXPECT_THAT(test::article_of(cell, "-htmPX"), Not(HasSubstr("Fig. 1.")));
    EXPECT_THAT(test::article_of(with_atoms + "_publ_section_figure_captions Mine\n", "-htmPX"),
                Not(HasSubstr("asymmetric unit")));
}

} // namespace
} // namespace quillet
