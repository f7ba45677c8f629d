#include "output/text.h"

#include <gtest/gtest.h>

#include <ostream>

using namespace ctl;

TEST(Printable, KeepsOrdinaryText)
{
    EXPECT_EQ(Printable("周明轩 - Ünïcode 🎵"), "周明轩 - Ünïcode 🎵");
    EXPECT_EQ(Printable(""), "");
}

TEST(Printable, ReplacesControlCharacters)
{
    EXPECT_EQ(Printable("a\033[2Jb"), "a\uFFFD[2Jb");
    EXPECT_EQ(Printable("a\tb\nc\x7F"), "a\uFFFDb\uFFFDc\uFFFD");
    EXPECT_EQ(Printable("\u009B31m"), "\uFFFD31m");
    EXPECT_EQ(Printable("\u202Egnp.exe"), "\uFFFDgnp.exe");
    EXPECT_EQ(Printable(std::string_view("a\0b", 3)), "a\uFFFDb");
}

TEST(Printable, ReplacesEachByteOfBrokenUtf8)
{
    EXPECT_EQ(Printable("a\xFFz"), "a\uFFFDz");
    EXPECT_EQ(Printable("\xE5\x91"), "\uFFFD\uFFFD");
    EXPECT_EQ(Printable("\xC0\xAF"), "\uFFFD\uFFFD");
    EXPECT_EQ(Printable("\xED\xA0\x80"), "\uFFFD\uFFFD\uFFFD");
}

TEST(Width, CountsColumnsAndNotBytes)
{
    EXPECT_EQ(Width("abc"), 3);
    EXPECT_EQ(Width("周明轩"), 6);
    EXPECT_EQ(Width("e\u0301"), 1);
    EXPECT_EQ(Width("🎵"), 2);
    EXPECT_EQ(Width(""), 0);
}

TEST(Cut, KeepsTheTextThatFits)
{
    EXPECT_EQ(Cut("abc", 3), "abc");
    EXPECT_EQ(Cut("周明", 4), "周明");
}

TEST(Cut, NeverExceedsTheWidthNorHalvesAWideCharacter)
{
    EXPECT_EQ(Cut("abcdef", 4), "abc…");
    EXPECT_EQ(Cut("周明轩", 4), "周…");
    EXPECT_EQ(Cut("周明轩", 1), "…");
    EXPECT_EQ(Cut("abc", 0), "");
    for (int width = 0; width < 8; ++width) EXPECT_LE(Width(Cut("a周b杰c伦", width)), width);
}

TEST(Pad, FillsUpByColumns)
{
    EXPECT_EQ(Pad("周", 4), "周  ");
    EXPECT_EQ(PadLeft("7", 3), "  7");
    EXPECT_EQ(Pad("abc", 2), "abc");
}

TEST(Clock, WritesMinutesAndHours)
{
    EXPECT_EQ(Clock(0), "0:00");
    EXPECT_EQ(Clock(62999), "1:02");
    EXPECT_EQ(Clock(3599999), "59:59");
    EXPECT_EQ(Clock(3600000), "1:00:00");
    EXPECT_EQ(Clock(-5), "0:00");
    EXPECT_EQ(Clock(2147483647), "596:31:23");
}

TEST(Bar, ShowsThePositionWithinItsWidth)
{
    EXPECT_EQ(Bar(0, 100, 12), "[>         ]");
    EXPECT_EQ(Bar(50, 100, 12), "[====>     ]");
    EXPECT_EQ(Bar(100, 100, 12), "[=========>]");
}

TEST(Bar, StaysWithinItsWidthForAnyInput)
{
    EXPECT_EQ(Bar(500, 100, 12), "[=========>]");
    EXPECT_EQ(Bar(-5, 100, 12), "[>         ]");
    EXPECT_EQ(Bar(5, 0, 12), "[----------]");
    EXPECT_EQ(Bar(2147483647, 2147483647, 5), "[==>]");
    EXPECT_EQ(Bar(1, 2, 0), "[>]");
}

TEST(Count, DistinguishesSingularAndPlural)
{
    EXPECT_EQ(Count(1, "entry", "entries"), "1 entry");
    EXPECT_EQ(Count(0, "entry", "entries"), "0 entries");
}

TEST(ParseIndex, AcceptsDigitsOnly)
{
    EXPECT_EQ(ParseIndex("0"), 0);
    EXPECT_EQ(ParseIndex("999999999"), 999999999);
    for (const char* text : {"", "-1", "+1", " 1", "1a", "9999999999", "１"}) EXPECT_FALSE(ParseIndex(text)) << text;
}

struct SeekCase
{
    const char* text;
    bool relative;
    int seconds;
};

void PrintTo(const SeekCase& seek, std::ostream* out)
{
    *out << seek.text;
}

class ParseSeekAccepts : public testing::TestWithParam<SeekCase>
{
};

TEST_P(ParseSeekAccepts, TimesFromTheStartAndFromHere)
{
    const auto target = ParseSeek(GetParam().text);
    ASSERT_TRUE(target);
    EXPECT_EQ(target->relative, GetParam().relative);
    EXPECT_EQ(target->seconds, GetParam().seconds);
}

INSTANTIATE_TEST_SUITE_P(All, ParseSeekAccepts,
                         testing::Values(SeekCase{"90", false, 90}, SeekCase{"1:30", false, 90},
                                         SeekCase{"0", false, 0}, SeekCase{"1:02:03", false, 3723},
                                         SeekCase{"90:00", false, 5400}, SeekCase{"+10", true, 10},
                                         SeekCase{"-1:05", true, -65}));

TEST(ParseSeek, RejectsInvalidTimes)
{
    for (const char* text : {"", "+", "-", "1:", ":30", "1:5", "1:60", "1:2:3:4", "a", "1.5", "--5", "+-5", "99999999"})
        EXPECT_FALSE(ParseSeek(text)) << text;
}
