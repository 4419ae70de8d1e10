#include "quillet/crystallization.h"

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
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

std::vector<std::string> row(const std::string& key, const std::string& items)
{
    return cells_of(article_of("data_x\n_entry.id x\n" + items), key);
}

TEST(Crystallization, SkeletonOfAFileWithoutCrystals)
{
    const std::string html = article_of("data_x\n_entry.id x\n");
    for (const char* key :
         {"B2.meth", "B2.plate", "B2.T", "B2.pconc", "B2.buf", "B2.res", "B2.drop", "B2.rvol"})
        EXPECT_THAT(cells_of(html, key), ElementsAre("?")) << key;
    for (const char* key : {"B2.pH", "B2.sols", "B2.seed", "B2.time", "B2.cryo", "B2.det", "B2.vm"})
        EXPECT_THAT(cells_of(html, key), IsEmpty()) << key;
}

TEST(Crystallization, Methods)
{
    const auto method = [](const char* text) { return format_crystallization_method(text).str(); };
    EXPECT_EQ(method("VAPOR DIFFUSION, HANGING DROP"), "Vapour diffusion, hanging drop");
    EXPECT_EQ(method("VAPOR DIFFUSION, SITTING DROP"), "Vapour diffusion, sitting drop");
    EXPECT_EQ(method("VAPOR DIFFUSION"), "Vapour diffusion");
    EXPECT_EQ(method("BATCH MODE"), "Batch");
    EXPECT_EQ(method("LIPIDIC CUBIC PHASE"), "Lipidic cubic phase");
    EXPECT_EQ(method("COUNTER-DIFFUSION"), "Counter-diffusion");
    EXPECT_EQ(method("grown by patience"), "grown by patience");
}

TEST(Crystallization, TemperatureAndPh)
{
    const std::string crystal = "_exptl_crystal_grow.crystal_id 1\n";
    EXPECT_THAT(row("B2.T", crystal + "_exptl_crystal_grow.temp 293.0\n"), ElementsAre("293"));
    EXPECT_THAT(row("B2.T", crystal + "_exptl_crystal_grow.temp 277.50\n"
                                      "_exptl_crystal_grow.temp_details 'in the cold room'\n"),
                ElementsAre("277.5 (in the cold room)"));
    EXPECT_THAT(row("B2.pH", crystal + "_exptl_crystal_grow.pH 7.50\n"
                                       "_exptl_crystal_grow.pdbx_pH_range 7-8\n"),
                ElementsAre("7.50"));
    EXPECT_THAT(row("B2.pH", crystal + "_exptl_crystal_grow.pH ?\n"
                                       "_exptl_crystal_grow.pdbx_pH_range 7.0-7.5\n"),
                ElementsAre("7.0\u20137.5"));
}

const std::string solutions =
    "_exptl_crystal_grow.crystal_id 1\n_entity.id 1\n_entity.type polymer\n"
    "_entity.pdbx_description 'Regulator VexR'\n"
    "_entity_name_com.entity_id 1\n_entity_name_com.name VexR\n"
    "loop_\n_exptl_crystal_grow_comp.crystal_id\n_exptl_crystal_grow_comp.id\n"
    "_exptl_crystal_grow_comp.sol_id\n_exptl_crystal_grow_comp.name\n"
    "_exptl_crystal_grow_comp.conc\n_exptl_crystal_grow_comp.volume\n"
    "1 1 Protein vexr '12 mg ml^-1^' '1 \\ml'\n1 2 Protein HEPES '10 mM' .\n"
    "loop_\n_pdbx_exptl_crystal_grow_comp.crystal_id\n_pdbx_exptl_crystal_grow_comp.comp_id\n"
    "_pdbx_exptl_crystal_grow_comp.sol_id\n_pdbx_exptl_crystal_grow_comp.comp_name\n"
    "_pdbx_exptl_crystal_grow_comp.conc\n_pdbx_exptl_crystal_grow_comp.conc_range\n"
    "_pdbx_exptl_crystal_grow_comp.conc_units\n"
    "1 3 precipitant 'PEG 400' ? 1-3 percent_volume_by_volume\n"
    "1 4 precipitant 'ammonium sulfate' 1.80 ? molar\n"
    "loop_\n_pdbx_exptl_crystal_grow_sol.crystal_id\n_pdbx_exptl_crystal_grow_sol.sol_id\n"
    "_pdbx_exptl_crystal_grow_sol.pH\n_pdbx_exptl_crystal_grow_sol.volume\n"
    "_pdbx_exptl_crystal_grow_sol.volume_units\n"
    "1 Protein 7.2 2 micoliter\n1 precipitant ? 0.5 milliliter\n";

TEST(Crystallization, SolutionsWithMeaningfulIds)
{
    EXPECT_THAT(row("B2.pconc", solutions), ElementsAre("12 mg ml<sup>\u22121</sup>"));
    EXPECT_THAT(row("B2.buf", solutions), ElementsAre("10 mM HEPES, pH 7.2"));
    EXPECT_THAT(row("B2.res", solutions),
                ElementsAre("1\u20133%(<i>v</i>/<i>v</i>) PEG 400, 1.80 M ammonium sulfate"));
    EXPECT_THAT(row("B2.drop", solutions), ElementsAre("2 \u00B5l (1 \u03BCl vexr)"));
    EXPECT_THAT(row("B2.rvol", solutions), ElementsAre("0.5 ml"));
    EXPECT_THAT(row("B2.sols", solutions), IsEmpty());
}

TEST(Crystallization, SolutionsThatAreOnlyNumbered)
{
    const std::string items =
        "_exptl_crystal_grow.crystal_id 1\n"
        "_exptl_crystal_grow.pdbx_details 'PEG 8000, 0.1 M Tris'\n"
        "loop_\n_exptl_crystal_grow_comp.crystal_id\n_exptl_crystal_grow_comp.id\n"
        "_exptl_crystal_grow_comp.sol_id\n_exptl_crystal_grow_comp.name\n"
        "_exptl_crystal_grow_comp.conc\n1 1 1 Li2SO4 ?\n1 2 1 MgCl2 ?\n1 3 2 MgCl2 ?\n";
    EXPECT_THAT(row("B2.sols", items), ElementsAre("1: Li2SO4, MgCl2; 2: MgCl2"));
    EXPECT_THAT(row("B2.res", items), ElementsAre("PEG 8000, 0.1 M Tris"));
    EXPECT_THAT(row("B2.buf", items), ElementsAre("?"));
    EXPECT_THAT(row("B2.det", items), IsEmpty());
}

TEST(Crystallization, DetailsAreNeitherRepeatedNorLost)
{
    EXPECT_THAT(row("B2.det", solutions + "_exptl_crystal_grow.pdbx_details 'in three days'\n"),
                ElementsAre("in three days"));
    const std::string both = "_exptl_crystal_grow.crystal_id 1\n"
                             "_exptl_crystal_grow.pdbx_details 'PEG 8000'\n";
    EXPECT_THAT(row("B2.det", both + "_exptl_crystal_grow.details 'PEG  8000'\n"), IsEmpty());
    EXPECT_THAT(row("B2.det", both + "_exptl_crystal_grow.details 'in three days'\n"),
                ElementsAre("in three days"));
}

TEST(Crystallization, Units)
{
    const auto quantity = [](const char* value, const char* unit) {
        return readable(format_quantity(value, unit).str());
    };
    EXPECT_EQ(quantity("10", "millimolar"), "10 mM");
    EXPECT_EQ(quantity("2.50", "micromolar"), "2.50 \u00B5M");
    EXPECT_EQ(quantity("20", "percent_weight_by_volume"), "20%(<i>w</i>/<i>v</i>)");
    EXPECT_EQ(quantity("15-18", "PERCENT_SATURATION"), "15\u201318% saturated");
    EXPECT_EQ(quantity("7", "milligrams_per_milliliter"), "7 mg ml<sup>\u22121</sup>");
    EXPECT_EQ(quantity("300", "nanoliter"), "300 nl");
    EXPECT_EQ(quantity("3", "drops_per_well"), "3 drops per well");
    EXPECT_EQ(quantity("a little", ""), "a little");
    EXPECT_EQ(quantity("0.1", "M"), "0.1 M");
    EXPECT_EQ(quantity("2", "uL"), "2 \u00B5l");
    EXPECT_EQ(quantity("10", "mg/ml"), "10 mg ml<sup>\u22121</sup>");
    EXPECT_EQ(quantity("20", "% w/v"), "20%(<i>w</i>/<i>v</i>)");
}

TEST(Crystallization, UnknownUnitsAreReported)
{
    const std::string html = article_of(
        "data_x\n_entry.id x\n_pdbx_exptl_crystal_grow_comp.crystal_id 1\n"
        "_pdbx_exptl_crystal_grow_comp.sol_id reservoir\n"
        "_pdbx_exptl_crystal_grow_comp.comp_name oil\n_pdbx_exptl_crystal_grow_comp.conc 3\n"
        "_pdbx_exptl_crystal_grow_comp.conc_units spoon_fulls\n");
    EXPECT_THAT(cells_of(html, "B2.res"), ElementsAre("3 spoon fulls oil"));
    EXPECT_THAT(html, HasSubstr("The unit &#8220;spoon_fulls&#8221; is not known"));
}

TEST(Crystallization, ColumnForEachCrystal)
{
    const std::string html = article_of(
        "data_x\n_entry.id x\nloop_\n_exptl_crystal_grow.crystal_id\n_exptl_crystal_grow.pH\n"
        "1 6\n2 8\nloop_\n_exptl_crystal.id\n_exptl_crystal.density_Matthews\n"
        "_exptl_crystal.density_percent_sol\n2 2.345 48.12\n1 ? ?\n"
        "_pdbx_exptl_crystal_cryo_treatment.crystal_id 2\n"
        "_pdbx_exptl_crystal_cryo_treatment.final_solution_details oil\n");
    EXPECT_THAT(cells_of(html, "B2.pH"), ElementsAre("6", "8"));
    EXPECT_THAT(cells_of(html, "B2.vm"), ElementsAre("?", "2.35, 48.1"));
    EXPECT_THAT(cells_of(html, "B2.cryo"), ElementsAre("?", "oil"));
    EXPECT_THAT(html, HasSubstr("<th scope=\"col\">Crystal 2</th>"));
}

} // namespace
} // namespace quillet
