#include "quillet/space_group.h"

#include <gtest/gtest.h>

namespace quillet
{
namespace
{

struct SymbolCase {
    const char* given;
    const char* printed;
    int number;
};

class SpaceGroupSymbols : public testing::TestWithParam<SymbolCase>
{
};

TEST_P(SpaceGroupSymbols, ArePrintedAsCrystallographersDo)
{
    const SpaceGroup group = space_group_from_symbol(GetParam().given);
    EXPECT_EQ(group.symbol.str(), GetParam().printed);
    EXPECT_EQ(group.number, GetParam().number);
}

INSTANTIATE_TEST_SUITE_P(
    Spellings, SpaceGroupSymbols,
    testing::Values(SymbolCase{"P 21/c", "<i>P</i>2<sub>1</sub>/<i>c</i>", 14},
                    SymbolCase{"P2~1~/n", "<i>P</i>2<sub>1</sub>/<i>n</i>", 14},
                    SymbolCase{"P2(1)/n ", "<i>P</i>2<sub>1</sub>/<i>n</i>", 14},
                    SymbolCase{"P12(1)/n1", "<i>P</i>2<sub>1</sub>/<i>n</i>", 14},
                    SymbolCase{"P 2_1/c", "<i>P</i>2<sub>1</sub>/<i>c</i>", 14},
                    SymbolCase{"'P 1 21/n 1 '", "<i>P</i>2<sub>1</sub>/<i>n</i>", 14},
                    SymbolCase{"P 1 21 1", "<i>P</i>2<sub>1</sub>", 4},
                    SymbolCase{"C 1 2/c 1", "<i>C</i>2/<i>c</i>", 15},
                    SymbolCase{"I2/c", "<i>I</i>2/<i>c</i>", 15},
                    SymbolCase{"Pbca", "<i>Pbca</i>", 61}, SymbolCase{"P bca", "<i>Pbca</i>", 61},
                    SymbolCase{"P212121", "<i>P</i>2<sub>1</sub>2<sub>1</sub>2<sub>1</sub>", 19},
                    SymbolCase{"P 212121", "<i>P</i>2<sub>1</sub>2<sub>1</sub>2<sub>1</sub>", 19},
                    SymbolCase{"C 2 2 21", "<i>C</i>222<sub>1</sub>", 20},
                    SymbolCase{"Pna21 ", "<i>Pna</i>2<sub>1</sub>", 33},
                    SymbolCase{"P -1", "<i>P</i>1\u0305", 2},
                    SymbolCase{"P -3 m 1", "<i>P</i>3\u0305<i>m</i>1", 164},
                    SymbolCase{"P 3 2 1", "<i>P</i>321", 150},
                    SymbolCase{"P 3 1 2", "<i>P</i>312", 149},
                    SymbolCase{"P 63/m m c", "<i>P</i>6<sub>3</sub>/<i>mmc</i>", 194},
                    SymbolCase{"P 63/mmc", "<i>P</i>6<sub>3</sub>/<i>mmc</i>", 194},
                    SymbolCase{"P 43 21 2", "<i>P</i>4<sub>3</sub>2<sub>1</sub>2", 96},
                    SymbolCase{"I 21 3", "<i>I</i>2<sub>1</sub>3", 199},
                    SymbolCase{"P m -3 m", "<i>Pm</i>3\u0305<i>m</i>", 221},
                    SymbolCase{"H 3", "<i>H</i>3", 146}, SymbolCase{"H3", "<i>H</i>3", 146}));

INSTANTIATE_TEST_SUITE_P(
    Settings, SpaceGroupSymbols,
    testing::Values(SymbolCase{"F d -3 m :1", "<i>Fd</i>3\u0305<i>m</i>:1", 227},
                    SymbolCase{"Fd-3m:1", "<i>Fd</i>3\u0305<i>m</i>:1", 227},
                    SymbolCase{"F d -3 m S", "<i>Fd</i>3\u0305<i>m</i>:1", 227},
                    SymbolCase{"R -3 :H", "<i>R</i>3\u0305:H", 148},
                    SymbolCase{"R -3 m H", "<i>R</i>3\u0305<i>m</i>:H", 166},
                    SymbolCase{"P 4/n m m :2", "<i>P</i>4/<i>nmm</i>:2", 129},
                    SymbolCase{"P 1 1 21/a", "<i>P</i>112<sub>1</sub>/<i>a</i>", 14},
                    SymbolCase{"B 1 21 1", "<i>B</i>2<sub>1</sub>", 0}));

INSTANTIATE_TEST_SUITE_P(Unknown, SpaceGroupSymbols,
                         testing::Values(SymbolCase{"P_1", "<i>P</i>_1", 0},
                                         SymbolCase{"P21/x", "<i>P</i>21/x", 0},
                                         SymbolCase{"nonsense <b>", "<i>n</i>onsense &lt;b&gt;", 0},
                                         SymbolCase{"", "", 0}));

TEST(SpaceGroup, SystemFollowsFromTheSymbol)
{
    EXPECT_EQ(space_group_from_symbol("P 21/c").crystal_system, "monoclinic");
    EXPECT_EQ(space_group_from_symbol("R -3 :H").crystal_system, "trigonal");
    EXPECT_EQ(space_group_from_symbol("P_1").crystal_system, "");
}

TEST(SpaceGroup, FromHallSymbol)
{
    EXPECT_EQ(space_group_from_hall("-P 2ybc").symbol.str(), "<i>P</i>2<sub>1</sub>/<i>c</i>");
    EXPECT_EQ(space_group_from_hall(" -p 2ybc ").number, 14);
    EXPECT_EQ(space_group_from_hall("-F 4vw 2vw 3").symbol.str(), "<i>Fd</i>3\u0305<i>m</i>:2");
    EXPECT_EQ(space_group_from_hall("rubbish").number, 0);
    EXPECT_EQ(space_group_from_hall("C13 13 22").number, 0); // made gemmi read out of bounds
    EXPECT_EQ(space_group_from_hall("").number, 0);
}

TEST(SpaceGroup, FromNumberIsTheReferenceSetting)
{
    EXPECT_EQ(space_group_from_number(19).symbol.str(),
              "<i>P</i>2<sub>1</sub>2<sub>1</sub>2<sub>1</sub>");
    EXPECT_EQ(space_group_from_number(14).symbol.str(), "<i>P</i>2<sub>1</sub>/<i>c</i>");
    EXPECT_EQ(space_group_from_number(0).number, 0);
    EXPECT_EQ(space_group_from_number(231).number, 0);
}

} // namespace
} // namespace quillet
