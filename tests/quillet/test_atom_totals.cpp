#include "quillet/atom_totals.h"

#include <gtest/gtest.h>

namespace quillet
{
namespace
{

TEST(AtomTotals, HydrogenAndOtherModelsDoNotCount)
{
    AtomTotals totals;
    EXPECT_TRUE(totals.empty());
    totals.add({"C", "1", "10.25", "3"});
    totals.add({"H", "1", "99", "3"});
    totals.add({"D", "1", "99", "3"});
    totals.add({"HO", "2", "20", "3"}); // holmium
    totals.add({"C", "1", "99", "4"});
    totals.add({"O", "?", "30", "3"});
    EXPECT_EQ(totals.of_entity("1").atoms, 1U);
    EXPECT_EQ(totals.of_entity("2").atoms, 1U);
    EXPECT_EQ(totals.of_entity("").atoms, 1U);
    EXPECT_EQ(totals.of_entity("9").atoms, 0U);
    EXPECT_EQ(totals.of_all().atoms, 3U);
    EXPECT_EQ(totals.of_all().mean_b()->text(), "20.1");
}

TEST(AtomTotals, OnlyNumbersCountInTheMean)
{
    AtomTotals totals;
    for (const char* b : {"?", ".", "", "n/a", "1.2.3", "12345678"})
        totals.add({"C", "1", b, ""});
    EXPECT_EQ(totals.of_all().atoms, 6U);
    EXPECT_FALSE(totals.of_all().mean_b());
    for (const char* b : {"-1.5", "+2", ".5(3)", "4.", "0.1234567"})
        totals.add({"C", "1", b, ""});
    EXPECT_EQ(totals.of_all().atoms_with_b, 5U);
    EXPECT_EQ(totals.of_all().b_sum, 512345);
    EXPECT_EQ(totals.of_all().mean_b()->text(), "1.0");
}

TEST(AtomTotals, MeanIsRoundedHalfAwayFromZero)
{
    const auto mean = [](std::initializer_list<const char*> values) {
        AtomTotals totals;
        for (const char* b : values)
            totals.add({"C", "1", b, "1"});
        return totals.of_all().mean_b()->text();
    };
    EXPECT_EQ(mean({"20.25"}), "20.3");
    EXPECT_EQ(mean({"20.24999"}), "20.2");
    EXPECT_EQ(mean({"0.04"}), "0.0");
    EXPECT_EQ(mean({"-0.04"}), "0.0");
    EXPECT_EQ(mean({"-0.25", "-0.45"}), "\u22120.4");
    EXPECT_EQ(mean({"10", "20.5", "30.25"}), "20.3");
}

TEST(AtomTotals, SumsAreExact)
{
    AtomTotals totals;
    for (int i = 0; i < 1000; ++i)
        totals.add({"C", i % 2 == 0 ? "1" : "2", "0.1", "1"});
    EXPECT_EQ(totals.of_all().b_sum, 10000000);
    EXPECT_EQ(totals.of_entity("2").mean_b()->text(), "0.1");
}

} // namespace
} // namespace quillet
