#include "quillet/formula.h"

#include <gtest/gtest.h>

namespace quillet
{
namespace
{

std::string sum(std::string_view text)
{
    const auto html = format_formula(text);
    return html ? html->str() : "none";
}

std::string moiety(std::string_view text)
{
    const auto html = format_moiety_formula(text);
    return html ? html->str() : "none";
}

TEST(SumFormula, CountsAreSubscripts)
{
    EXPECT_EQ(sum("C17 H14 Cl F N2 O"), "C<sub>17</sub>H<sub>14</sub>ClFN<sub>2</sub>O");
    EXPECT_EQ(sum("Ca1 H2 O1"), "CaH<sub>2</sub>O");
    EXPECT_EQ(sum("Fe0.95(2) O"), "Fe<sub>0.95(2)</sub>O");
    EXPECT_EQ(sum("D2 O"), "D<sub>2</sub>O");
}

TEST(SumFormula, CapitalLettersOfOldFiles)
{
    EXPECT_EQ(sum("NA CL"), "NaCl");
    EXPECT_EQ(sum("C4 H6 CU O4"), "C<sub>4</sub>H<sub>6</sub>CuO<sub>4</sub>");
    EXPECT_EQ(sum("C2 H6 CO O"), "none"); // cobalt, or carbon and oxygen?
}

TEST(SumFormula, LastSignedNumberIsTheCharge)
{
    EXPECT_EQ(sum("C2 H3 O2 -1"), "C<sub>2</sub>H<sub>3</sub>O<sub>2</sub><sup>\u2212</sup>");
    EXPECT_EQ(sum("C6 H15 N4 O2 1"),
              "C<sub>6</sub>H<sub>15</sub>N<sub>4</sub>O<sub>2</sub><sup>+</sup>");
    EXPECT_EQ(sum("Mg 2"), "Mg<sup>2+</sup>");
    EXPECT_EQ(sum("S O4 -2"), "SO<sub>4</sub><sup>2\u2212</sup>");
}

TEST(SumFormula, WhatIsNoFormulaIsRefused)
{
    EXPECT_EQ(sum("C6H12O6"), "none");
    EXPECT_EQ(sum("Xx2 O"), "none");
    EXPECT_EQ(sum("C2 h6"), "none");
    EXPECT_EQ(sum("[C2 H6]"), "none");
    EXPECT_EQ(sum(""), "none");
    EXPECT_EQ(sum("12"), "none");
}

TEST(MoietyFormula, PartsAreJoinedByMiddleDots)
{
    EXPECT_EQ(moiety("Mg 2+, 2I -"), "Mg<sup>2+</sup>\u00B72I<sup>\u2212</sup>");
    EXPECT_EQ(moiety("C12 H16 N2 O6, 5(H2 O1)"),
              "C<sub>12</sub>H<sub>16</sub>N<sub>2</sub>O<sub>6</sub>\u00B75H<sub>2</sub>O");
    EXPECT_EQ(moiety("C10 H14 O2 , 0.06C H2 Cl2"),
              "C<sub>10</sub>H<sub>14</sub>O<sub>2</sub>\u00B70.06CH<sub>2</sub>Cl<sub>2</sub>");
}

TEST(MoietyFormula, ChargesInsideAndBehindParentheses)
{
    EXPECT_EQ(moiety("C6 H8 O4 2-, 2(C8 H12 N5 +)"),
              "C<sub>6</sub>H<sub>8</sub>O<sub>4</sub><sup>2\u2212</sup>\u00B72C<sub>8</sub>"
              "H<sub>12</sub>N<sub>5</sub><sup>+</sup>");
    EXPECT_EQ(moiety("(C6 H16 N) 1+, Cl 1-"),
              "C<sub>6</sub>H<sub>16</sub>N<sup>+</sup>\u00B7Cl<sup>\u2212</sup>");
}

TEST(MoietyFormula, ParenthesesStayOnlyBeforeAMultiplier)
{
    EXPECT_EQ(moiety("(C4 H4 O4)n"),
              "(C<sub>4</sub>H<sub>4</sub>O<sub>4</sub>)<sub><i>n</i></sub>");
    EXPECT_EQ(moiety("(C4 H4)2"), "(C<sub>4</sub>H<sub>4</sub>)<sub>2</sub>");
    EXPECT_EQ(moiety("(C4 H4)"), "C<sub>4</sub>H<sub>4</sub>");
}

TEST(MoietyFormula, WhatDoesNotParseIsRefused)
{
    EXPECT_EQ(moiety("(C5 H16 N2 )[AlHP2 O8 ]"), "none");
    EXPECT_EQ(moiety("C4 H4, "), "none");
    EXPECT_EQ(moiety("2(C4 (H2 O)2)"), "none");
    EXPECT_EQ(moiety("C12 H30 N6 Na O6 +, I-"), "none"); // charges stand apart
}

} // namespace
} // namespace quillet
