#include "quillet/symmetry_codes.h"

#include "tests/quillet/support.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quillet
{
namespace
{

using test::document_of;
using test::readable;
using test::texts_of;
using testing::ElementsAre;
using testing::HasSubstr;

std::string printed(std::string_view operation)
{
    const auto parsed = parse_symmetry_operation(operation);
    return parsed ? parsed->html().str() : "none";
}

TEST(SymmetryOperation, VariablesThenConstant)
{
    EXPECT_EQ(printed("-x+3/2, y-1/2, -z+1/2"),
              "\u2212<i>x</i>+3/2, <i>y</i>\u22121/2, \u2212<i>z</i>+1/2");
    EXPECT_EQ(printed("1/2+X,1/2-Y,-Z"), "<i>x</i>+1/2, \u2212<i>y</i>+1/2, \u2212<i>z</i>");
    EXPECT_EQ(printed("-x+y, -x, z+2/3"), "\u2212<i>x</i>+<i>y</i>, \u2212<i>x</i>, <i>z</i>+2/3");
    EXPECT_EQ(printed("y+1/4, -x+3/4, z+0.333"), "<i>y</i>+1/4, \u2212<i>x</i>+3/4, <i>z</i>+1/3");
    EXPECT_EQ(printed("x+0.5, y+1, z-.25"), "<i>x</i>+1/2, <i>y</i>+1, <i>z</i>\u22121/4");
    EXPECT_EQ(printed("x+1/8, y+5/12, z-4/8"), "<i>x</i>+1/8, <i>y</i>+5/12, <i>z</i>\u22121/2");
}

TEST(SymmetryOperation, WhatIsNoneIsRefused)
{
    for (const char* text :
         {"", "x,y", "x,y,z,x", "2x,y,z", "x,y,q", "x y,z,x", "x+1/0,y,z", "x+1/7,y,z", "x+,y,z",
          "x+1..2,y,z", "x,,z", "x+99999999999,y,z", "x+99999999,y,z"})
        EXPECT_EQ(printed(text), "none") << text;
}

TEST(SymmetryOperation, IdentityIsKnown)
{
    EXPECT_TRUE(parse_symmetry_operation("x, y, z")->is_identity());
    EXPECT_FALSE(parse_symmetry_operation("x+1, y, z")->is_identity());
    EXPECT_FALSE(parse_symmetry_operation("y, x, z")->is_identity());
}

TEST(RomanNumerals, AreLowerCase)
{
    EXPECT_EQ(lower_roman_numeral(1), "i");
    EXPECT_EQ(lower_roman_numeral(4), "iv");
    EXPECT_EQ(lower_roman_numeral(9), "ix");
    EXPECT_EQ(lower_roman_numeral(48), "xlviii");
}

// The superscripts that codes get one after the other, then the footnote.
std::vector<std::string> codes_of(const std::string& items, const std::string& codes,
                                  Notes* notes = nullptr)
{
    Notes dropped;
    const Document document = document_of("data_I\n_cell_length_a 1\n" + items +
                                          "loop_\n_geom_bond_site_symmetry_2\n" + codes);
    const Block& block = document.blocks.front();
    SymmetryCodes symmetry(block, notes ? *notes : dropped);
    std::vector<std::string> results;
    const Rows rows = block.rows("_geom_bond_site_symmetry_2");
    for (std::size_t row = 0; row < rows.size(); ++row)
        results.push_back(
            readable(symmetry.superscript_of(rows.item(row, "_geom_bond_site_symmetry_2")).str()));
    results.push_back(readable(symmetry.take_footnote().str()));
    return results;
}

// As a program wrote it: not reduced to the unit cell, not in the standard order.
const std::string operations = "loop_\n_symmetry_equiv_pos_as_xyz\n'x, y, z'\n'x, -y-1/2, z-1/2'\n"
                               "'-x, -y, -z'\n'-x, y-1/2, -z-1/2'\n";

TEST(SymmetryCodes, TranslationsAreAddedToTheOperationAsWritten)
{
    EXPECT_THAT(codes_of(operations, "2_565 4\n"),
                ElementsAre("<sup>i</sup>", "<sup>ii</sup>",
                            "(i) <i>x</i>, \u2212<i>y</i>+1/2, <i>z</i>\u22121/2; "
                            "(ii) \u2212<i>x</i>, <i>y</i>\u22121/2, \u2212<i>z</i>\u22121/2"));
}

TEST(SymmetryCodes, AtomsThatDidNotMoveHaveNone)
{
    EXPECT_THAT(codes_of(operations, ". ? 1_555 1\n"), ElementsAre("", "", "", "", ""));
    EXPECT_THAT(codes_of("", ". 1_555\n"), ElementsAre("", "", ""));
}

TEST(SymmetryCodes, SameEffectHasTheSameNumeral)
{
    EXPECT_THAT(codes_of(operations, "3 1_655 3_555 3_665\n"),
                ElementsAre("<sup>i</sup>", "<sup>ii</sup>", "<sup>i</sup>", "<sup>iii</sup>",
                            "(i) \u2212<i>x</i>, \u2212<i>y</i>, \u2212<i>z</i>; "
                            "(ii) <i>x</i>+1, <i>y</i>, <i>z</i>; "
                            "(iii) \u2212<i>x</i>+1, \u2212<i>y</i>+1, \u2212<i>z</i>"));
}

TEST(SymmetryCodes, OperationsMayHaveNumbersOfTheirOwn)
{
    EXPECT_THAT(codes_of("loop_\n_space_group_symop_id\n_space_group_symop_operation_xyz\n"
                         "10 x,y,z\n20 -x,-y,-z\n",
                         "20_555 2_555\n"),
                ElementsAre("<sup>i</sup>", "<sup>ii</sup>",
                            "(i) \u2212<i>x</i>, \u2212<i>y</i>, \u2212<i>z</i>; (ii) 2_555"));
}

TEST(SymmetryCodes, WhatCannotBeResolvedIsPrintedAndReported)
{
    Notes notes;
    EXPECT_THAT(
        codes_of("", "3_565 3_565 1_655\n", &notes),
        ElementsAre("<sup>i</sup>", "<sup>i</sup>", "<sup>ii</sup>", "(i) 3_565; (ii) 1_655"));
    EXPECT_EQ(notes.all().size(), 2U);
    EXPECT_THAT(codes_of(operations, "2_10555 9_555 x,y\n"),
                ElementsAre("<sup>i</sup>", "<sup>ii</sup>", "<sup>iii</sup>",
                            "(i) 2_10555; (ii) 9_555; (iii) x,y"));
}

} // namespace
} // namespace quillet
