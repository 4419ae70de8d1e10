// The article on small-angle scattering but for its structural parameters.

#include "quillet/scattering_measurement.h"
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
using test::label_of;
using test::readable;
using test::texts_of;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

std::string article(const std::string& items)
{
    return readable(article_of("data_x_MAIN\n_sas_scan.id 1\n" + items, "-sas"));
}

std::string cell(const std::string& key, const std::string& items)
{
    const auto cells = cells_of(article(items), key);
    return cells.size() == 1 ? cells.front() : std::to_string(cells.size()) + " cells";
}

const std::string entities = "loop_\n_entity.id\n_entity.type\n_entity.pdbx_description\n"
                             "_entity.formula_weight\n_entity.pdbx_number_of_molecules\n";

TEST(SampleDetails, NameThatRepeatsTheTitleIsLeftOut)
{
    const std::string title = "_sas_scan.title 'Ubiquitin at pH 7'\n";
    EXPECT_EQ(cell("C1.title", title), "Ubiquitin at pH 7");
    EXPECT_EQ(cell("C1.name", title + "_sas_sample.name 'UBIQUITIN  at pH 7'\n"), "0 cells");
    EXPECT_EQ(cell("C1.name", title + "_sas_sample.name Other\n"), "Other");
    EXPECT_EQ(cell("C1.title", "_sas_scan.title .\n"), "?");
}

TEST(SampleDetails, ComponentsHaveNameTypeAndCopies)
{
    const std::string names =
        "loop_\n_entity_name_com.entity_id\n_entity_name_com.name\n1 LRH-1\n2 PEPTIDE\n";
    EXPECT_EQ(cell("C1.ent", entities +
                                 "1 protein 'Liver Receptor' 64.1 1\n2 protein Peptide 1 .\n"
                                 "3 . ? 1 2\n" +
                                 names),
              "Liver Receptor (LRH-1), protein, 1 copy<br>Peptide, protein, ? copies<br>"
              "?, ?, 2 copies");
    EXPECT_EQ(cell("C1.ent", ""), "?");
}

TEST(SampleDetails, OnlyEntitiesOfTheSampleCount)
{
    const std::string items = "_sas_scan.sample_id 7\n_sas_sample.id 7\n"
                              "loop_\n_sas_sample.entity_id\n2\n9\n" +
                              entities + "1 protein A 10 1\n2 protein B 20.50 2\n";
    EXPECT_EQ(cell("C1.ent", items), "B, protein, 2 copies");
    EXPECT_EQ(cell("C1.mwc", items), "41");
    EXPECT_THAT(article(items), HasSubstr("There is no _entity.id \u201C9\u201D"));
}

TEST(SampleDetails, MassFallsBackOnWhatTheSampleStates)
{
    const std::string stated = "_sas_sample.sample_MW 17.300\n";
    EXPECT_EQ(cell("C1.mwc", entities + "1 protein A 8.565 2\n2 protein B . 1\n" + stated), "17.3");
    EXPECT_EQ(cell("C1.mwc", entities + "1 protein A 8.565 2\n" + stated), "17.13");
    EXPECT_EQ(cell("C1.mwc", entities + "1 protein A 8.565 1.5\n" + stated), "17.3");
    EXPECT_EQ(cell("C1.mwc", entities + "1 protein A 8535.50 1\n"), "8.5355");
    EXPECT_EQ(cell("C4.ratio", stated + "_sas_result.experimental_MW 34.6\n"), "2.00");
}

TEST(SampleDetails, OrganismsAreDistinctAndItalic)
{
    const std::string sources =
        "loop_\n_entity_src_gen.entity_id\n_entity_src_gen.gene_src_common_name\n"
        "_entity_src_gen.pdbx_gene_src_scientific_name\n"
        "1 'Homo sapiens' .\n2 . 'Homo sapiens'\n3 'Mus musculus' ?\n";
    EXPECT_EQ(cell("C1.org", entities + "1 p A 1 1\n2 p B 1 1\n3 p C 1 1\n" + sources),
              "<i>Homo sapiens</i>, <i>Mus musculus</i>");
    EXPECT_EQ(cell("C1.org", entities + "1 p A 1 1\n_entity_src_gen.gene_src_common_name Yeast\n"),
              "<i>Yeast</i>");
}

TEST(SampleDetails, AccessionsThatAreGiven)
{
    const std::string references = "loop_\n_struct_ref.entity_id\n_struct_ref.db_name\n"
                                   "_struct_ref.db_code\n1 UniProt O00482\n2 UniProt .\n"
                                   "3 UNP Q0VEX1\n";
    const std::string three = entities + "1 p A 1 1\n2 p B 1 1\n3 p C 1 1\n";
    EXPECT_EQ(cell("C1.uni", three + references + "_struct_ref.details x\n"),
              "UniProt O00482, UniProt Q0VEX1");
    EXPECT_EQ(cell("C1.uni", three + "_struct_ref.entity_id 1\n_struct_ref.db_code .\n"),
              "0 cells");
}

TEST(SampleDetails, SequencesHaveNoBlanksAndCanBreak)
{
    const std::string sequences = "loop_\n_entity_poly.entity_id\n"
                                  "_entity_poly.pdbx_seq_one_letter_code\n1\n;ACDEF GHIKL\n"
                                  "MN(MSE)PQRS\n;\n";
    EXPECT_EQ(cell("C1.seq", entities + "1 p A 1 1\n2 p B 1 1\n" + sequences),
              "<code>ACDEFGHIKL<wbr></wbr>MN(MSE)PQR<wbr></wbr>S</code><br>?");
    EXPECT_EQ(cell("C1.seq", entities + "1 p A 1 1\n"), "?");
}

TEST(SampleDetails, ConcentrationsAreNumbersOrRanges)
{
    const auto shown = [](const std::string& text) {
        return cell("C1.conc", "_sas_sample.specimen_concentration " + text + "\n");
    };
    EXPECT_EQ(shown("2.60"), "2.6");
    EXPECT_EQ(shown("0.50-11.90"), "0.5\u201311.9");
    EXPECT_EQ(shown("1.00-1.00"), "1");
    EXPECT_EQ(shown("'0.5 - 2.0'"), "0.5\u20132");
    EXPECT_EQ(shown("'0.5\u20132.0'"), "0.5\u20132");
    EXPECT_EQ(shown("'2-5 mg/ml'"), "2-5 mg/ml");
    EXPECT_EQ(shown("."), "?");
}

TEST(SampleDetails, BuffersAreRecipesOrParts)
{
    const std::string parts = "_sas_buffer.name HEPES\n_sas_buffer.concentration 50.000\n"
                              "_sas_buffer.unit mM\n_sas_buffer.pH 7.500\n";
    EXPECT_EQ(cell("C1.buf", parts + "_sas_buffer.composition 'KCl 50.000 mM'\n"),
              "50 mM HEPES, KCl 50.000 mM, pH 7.5");
    EXPECT_EQ(cell("C1.buf", parts), "50 mM HEPES, pH 7.5");
    EXPECT_EQ(cell("C1.buf", "_sas_buffer.name '20mM HEPES, 150mM NaCl'\n"
                             "_sas_buffer.concentration 20\n_sas_buffer.pH 7.400\n"),
              "20mM HEPES, 150mM NaCl, pH 7.4");
    EXPECT_EQ(cell("C1.buf", "_sas_buffer.name 'PBS, pH 7.4'\n_sas_buffer.pH 7.400\n"),
              "PBS, pH 7.4");
    EXPECT_EQ(cell("C1.buf", "_sas_buffer.pH 7.4\n"), "?, pH 7.4");
    EXPECT_EQ(cell("C1.buf", "_sas_buffer.name .\n"), "?");
}

TEST(CollectionParameters, OnlyGivenPartsOfTheInstrument)
{
    EXPECT_EQ(cell("C2.inst", "_sas_beam.instrument_name BL1\n_sas_beam.instrument_city .\n"
                              "_sas_beam.instrument_country Japan\n"),
              "BL1, Japan");
    EXPECT_EQ(cell("C2.inst", "_sas_beam.instrument_name .\n"), "?");
    EXPECT_EQ(cell("C2.det", "_sas_detc.name 'Pilatus 1M'\n_sas_detc.type .\n"), "Pilatus 1M");
    EXPECT_EQ(cell("C2.det", "_sas_detc.name Pilatus\n_sas_detc.type pixel\n"), "Pilatus (pixel)");
    EXPECT_EQ(cell("C2.det", "_sas_detc.type CCD\n"), "CCD");
}

TEST(CollectionParameters, LengthsInMillimetresAreConverted)
{
    EXPECT_EQ(cell("C2.dist", "_sas_beam.dist_spec_to_detc 2.10500\n"), "2.105");
    EXPECT_EQ(cell("C2.dist", "_sas_beam.dist_spec_to_detc 2105.00\n"), "2.105");
    EXPECT_EQ(cell("C2.dist", "_sas_beam.dist_spec_to_detc .\n"
                              "_sas_detc.sample_to_detector_distance 3.0\n"),
              "3");
    EXPECT_EQ(cell("C2.pix", "_sas_detc.pixsize_x 172.000\n"), "172");
    EXPECT_EQ(cell("C2.pix", "_sas_detc.pixsize_x 0.172\n"), "172");
    EXPECT_EQ(cell("C2.pix", "_sas_detc.pixsize 75\n"), "75");
    EXPECT_EQ(cell("C2.pix", "_sas_detc.pixsize_x '75 x 75'\n"), "75 x 75");
    EXPECT_EQ(cell("C2.pix", "_sas_detc.pixsize_x .\n"), "0 cells");
    EXPECT_THAT(article("_sas_detc.pixsize_x 0.172\n"), HasSubstr("taken to be in millimetres"));
}

TEST(CollectionParameters, UnitOfTheRangeIsThatOfTheFile)
{
    const std::string range = "_sas_scan.qmin 0.0153\n_sas_scan.qmax 0.3704\n";
    EXPECT_EQ(cell("C2.q", range + "_sas_scan.unit 1/A\n"),
              "0.0153\u20130.3704 \u00C5<sup>\u22121</sup>");
    EXPECT_EQ(cell("C2.q", range + "_sas_scan.unit 1/nm\n"),
              "0.0153\u20130.3704 nm<sup>\u22121</sup>");
    EXPECT_EQ(cell("C2.q", range), "0.0153\u20130.3704");
    EXPECT_THAT(article(range), HasSubstr("No unit is stated (_sas_scan.unit)"));
    EXPECT_EQ(cell("C2.q", "_sas_scan.qmin .\n_sas_scan.unit 1/A\n"), "?");
    EXPECT_THAT(article(""), Not(HasSubstr("No unit is stated")));
}

TEST(CollectionParameters, UnitsInAllSpellings)
{
    for (const char* text : {"1/A", "A^-1", "1/angstrom", "angstrom", "1/\u00C5"})
        EXPECT_EQ(units_from_text(text).value_or(ScatteringUnits()).momentum_per_nm, 10) << text;
    for (const char* text : {"nanometer", "1/nm", "nm^-1", "1/NANOMETER"})
        EXPECT_EQ(units_from_text(text).value_or(ScatteringUnits()).momentum_per_nm, 1) << text;
    EXPECT_FALSE(units_from_text("furlong"));
    EXPECT_FALSE(units_from_text(""));
}

TEST(CollectionParameters, PlainValues)
{
    const std::string items =
        "_sas_scan.exposure_time 3.000\n_sas_scan.number_of_frames 500\n"
        "_sas_scan.cell_temperature 20.0\n_sas_scan.storage_temperature 4.00\n"
        "_sas_scan.measurement_date 2019-05-26\n_sas_beam.radiation_wavelength 0.103300\n"
        "_sas_beam.type_of_source .\n_sas_beam.type 'X-ray in house'\n_sas_sample.thickness 1.50\n";
    EXPECT_EQ(cell("C2.exp", items), "3, 500");
    EXPECT_EQ(cell("C2.exp", "_sas_scan.exposure_time 0.5\n"), "0.5, ?");
    EXPECT_EQ(cell("C2.T", items), "20");
    EXPECT_EQ(cell("C2.T", "_sas_sample.cell_temperature 10\n"), "10");
    EXPECT_EQ(cell("C2.Ts", items), "4");
    EXPECT_EQ(cell("C2.date", items), "2019-05-26");
    EXPECT_EQ(cell("C2.wl", items), "0.1033");
    EXPECT_EQ(cell("C2.src", items), "X-ray in house");
    EXPECT_EQ(cell("C2.thick", items), "1.5");
    EXPECT_EQ(cell("C2.mode", "_sas_result.type_of_curve sec\n"), "SEC-SAXS");
    EXPECT_EQ(cell("C2.mode", "_sas_result.type_of_curve single_conc\n"), "Single concentration");
    EXPECT_EQ(cell("C2.mode", "_sas_result.type_of_curve merged\n"), "Merged");
    EXPECT_EQ(cell("C2.mode", "_sas_result.type_of_curve batch\n"), "batch");
}

const std::string two_scans =
    "data_x\nloop_\n_sas_scan.id\n_sas_scan.title\n_sas_scan.sample_id\n1 One 5\n2 Two 6\n";

TEST(Measurements, ScansOfABlockAreColumns)
{
    const std::string html = readable(
        article_of(two_scans + "loop_\n_sas_sample.id\n_sas_sample.specimen_concentration\n6 2.0\n"
                               "5 1.0\n"
                               "loop_\n_sas_scan_intensity.scan_id\n"
                               "_sas_scan_intensity.momentum_transfer\n2 0.1\n1 0.1\n2 0.2\n",
                   "-sas"));
    EXPECT_THAT(cells_of(html, "C1.conc"), ElementsAre("1", "2"));
    EXPECT_THAT(cells_of(html, "C2.npt"), ElementsAre("1", "2"));
    EXPECT_THAT(html, HasSubstr("<th scope=\"col\">One</th><th scope=\"col\">Two</th>"));
}

TEST(Measurements, NothingIsTakenFromTheRowOfAnotherId)
{
    const std::string html =
        readable(article_of(two_scans + "_sas_sample.id 5\n_sas_sample.specimen_concentration 1.0\n"
                                        "_sas_buffer.name PBS\n",
                            "-sas"));
    EXPECT_THAT(cells_of(html, "C1.conc"), ElementsAre("1", "?"));
    EXPECT_THAT(cells_of(html, "C1.buf"), ElementsAre("PBS", "PBS")); // no ids, no doubt
    EXPECT_THAT(html, HasSubstr("There is no _sas_sample.id \u201C6\u201D"));
}

TEST(Measurements, CurveWithoutScanBelongsToASingleOneOnly)
{
    const std::string curve = "loop_\n_sas_scan_intensity.momentum_transfer\n0.1\n0.2\n";
    EXPECT_EQ(cell("C2.npt", curve), "2");
    EXPECT_EQ(cell("C2.npt", "loop_\n_sas_scan_intensity.momentum_transfer\n"
                             "_sas_scan_intensity.scan_id\n0.1 99\n"),
              "1");
    EXPECT_THAT(cells_of(article_of(two_scans + curve, "-sas"), "C2.npt"), IsEmpty());
}

TEST(Measurements, ResultsMayStandInAnotherBlock)
{
    const std::string html = article_of("data_a\n_sas_scan.id 1\n_sas_scan.result_id 8\n"
                                        "data_b\n_sas_result.id 8\n_sas_result.D_max 7.0\n",
                                        "-sas");
    EXPECT_THAT(cells_of(html, "C4.dmax"), ElementsAre("7"));
}

TEST(Measurements, FileOfOneModelGivesASkeleton)
{
    const std::string html = article_of("data_x_MODEL\n_sas_model.id 1\n_sas_model.type_of_model "
                                        "dummy\nloop_\n_atom_site.id\n_atom_site.Cartn_x\n1 0\n",
                                        "-sas");
    EXPECT_THAT(cells_of(html, "C1.title"), ElementsAre("?"));
    EXPECT_THAT(cells_of(html, "C5.nat"), ElementsAre("1"));
    EXPECT_THAT(html, HasSubstr("does not tell which fit it belongs to"));
}

const std::string main_block = "data_x_MAIN\n_sas_scan.id 1\n_sas_scan.result_id 3\n"
                               "_sas_result.id 3\n_sas_scan.unit nanometer\n";
const std::string fit_block = "data_x_FIT\n_sas_model_fitting_details.id 26\n"
                              "_sas_model_fitting_details.result_id 3\n";

TEST(ModelFitting, NoFitNoTable)
{
    const std::string html = article_of(main_block, "-sas");
    EXPECT_THAT(html, Not(HasSubstr("Model fitting")));
    EXPECT_THAT(html, Not(HasSubstr("Software employed")));
}

TEST(ModelFitting, FitsAndModelsAreJoinedByTheirIds)
{
    const std::string html = readable(article_of(
        main_block +
            "data_m2\n_sas_model.id 5\n_sas_model.fitting_id 27\n_sas_model.software CRYSOL\n"
            "_sas_model.type_of_model atomic\n_sas_model.radius 3\n" +
            fit_block + "_sas_model_fitting_details.chi_square 1.03694\n" +
            "data_f2\n_sas_model_fitting_details.id 27\n_sas_model_fitting_details.result_id 3\n"
            "_sas_model_fitting_details.chi_square .\n"
            "data_m1\n_sas_model.id 4\n_sas_model.fitting_id 26\n_sas_model.type_of_model DUMMY\n"
            "_sas_model.radius 2.50\n_sas_model.version 2\n",
        "-sas"));
    EXPECT_THAT(cells_of(html, "C5.fit"), ElementsAre("26 / 4", "27 / 5"));
    EXPECT_THAT(cells_of(html, "C5.type"),
                ElementsAre("Shape (dummy-atom) modelling", "Atomistic modelling"));
    EXPECT_THAT(cells_of(html, "C5.chi"), ElementsAre("1.037", "\u2013"));
    EXPECT_THAT(cells_of(html, "C5.rad"), ElementsAre("2.5", "\u2013"));
    EXPECT_THAT(cells_of(html, "C5.sw"), ElementsAre("?", "CRYSOL"));
    EXPECT_THAT(cells_of(html, "C3.mod"), ElementsAre("Atomistic modelling: CRYSOL"));
}

TEST(ModelFitting, RangeLeavesOutZeroAndHasTheUnitOfTheFit)
{
    const std::string curve = "loop_\n_sas_model_fitting.id\n_sas_model_fitting.momentum_transfer\n"
                              "26 0.00000000e+00\n26 1.97654321e-02\n26 3.70412345e-01\n";
    const auto range = [&](const std::string& unit) {
        return readable(article_of(main_block + fit_block + unit + curve, "-sas"));
    };
    EXPECT_THAT(cells_of(range("_sas_model_fitting_details.unit 1/A\n"), "C5.q"),
                ElementsAre("0.0198\u20130.3704 \u00C5<sup>\u22121</sup>"));
    // The scan is in nanometres, but that says nothing about the fit.
    EXPECT_THAT(cells_of(range("_sas_model_fitting_details.unit .\n"), "C5.q"),
                ElementsAre("0.0198\u20130.3704"));
    EXPECT_THAT(range(""), HasSubstr("No unit is stated (_sas_model_fitting_details.unit)"));
}

TEST(Software, IsOfTheMeasurement)
{
    const std::string html =
        readable(article_of("data_x\n_sas_scan.id 1\n_sas_p_of_R_details.intensity_id 1\n"
                            "_sas_p_of_R_details.software_p_of_R 'GNOM 4.6'\n"
                            "loop_\n_software.name\n_software.version\n_software.classification\n"
                            "PRIMUS 3.2 'data processing'\nRAW ? .\n",
                            "-sas"));
    EXPECT_THAT(cells_of(html, "C3.pr"), ElementsAre("GNOM 4.6"));
    EXPECT_THAT(cells_of(html, "C3.sw"), ElementsAre("PRIMUS 3.2 (data processing); RAW"));
}

TEST(FrontMatter, TitleIsThatOfThePublication)
{
    const std::string html = article("_sas_scan.title Scan\n_sas_result.SASBDB_code SASDXX1\n"
                                     "loop_\n_citation.id\n_citation.title\n_citation.year\n"
                                     "_citation.pdbx_database_id_DOI\n1 ? 2001 10.1/a\n"
                                     "2 Paper '2018 Aug 28' https://doi.org/10.1/b\n");
    EXPECT_THAT(html, HasSubstr("<a name=\"vexa_title\">Paper</a>"));
    EXPECT_THAT(html, HasSubstr("2018 Aug 28, https://doi.org/10.1/b<"));
    EXPECT_THAT(html, HasSubstr("<title>SASDXX1</title>"));
    EXPECT_THAT(cells_of(html, "C6.code"), ElementsAre("SASDXX1"));
    EXPECT_THAT(article("_sas_scan.title Scan\n"), HasSubstr("<a name=\"vexa_title\">Scan</a>"));
    EXPECT_THAT(article(""), HasSubstr("<a name=\"vexa_title\">?</a>"));
}

TEST(FrontMatter, CurvesAreNeverPrinted)
{
    const std::string html =
        article("loop_\n_sas_scan_intensity.momentum_transfer\n_sas_scan_intensity.intensity\n"
                "0.123456 98.7654\n");
    EXPECT_THAT(html, Not(HasSubstr("0.123456")));
    EXPECT_THAT(html, Not(HasSubstr("98.7654")));
}

TEST(ScatteringFile, GivesItsArticleWhateverIsAskedFor)
{
    const std::string cif = "data_x\n_sas_scan.id 1\n_sas_scan.title Scan\n_entity.id 1\n"
                            "_cell_length_a 5\n";
    for (const char* option : {"-htmPX", "-htmmo6", "-htmmo5"}) {
        const std::string html = article_of(cif, option);
        EXPECT_THAT(cells_of(html, "C1.title"), ElementsAre("Scan")) << option;
        EXPECT_THAT(html, HasSubstr("was asked for, but the file is a CIF of small-angle "
                                    "scattering; this is the article that can be made from it."))
            << option;
    }
    EXPECT_THAT(article_of(cif, "-sas"), Not(HasSubstr("was asked for")));
}

TEST(ScatteringArticle, OfOtherFilesIsTheirOwn)
{
    const std::string core = article_of("data_I\n_cell_length_a 7\n", "-sas");
    EXPECT_THAT(cells_of(core, "A.abc"), ElementsAre("7, ?, ?"));
    EXPECT_THAT(core, HasSubstr("the file is a small-molecule CIF"));
    const std::string mm = article_of("data_1abc\n_entry.id 1ABC\n_cell.length_a 50\n", "-sas");
    EXPECT_THAT(cells_of(mm, "B3.abc"), ElementsAre("50, ?, ?"));
    EXPECT_THAT(mm, HasSubstr("the file is a macromolecular CIF"));
}

} // namespace
} // namespace quillet
