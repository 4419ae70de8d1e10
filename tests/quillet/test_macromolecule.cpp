// The articles on macromolecules as wholes: which sections they have for which kind of file.

#include "tests/quillet/support.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quillet
{
namespace
{

using test::article_of;
using test::cells_of;
using test::readable;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

std::string article(const std::string& items, const std::string& option = "-htmmo6")
{
    return readable(article_of("data_x\n_entry.id 1abc\n" + items, option));
}

const std::string whole =
    "_struct.title 'A structure.'\n_exptl.method 'X-RAY DIFFRACTION'\n"
    "_refine.ls_R_factor_R_free 0.2\n_refine.ls_R_factor_R_work 0.18\n"
    "_database_2.database_id PDB\n_database_2.database_code 1ABC\n"
    "_database_2.pdbx_DOI 10.2210/pdb1abc/pdb\n"
    "_pdbx_database_related.db_name EMDB\n_pdbx_database_related.db_id EMD-1\n"
    "_struct_keywords.text 'N,N-dimethyl, Kinase'\n_struct_keywords.pdbx_keywords KINASE\n"
    "loop_\n_software.name\n_software.version\n_software.classification\n"
    "_software.pdbx_ordinal\nREFMAC 5.8 refinement 4\nXSCALE ? 'data scaling' 2\n"
    "XDS . 'data processing' 1\nEXTRACT 1 'data extraction' 6\n"
    "PHENIX (PHENIX.REFINE) refinement 5\nSHELXD ? phasing 3\nMAGIC ? 'coffee making' 7\n"
    "loop_\n_entity.id\n_entity.type\n_entity.pdbx_description\n1 polymer Kinase\n"
    "2 water water\n3 non-polymer 'ZINC ION'\n"
    "loop_\n_pdbx_entity_nonpoly.entity_id\n_pdbx_entity_nonpoly.comp_id\n2 HOH\n3 ZN\n"
    "loop_\n_chem_comp.id\n_chem_comp.formula\nZN 'Zn 2'\nHOH 'H2 O'\n"
    "loop_\n_struct_asym.id\n_struct_asym.entity_id\nA 1\nB 1\nC 3\nD 2\n"
    "_entity_poly.entity_id 1\n_entity_poly.pdbx_strand_id A,B\n";

TEST(Macromolecule, FullArticle)
{
    const std::string html = article(whole);
    EXPECT_THAT(html, HasSubstr("<a name=\"vexa_title\">A structure</a>"));
    EXPECT_THAT(html, HasSubstr("<b>Keywords:</b> N; N-dimethyl; Kinase<"));
    EXPECT_THAT(html, HasSubstr("PDB reference: 1ABC, https://doi.org/10.2210/pdb1abc/pdb; "
                                "related entries: EMDB EMD-1<"));
    EXPECT_THAT(html, HasSubstr("Software: data reduction, XDS; data scaling, XSCALE; phasing, "
                                "SHELXD; refinement, REFMAC 5.8, PHENIX (PHENIX.REFINE); coffee "
                                "making, MAGIC.</p>"));
    EXPECT_THAT(html, Not(HasSubstr("EXTRACT")));
    EXPECT_THAT(html, HasSubstr("<h2>Structure solution and refinement</h2>\n<p>?</p>"));
}

TEST(Macromolecule, EntitiesWithWaterLast)
{
    const std::string html = article(whole);
    const auto ion = html.find("<th scope=\"row\">3</th><td>non-polymer</td><td>ZINC ION</td>"
                               "<td>ZN</td><td>?</td><td>C</td><td>?</td>"
                               "<td>Zn<sup>2+</sup></td>");
    const auto water = html.find("<th scope=\"row\">2</th><td>water</td>");
    EXPECT_NE(ion, std::string::npos);
    EXPECT_LT(ion, water);
    EXPECT_THAT(html, HasSubstr("<td>Kinase</td><td>\u2013</td><td>?</td><td>A, B</td>"));
}

TEST(Macromolecule, CommunicationTellsNothingOfRefinement)
{
    const std::string html = article(whole, "-htmmo5");
    EXPECT_THAT(html, Not(HasSubstr("data-row=\"B4.")));
    for (const char* word : {"R</i><sub>free", "R</i><sub>cryst", "PDB reference", "REFMAC",
                             "coffee", "Structure solution", "non-polymer", "_refine", "0.18"})
        EXPECT_THAT(html, Not(HasSubstr(word)));
    EXPECT_THAT(html, HasSubstr("data-row=\"B1.org\""));
    EXPECT_THAT(html, HasSubstr("data-row=\"B2.meth\""));
    EXPECT_THAT(html, HasSubstr("data-row=\"B3.rmerge\""));
    EXPECT_THAT(html, HasSubstr("data-row=\"B6.entity\""));
    EXPECT_THAT(html,
                HasSubstr("Software: data reduction, XDS; data scaling, XSCALE; phasing, SHELXD."));
}

TEST(Macromolecule, TextOnRefinementIsNotLostSilently)
{
    const std::string text = "_publ_section.exptl_refinement 'Refined with care.'\n"
                             "_publ_section.exptl_solution 'Solved at once.'\n";
    const std::string full = article(text);
    EXPECT_THAT(full, HasSubstr("<p>Solved at once.</p>\n<p>Refined with care.</p>"));
    const std::string communication = article(text, "-htmmo5");
    EXPECT_THAT(communication, HasSubstr("<p>Solved at once.</p>"));
    EXPECT_THAT(communication, Not(HasSubstr("Refined with care.")));
    EXPECT_THAT(communication, HasSubstr("A communication does not report refinement"));
}

TEST(Macromolecule, AllTextSectionsArePrinted)
{
    std::string items;
    for (const char* name : {"title_footnote", "synopsis", "abstract", "related_literature",
                             "introduction", "comment", "discussion", "experimental", "exptl_prep",
                             "acknowledgements", "references", "figure_captions"})
        items += "_publ_section." + std::string(name) + " 'text of " + name + "'\n";
    for (const char* option : {"-htmmo6", "-htmmo5"}) {
        const std::string html = article(items, option);
        for (const char* name : {"title_footnote", "synopsis", "abstract", "related_literature",
                                 "introduction", "comment", "discussion", "experimental",
                                 "exptl_prep", "acknowledgements", "references", "figure_captions"})
            EXPECT_THAT(html, HasSubstr("text of " + std::string(name)));
    }
}

TEST(Macromolecule, ProgramsOfOlderFiles)
{
    EXPECT_THAT(article("_computing.data_collection 'ABC (1990)'\n"
                        "_computing.structure_refinement 'XYZ'\n"),
                HasSubstr("Software: data collection, ABC (1990); refinement, XYZ.<"));
}

TEST(Macromolecule, FilesWithoutCrystals)
{
    const std::string html =
        article("_exptl.method 'SOLUTION NMR'\n_refine.ls_R_factor_R_free 0.2\n"
                "_pdbx_nmr_software.name FELIX\n_pdbx_nmr_software.version 97\n"
                "_pdbx_nmr_software.classification collection\n_entity.id 1\n"
                "_entity.type polymer\n");
    EXPECT_THAT(html, HasSubstr("The experiment is \u201cSOLUTION NMR\u201d, not diffraction"));
    EXPECT_THAT(html, HasSubstr("data-row=\"B1.org\""));
    EXPECT_THAT(html, HasSubstr("data-row=\"B6.entity\""));
    EXPECT_THAT(html, HasSubstr("Software: collection, FELIX 97.<"));
    EXPECT_THAT(html, HasSubstr("<h2>Structure determination</h2>"));
    for (const char* key : {"data-row=\"B2.", "data-row=\"B3.", "data-row=\"B4."})
        EXPECT_THAT(html, Not(HasSubstr(key)));
}

TEST(Macromolecule, MethodsWithCrystals)
{
    for (const char* method : {"X-RAY DIFFRACTION", "NEUTRON DIFFRACTION", "FIBER DIFFRACTION",
                               "ELECTRON CRYSTALLOGRAPHY"})
        EXPECT_THAT(article("_exptl.method '" + std::string(method) + "'\n"),
                    AllOf(HasSubstr("data-row=\"B3."), HasSubstr("data-row=\"B4.")))
            << method;
    EXPECT_THAT(
        article("_exptl.method 'ELECTRON MICROSCOPY'\n"
                "_em_software.name RELION\n_em_software.category RECONSTRUCTION\n"),
        AllOf(Not(HasSubstr("data-row=\"B3.")), HasSubstr("Software: reconstruction, RELION.")));
}

TEST(Macromolecule, PredictedModel)
{
    EXPECT_THAT(article("_ma_model_list.ordinal_id 1\n"),
                AllOf(HasSubstr("a predicted model"), Not(HasSubstr("data-row=\"B3."))));
}

TEST(Macromolecule, CoordinatesOnly)
{
    const std::string html = article_of(
        "data_1\nloop_\n_atom_site.id\n_atom_site.type_symbol\n_atom_site.Cartn_x\n1 C 1.0\n"
        "2 H 1.5\n3 N 2\n");
    EXPECT_EQ(test::problems_of_html(html), "");
    EXPECT_THAT(cells_of(html, "B1.org"), ElementsAre("?"));
    EXPECT_THAT(cells_of(html, "B2.meth"), ElementsAre("?"));
    EXPECT_THAT(cells_of(html, "B3.rmerge"), ElementsAre("?"));
    EXPECT_THAT(cells_of(html, "B4.rfree"), ElementsAre("?"));
    EXPECT_THAT(cells_of(html, "B4.n.total"), ElementsAre("2"));
    EXPECT_THAT(html, HasSubstr("The file holds coordinates but does not tell"));
}

TEST(Macromolecule, StructureFactorsOnly)
{
    const std::string html =
        article_of("data_r1abcsf\n_entry.id 1abc\n_cell.length_a 50.123\n_refln.index_h 1\n"
                   "data_r1abcAsf\n_entry.id 1abc\n_cell.length_a 51\n");
    EXPECT_THAT(cells_of(html, "B3.abc"), ElementsAre("50.12, ?, ?", "51, ?, ?"));
    EXPECT_THAT(html, HasSubstr("<th scope=\"col\">r1abcAsf</th>"));
    EXPECT_THAT(html, HasSubstr("The file holds structure factors without a model"));
}

TEST(Macromolecule, BlocksWithCoordinatesAreColumns)
{
    const std::string block = "loop_\n_atom_site.id\n_atom_site.Cartn_x\n1 1\n";
    const std::string html = article_of("data_A\n_entity.id 1\n_refine.ls_R_factor_R_free 0.2\n" +
                                        block + "data_B\n_refine.ls_R_factor_R_free 0.3\n" + block +
                                        "data_restraints\n_chem_comp.id X\n");
    EXPECT_THAT(cells_of(html, "B4.rfree"), ElementsAre("0.2", "0.3"));
    EXPECT_THAT(html, HasSubstr("<th scope=\"col\">A</th><th scope=\"col\">B</th>"));
    EXPECT_THAT(html, Not(HasSubstr("restraints</th>")));
}

TEST(Macromolecule, ChemicalComponentIsNoStructure)
{
    const test::TemporaryFile file("data_ATP\n_chem_comp.id ATP\n_chem_comp.formula 'C10'\n");
    const auto outcome = test::run_quillet({"-htmmo6", file.path()});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.out, "");
    EXPECT_THAT(outcome.err, HasSubstr("describes a chemical component, not a structure"));
}

// Whatever is asked for, the file decides, and something else than asked for is said.
TEST(Macromolecule, OptionThatDoesNotFitTheFile)
{
    const std::string protein = "data_x\n_entry.id 1abc\n_struct.title T\n";
    const std::string compound = "data_x\n_cell_length_a 5\n";
    const std::string solution = "data_x\n_sas_result.id 1\n_sas_result.Rg_from_PR 3\n";
    struct Case {
        const std::string& cif;
        std::vector<std::string> options; // around the file
        const char* row;                  // that the article must have
        const char* asked_for;            // nullptr: it fits
    };
    const char* const small = "from a small-molecule CIF was asked for";
    const char* const macro = "from a macromolecular CIF was asked for";
    const char* const scattering = "from a CIF of small-angle scattering was asked for";
    const std::vector<Case> cases = {
        {protein, {"-htmmo6"}, "B4.rfree", nullptr},
        {protein, {"-htmmo5"}, "B3.sg", nullptr},
        {protein, {"-htmmo6", "-sas"}, "B4.rfree", scattering},
        {protein, {"-htmmo5", "-sas"}, "B3.sg", scattering},
        {protein, {"-htmPX"}, "B4.rfree", small},
        {compound, {"-htmPX"}, "A.abc", nullptr},
        {compound, {"-htmmo6"}, "A.abc", macro},
        {compound, {"-htmmo5", "-sas"}, "A.abc", scattering},
        {solution, {"-htmmo6", "-sas"}, "C4.pRg", nullptr},
        {solution, {"-htmmo5"}, "C4.pRg", macro},
        {solution, {"-htmPX"}, "C4.pRg", small},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.options.front() + " " + c.row);
        const test::TemporaryFile file(c.cif);
        std::vector<std::string> arguments = {c.options.front(), file.path()};
        if (c.options.front() == "-htmPX")
            arguments.insert(arguments.end(), {"C", "qlettemplate_word.html"});
        arguments.insert(arguments.end(), c.options.begin() + 1, c.options.end());
        const auto outcome = test::run_quillet(arguments);
        EXPECT_EQ(outcome.status, 0);
        EXPECT_THAT(cells_of(outcome.out, c.row), Not(IsEmpty()));
        const bool is_communication = c.options.front() == "-htmmo5" && &c.cif == &protein;
        EXPECT_EQ(outcome.out.find("B4.") == std::string::npos,
                  is_communication || &c.cif != &protein);
        if (c.asked_for)
            EXPECT_THAT(outcome.out, HasSubstr(c.asked_for));
        else
            EXPECT_THAT(outcome.out, Not(HasSubstr("was asked for")));
    }
}

} // namespace
} // namespace quillet
