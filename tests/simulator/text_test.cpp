#include "music/text.h"

#include <glib.h>
#include <gtest/gtest.h>

using ipodsim::CleanName;
using ipodsim::CutUtf8;
using ipodsim::Pinyin;

TEST(CutUtf8, KeepsTextThatFits)
{
    EXPECT_EQ(CutUtf8("周明", 6), "周明");
    EXPECT_EQ(CutUtf8("", 0), "");
    EXPECT_EQ(CutUtf8(std::string(255, 'a')).size(), 255U);
}

TEST(CutUtf8, CutsBeforeACharacterThatDoesNotFit)
{
    EXPECT_EQ(CutUtf8("周明", 5), "周");
    EXPECT_EQ(CutUtf8("周明", 4), "周");
    EXPECT_EQ(CutUtf8("周明", 3), "周");
    EXPECT_EQ(CutUtf8("周明", 2), "");
    EXPECT_EQ(CutUtf8("a😀b", 4), "a");
    EXPECT_EQ(CutUtf8("a😀b", 5), "a😀");
}

TEST(CutUtf8, ReturnsValidTextAtEveryLength)
{
    const std::string text = "Été à vélo 周明轩 😀 עברית";
    for (std::size_t length = 0; length <= text.size(); ++length)
    {
        const std::string cut = CutUtf8(text, length);
        EXPECT_LE(cut.size(), length);
        EXPECT_GT(cut.size() + 4, length) << "loses at most one character";
        EXPECT_TRUE(g_utf8_validate(cut.data(), static_cast<gssize>(cut.size()), nullptr));
    }
}

TEST(CleanName, CutsANameOf300BytesTo255AtABoundary)
{
    std::string name = "a";
    while (name.size() < 300) name += "周";

    const std::string clean = CleanName(name, "none");

    EXPECT_EQ(clean.size(), 253U);  // 1 + 84 * 3
    EXPECT_TRUE(g_utf8_validate(clean.c_str(), -1, nullptr));
}

TEST(CleanName, UsesTheFallbackForAnEmptyOrBlankName)
{
    EXPECT_EQ(CleanName("", "Unknown artist"), "Unknown artist");
    EXPECT_EQ(CleanName(" \t\n", "Unknown artist"), "Unknown artist");
    EXPECT_EQ(CleanName(std::string("\0abc", 4), "Unknown artist"), "Unknown artist");
}

TEST(CleanName, TrimsBlanksAndReplacesInvalidBytes)
{
    EXPECT_EQ(CleanName("  Low Water \n", "none"), "Low Water");
    EXPECT_EQ(CleanName("a\xff", "none"), "a\xEF\xBF\xBD");
}

TEST(Pinyin, OnlyLowersAsciiTextAndLeavesUnreadableTextUnchanged)
{
    EXPECT_EQ(Pinyin("Don't Stop (Live)", ipodnames::Subject::Title), "don't stop (live)");
    EXPECT_EQ(Pinyin("\xE2\x99\xAA", ipodnames::Subject::Title), "\xE2\x99\xAA");
}

TEST(Pinyin, ReadsSurnamesForArtistsOnly)
{
    EXPECT_EQ(Pinyin("单晓", ipodnames::Subject::Person), "shan xiao");
    EXPECT_EQ(Pinyin("单晓", ipodnames::Subject::Title), "dan xiao");
}
