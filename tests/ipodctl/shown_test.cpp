// Tests how numbers and bytes are displayed: bars, dumps, lines beside drawings.
#include <gtest/gtest.h>

#include "output/text.h"
#include "picture/picture.h"

namespace ctl
{
namespace
{
TEST(ProgressBar, ShowsHalvesWhereTheTerminalCan)
{
    EXPECT_EQ(ProgressBar(0, 100, 10, true), "──────────");
    EXPECT_EQ(ProgressBar(50, 100, 10, true), "━━━━━─────");
    EXPECT_EQ(ProgressBar(55, 100, 10, true), "━━━━━╸────");
    EXPECT_EQ(ProgressBar(100, 100, 10, true), "━━━━━━━━━━");
    EXPECT_EQ(ProgressBar(50, 100, 12, false), "[====>     ]");
}

TEST(ProgressBar, StaysWithinSensibleWidthsForAnyInput)
{
    for (const bool utf8 : {false, true})
        for (const int width : {-5, 0, 1, 4, 20, 42, 2147483647})
            for (const int position : {-2147483647, 0, 7, 2147483647})
                for (const int length : {-1, 0, 1, 2147483647})
                {
                    const int shown = Width(ProgressBar(position, length, width, utf8));
                    EXPECT_GE(shown, 4);
                    EXPECT_LE(shown, 42);
                }
}

TEST(Hexdump, ShowsPlaceBytesAndCharacters)
{
    EXPECT_EQ(Hexdump(""), "");
    EXPECT_EQ(Hexdump("Hello, world\n\x01\xFF~"),
              "00000000  48 65 6c 6c 6f 2c 20 77  6f 72 6c 64 0a 01 ff 7e  |Hello, world...~|");
    EXPECT_EQ(Hexdump("0123456789abcdefg"),
              "00000000  30 31 32 33 34 35 36 37  38 39 61 62 63 64 65 66  |0123456789abcdef|\n"
              "00000010  67                                                |g|");
}

TEST(Hex, WritesTwoDigitsForEachByte)
{
    EXPECT_EQ(Hex(std::string_view("\x00\x0a\xff", 3)), "000aff");
}

TEST(Fitting, DropsFieldsFromTheEndUntilTheLineFits)
{
    EXPECT_EQ(Fitting({"one", "", "two", "three"}, 80), "one   two   three");
    EXPECT_EQ(Fitting({"one", "two", "three"}, 10), "one   two");
    EXPECT_EQ(Fitting({"longest"}, 3), "longest");
    EXPECT_EQ(Fitting({}, 3), "");
}

TEST(Beside, KeepsTheTextInItsColumn)
{
    const Drawing drawing{3, {"###", "###"}};
    EXPECT_EQ(Beside(drawing, {"a", "b", "c"}), (Lines{"###  a", "###  b", "     c"}));
    EXPECT_EQ(Beside(drawing, {"a"}), (Lines{"###  a", "###"}));
    EXPECT_EQ(Beside({}, {"a"}), Lines{"a"});
}
}  // namespace
}  // namespace ctl
