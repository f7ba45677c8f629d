#include "output/text.h"

#include <gtest/gtest.h>

#include <climits>

using ctl::Table;
using ctl::Unaligned;

TEST(Table, AlignsWideNamesByTheirColumns)
{
    EXPECT_EQ(Table({{"0", "周明轩", "zhou ming xuan"}, {"1", "Ada", ""}, {"2", "Bo", "x"}}, INT_MAX),
              "0  周明轩  zhou ming xuan\n"
              "1  Ada\n"
              "2  Bo      x");
}

TEST(Table, CutsTheWidestColumnToFitATerminal)
{
    const std::string text = Table({{"0", std::string(100, 'a')}}, 20);
    EXPECT_EQ(text, "0  " + std::string(16, 'a') + "…");
    EXPECT_EQ(ctl::Width(text), 20);
}

TEST(Table, LeavesSomethingOnATerminalThatIsTooNarrow)
{
    EXPECT_EQ(Table({{"0", "abcdefghijkl"}}, 5), "0  abcdefg…");
}

TEST(Unaligned, PadsNoLineToTheLengthOfAnother)
{
    EXPECT_EQ(Unaligned({{"0", std::string(255, 'a'), "x"}, {"1", "Bo", ""}, {"2", "Bo", "y"}}),
              "0  " + std::string(255, 'a') + "  x\n1  Bo\n2  Bo  y");
}

TEST(Table, OfNothingIsEmpty)
{
    EXPECT_EQ(Table({}, 80), "");
}
