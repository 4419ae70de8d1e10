#include "quillet/text_field.h"

#include <gtest/gtest.h>

namespace quillet
{
namespace
{

TEST(TextField, DelimitersAndBlanksAtTheEndAreCut)
{
    EXPECT_EQ(decode_value("plain", false, CifVersion::cif_1_1), "plain");
    EXPECT_EQ(decode_value("'it's quoted '", false, CifVersion::cif_1_1), "it's quoted");
    EXPECT_EQ(decode_value("\"a\"", false, CifVersion::cif_1_1), "a");
    EXPECT_EQ(decode_value("''", false, CifVersion::cif_1_1), "");
    EXPECT_EQ(decode_value(";\nfirst\nsecond  \n;", true, CifVersion::cif_1_1), "\nfirst\nsecond");
    EXPECT_EQ(decode_value("; first\n\n;", true, CifVersion::cif_1_1), " first");
    EXPECT_EQ(decode_value(";;", true, CifVersion::cif_1_1), "");
}

TEST(TextField, SemicolonInsideALineIsNoDelimiter)
{
    EXPECT_EQ(decode_value(";x", false, CifVersion::cif_1_1), ";x");
}

TEST(TextField, ThreeQuotationMarksAreDelimitersOfCif2Only)
{
    EXPECT_EQ(decode_value("'''a'b'''", false, CifVersion::cif_2_0), "a'b");
    EXPECT_EQ(decode_value("''''''", false, CifVersion::cif_2_0), "");
    EXPECT_EQ(decode_value("''", false, CifVersion::cif_2_0), "");
    EXPECT_EQ(decode_value("'''a'b'''", false, CifVersion::cif_1_1), "''a'b''");
}

TEST(TextField, FoldedLinesAreJoined)
{
    EXPECT_EQ(unfold_text_field("\\\nA long \\\ntitle\nand more"), "A long title\nand more");
    EXPECT_EQ(unfold_text_field("\\  \nA\\ \nB"), "AB");
}

TEST(TextField, LinePrefixesAreRemoved)
{
    EXPECT_EQ(unfold_text_field("CIF>\\\nCIF>;one\nCIF>two"), ";one\ntwo");
    EXPECT_EQ(unfold_text_field(">\\\\\n>one \\\n>two"), "one two");
}

TEST(TextField, BackslashesWithoutProtocolStay)
{
    EXPECT_EQ(unfold_text_field("MoK\\a\nline \\\nnext"), "MoK\\a\nline \\\nnext");
    EXPECT_EQ(unfold_text_field("prefix\\\nother line"), "prefix\\\nother line");
    EXPECT_EQ(unfold_text_field("\\"), "\\");
}

} // namespace
} // namespace quillet
