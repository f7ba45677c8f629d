#include "music/pinyin.h"

#include <gtest/gtest.h>

using ipodnames::Subject;
using ipodsim::Pinyin;

TEST(Pinyin, OnlyLowersAsciiText)
{
    EXPECT_EQ(Pinyin("Don't Stop (Live)", Subject::Title), "don't stop (live)");
}

TEST(Pinyin, ReadsSurnamesForArtistsOnly)
{
    EXPECT_EQ(Pinyin("单晓", Subject::Person), "shan xiao");
    EXPECT_EQ(Pinyin("单晓", Subject::Title), "dan xiao");
}

TEST(Pinyin, LeavesUnreadableTextUnchanged)
{
    EXPECT_EQ(Pinyin("\xE2\x99\xAA", Subject::Title), "\xE2\x99\xAA");
}
