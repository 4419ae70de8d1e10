#include "quillet/document.h"

#include "quillet/kept_items.h"
#include "tests/quillet/support.h"

#include <gtest/gtest.h>

namespace quillet
{
namespace
{

using test::document_of;

TEST(State, FollowsTheTrimmedText)
{
    EXPECT_EQ(state_of("?"), State::unknown);
    EXPECT_EQ(state_of(""), State::unknown);
    EXPECT_EQ(state_of("\n ?\n"), State::unknown);
    EXPECT_EQ(state_of(" ?      # name"), State::unknown);
    EXPECT_EQ(state_of(" . "), State::not_applicable);
    EXPECT_EQ(state_of("0"), State::given);
    EXPECT_EQ(state_of("??"), State::given);
    EXPECT_EQ(state_of("? or more"), State::given);
}

TEST(Lookup, NamesAreComparedWithoutCase)
{
    const Document document = document_of("data_x\n_CELL_Length_A 1\n");
    EXPECT_EQ(document.blocks.front().item("_cell_length_a").text, "1");
}

TEST(Lookup, CoreNamesHaveDotOrUnderscore)
{
    const Document document = document_of(
        "data_x\n_cell.length_a 1\n_cell_length_b 2\n_space_group.name_H-M_alt 'P 1'\n");
    const Block& block = document.blocks.front();
    EXPECT_EQ(block.item("_cell_length_a").text, "1");
    EXPECT_EQ(block.item("_cell.length_b").text, "2");
    EXPECT_EQ(block.item("_space_group_name_H-M_alt").text, "P 1");
}

TEST(Lookup, MacromolecularNamesAreExact)
{
    const Document document = document_of("data_x\n_entry.id x\n_cell.length_a 1\n");
    EXPECT_FALSE(document.blocks.front().item("_cell_length_a").is_given());
}

TEST(Lookup, FirstUsableAlternativeWins)
{
    const Document document =
        document_of("data_x\n_cell_length_a ?\n_cell_length_b 5\n_cell_length_c .\n");
    const Block& block = document.blocks.front();
    EXPECT_EQ(block.item({"_cell_length_a", "_cell_length_b"}).text, "5");
    EXPECT_EQ(block.item({"_cell_length_c", "_cell_length_b"}).text, "5");
    EXPECT_EQ(block.item({"_cell_length_a", "_cell_length_c"}).state, State::not_applicable);
    EXPECT_EQ(block.item({"_cell_volume", "_cell_length_a"}).state, State::unknown);
    EXPECT_EQ(block.item("_cell_volume").tag, "_cell_volume");
}

TEST(Lookup, LoopOfOneRowAndPairAreTheSame)
{
    const Document document = document_of("data_x\nloop_\n_cell_length_a\n_cell_length_b\n1 2\n"
                                          "_cell_length_c 3\n");
    const Rows rows = document.blocks.front().rows("_cell_length_a");
    ASSERT_EQ(rows.size(), 1U);
    EXPECT_EQ(rows.item(0, "_cell_length_c").text, "3");
}

TEST(Lookup, CategoryThatIsHalfPairsHalfLoopIsRead)
{
    const Document document = document_of(
        "data_x\n_sas_sample.id 7\n_sas_sample.name mix\nloop_\n_sas_sample.entity_id\n1\n2\n"
        "loop_\n_struct_ref.entity_id\n_struct_ref.db_code\n1 P1\n2 P2\n_struct_ref.details url\n");
    const Block& block = document.blocks.front();
    EXPECT_EQ(block.item("_sas_sample.name").text, "mix");
    EXPECT_EQ(block.rows("_sas_sample.entity_id").size(), 2U);
    const Rows references = block.rows("_struct_ref.entity_id");
    EXPECT_EQ(references.item(1, "_struct_ref.db_code").text, "P2");
    // The stray pair belongs to none of the two rows.
    EXPECT_FALSE(references.item(0, "_struct_ref.details").is_given());
}

TEST(KeptItems, LongestPrefixDecides)
{
    EXPECT_TRUE(is_kept("_diffrn_ambient_temperature"));
    EXPECT_TRUE(is_kept("_diffrn_reflns_number"));
    EXPECT_FALSE(is_kept("_diffrn_refln_index_h"));
    EXPECT_TRUE(is_kept("_chem_comp.formula"));
    EXPECT_FALSE(is_kept("_chem_comp_atom.atom_id"));
    EXPECT_FALSE(is_kept("_shelx_hkl_file"));
    EXPECT_FALSE(is_kept("_refln.index_h"));
}

} // namespace
} // namespace quillet
