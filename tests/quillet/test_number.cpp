#include "quillet/number.h"

#include <gtest/gtest.h>

namespace quillet
{
namespace
{

TEST(Integers, AreWholeAndSmall)
{
    EXPECT_EQ(parse_integer("14"), 14);
    EXPECT_EQ(parse_integer("-3"), -3);
    EXPECT_EQ(parse_integer("007"), 7);
    for (const char* text : {"1.5", "1e5", "<4", "1234567", "x", ""})
        EXPECT_FALSE(parse_integer(text)) << text;
}

struct NumberCase {
    const char* given;
    NumberFormat format;
    const char* printed;
};

class NumberFormatting : public testing::TestWithParam<NumberCase>
{
};

TEST_P(NumberFormatting, PrintsTheDigitsOfTheFile)
{
    EXPECT_EQ(format_number_text(GetParam().given, GetParam().format).str(), GetParam().printed);
}

INSTANTIATE_TEST_SUITE_P(
    AsGiven, NumberFormatting,
    testing::Values(
        NumberCase{".0383", as_given, "0.0383"}, NumberCase{"-.604", as_given, "\u22120.604"},
        NumberCase{".013(8)", as_given, "0.013\u00A0(8)"}, NumberCase{"+1.50", as_given, "1.50"},
        NumberCase{"<0.001", as_given, "&lt;0.001"}, NumberCase{"> 5", as_given, "&gt;5"},
        NumberCase{"~20", as_given, "~20"}, NumberCase{"-3", as_given, "\u22123"},
        NumberCase{"\u22123", as_given, "\u22123"},
        NumberCase{"2.9183(5)", as_given, "2.9183\u00A0(5)"},
        NumberCase{"10.46890(10)", as_given, "10.46890\u00A0(10)"},
        NumberCase{"0.0130(77)", as_given, "0.0130\u00A0(77)"},
        NumberCase{"1.2e-05", as_given, "1.2 \u00D7 10<sup>\u22125</sup>"},
        NumberCase{"1.2(3)E+4", as_given, "1.2\u00A0(3) \u00D7 10<sup>4</sup>"},
        NumberCase{" 13. ", as_given, "13"}, NumberCase{"150(2)", without_su, "150"}));

INSTANTIATE_TEST_SUITE_P(
    Rounded, NumberFormatting,
    testing::Values(
        NumberCase{"97.2", rounded(3), "97.2"}, NumberCase{"50", rounded(3), "50"},
        NumberCase{"100.000", rounded(1), "100.0"}, NumberCase{"2.675", rounded(2), "2.68"},
        NumberCase{"-2.675", rounded(2), "\u22122.68"}, NumberCase{"0.9995", rounded(3), "1.000"},
        NumberCase{"99.96", rounded(1), "100.0"}, NumberCase{"0.0005", rounded(2), "0.0005"},
        NumberCase{"0.000", rounded(2), "0.00"},
        NumberCase{"0.1234(5)", rounded(2), "0.1234\u00A0(5)"},
        NumberCase{"147.61", rounded(0), "148"}, NumberCase{"0.4", rounded(0), "0.4"},
        NumberCase{"<0.0049", rounded(2), "&lt;0.0049"},
        NumberCase{"4.52e-02", rounded(3), "0.045"},
        NumberCase{"1.2e-05", rounded(3), "1.2 \u00D7 10<sup>\u22125</sup>"},
        NumberCase{"1.234567e3", rounded(2), "1.234567 \u00D7 10<sup>3</sup>"}));

INSTANTIATE_TEST_SUITE_P(Trimmed, NumberFormatting,
                         testing::Values(NumberCase{"23.7200000000", trimmed_zeros, "23.72"},
                                         NumberCase{"13.00", trimmed_zeros, "13"},
                                         NumberCase{"100", trimmed_zeros, "100"},
                                         NumberCase{"90.00", trimmed_zeros, "90"},
                                         NumberCase{"95.1470(10)", trimmed_zeros,
                                                    "95.1470\u00A0(10)"},
                                         NumberCase{"111.980", rounded_and_trimmed(2), "111.98"},
                                         NumberCase{"90.000", rounded_and_trimmed(2), "90"}));

INSTANTIATE_TEST_SUITE_P(NoNumber, NumberFormatting,
                         testing::Values(NumberCase{"not measured", as_given, "not measured"},
                                         NumberCase{"0.50-11.90", as_given, "0.50-11.90"},
                                         NumberCase{">2sigma(I)", as_given, "&gt;2sigma(I)"},
                                         NumberCase{"1.2.3", as_given, "1.2.3"},
                                         NumberCase{"1.2(a)", as_given, "1.2(a)"},
                                         NumberCase{"1.2()", as_given, "1.2()"},
                                         NumberCase{"-", as_given, "-"},
                                         NumberCase{".", as_given, "."},
                                         NumberCase{"1e", as_given, "1e"}));

std::string joined_su(const char* value, const char* su)
{
    const auto number = with_su(*parse_number(value), *parse_number(su));
    return number ? format_number(*number, as_given).str() : "none";
}

TEST(StandardUncertainty, SeparateItemIsJoinedWithTwoDigitsUpTo19AndOneAbove)
{
    EXPECT_EQ(joined_su("39.374", "0.012"), "39.374\u00A0(12)");
    EXPECT_EQ(joined_su("39.374", "0.0235"), "39.37\u00A0(2)");
    EXPECT_EQ(joined_su("39.37", "0.012"), "39.370\u00A0(12)");
    EXPECT_EQ(joined_su("90.0000", "0.0960"), "90.00\u00A0(10)");
    EXPECT_EQ(joined_su("1234.5", "12.3"), "1235\u00A0(12)");
    EXPECT_EQ(joined_su("-1.5", "0.3"), "\u22121.5\u00A0(3)");
}

TEST(StandardUncertainty, WhatIsNotPositiveIsNoUncertainty)
{
    EXPECT_EQ(joined_su("39.374", "0.0"), "none");
    EXPECT_EQ(joined_su("39.374", "-0.1"), "none");
    EXPECT_EQ(joined_su("39.374", "<0.1"), "none");
}

TEST(ValueWithError, ErrorHasTwoDigitsButNoMoreDecimalsThanGiven)
{
    const auto printed = [](const char* value, const char* error) {
        const auto html = format_with_error(value, error);
        return html ? html->str() : "none";
    };
    EXPECT_EQ(printed("3.819", "0.046"), "3.819 \u00B1 0.046");
    EXPECT_EQ(printed("2.780", "0.180"), "2.78 \u00B1 0.18");
    EXPECT_EQ(printed("23.8900000000", "0.2200000000"), "23.89 \u00B1 0.22");
    EXPECT_EQ(printed("0.3660000000", "0.0002400000"), "0.36600 \u00B1 0.00024");
    EXPECT_EQ(printed("63.25", "1.64"), "63.3 \u00B1 1.6");
    EXPECT_EQ(printed("2.930", "0.003"), "2.930 \u00B1 0.003");
    EXPECT_EQ(printed("6.63e-02", "1.2E-4"), "0.06630 \u00B1 0.00012");
    EXPECT_EQ(printed("1.25e+1", "0.5"), "12.5 \u00B1 0.5");
    EXPECT_EQ(printed("2.93", "0"), "none");
    EXPECT_EQ(printed("2.93", "-0.1"), "none");
    EXPECT_EQ(printed("2.93(4)", "0.1"), "none");
    EXPECT_EQ(printed("<2.93", "0.1"), "none");
    EXPECT_EQ(printed("2.93", "1e-99"), "none");
    EXPECT_EQ(printed("2.93", "n.d."), "none");
}

TEST(WithoutExponent, MovesTheDecimalPoint)
{
    const auto plain = [](const char* text) {
        const auto number = without_exponent(*parse_number(text));
        return number ? format_number(*number, as_given).str() : "none";
    };
    EXPECT_EQ(plain("1.2e-3"), "0.0012");
    EXPECT_EQ(plain("2.50E+00"), "2.50");
    EXPECT_EQ(plain("0.25e1"), "2.5");
    EXPECT_EQ(plain("-4e2"), "\u2212400");
    EXPECT_EQ(plain("4(3)e2"), "400\u00A0(300)");
    EXPECT_EQ(plain("0e0"), "0");
    EXPECT_EQ(plain("1e31"), "none");
    EXPECT_EQ(plain("1.5"), "1.5");
}

TEST(Decimals, SumsAndProductsAreExact)
{
    const auto decimal = [](const char* text) { return parse_number(text)->decimal; };
    EXPECT_EQ(sum(decimal("0.1"), decimal("0.02")).text(), "0.12");
    EXPECT_EQ(sum(decimal("999.9"), decimal("0.1")).text(), "1000.0");
    EXPECT_EQ(product(decimal("8.565"), 2).text(), "17.130");
    EXPECT_EQ(product(decimal("0.05"), 12).text(), "0.60");
    EXPECT_EQ(divided_by_thousand(decimal("8565.7")).text(), "8.5657");
    EXPECT_EQ(divided_by_thousand(decimal("65")).text(), "0.065");
}

TEST(Decimals, ComputedNumbersHaveTheDecimalsAskedFor)
{
    EXPECT_EQ(format_computed(0.7, 3).str(), "0.700");
    EXPECT_EQ(format_computed(-1.26, 1).str(), "\u22121.3");
}

} // namespace
} // namespace quillet
