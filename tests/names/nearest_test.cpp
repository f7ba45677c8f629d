#include <ipodnames/nearest.h>

#include <gtest/gtest.h>

using ipodnames::Nearest;

TEST(Nearest, FindsTheNameWithTheFewestEdits)
{
    EXPECT_EQ(Nearest("staus", {"stop", "status", "seek"}), "status");
    EXPECT_EQ(Nearest("STOP", {"stop", "status"}), "stop");
    EXPECT_EQ(Nearest("abc", {"abd", "abe"}), "abd");
    EXPECT_EQ(Nearest("Été a velo", {"Gravel", "été à vélo"}), "été à vélo");
}

TEST(Nearest, CountsCharactersAndNotBytes)
{
    EXPECT_EQ(Nearest("长夜里的音月", {"长夜里的音乐"}), "长夜里的音乐");
    EXPECT_EQ(Nearest("流水", {"梅花"}), "");
}

TEST(Nearest, SuggestsNothingThatDiffersMuch)
{
    for (const char* different : {"dance", "", "x", "it"}) EXPECT_EQ(Nearest(different, {"status", "stop"}), "");
    EXPECT_EQ(Nearest("abcdefghi", {"abcdefxyz"}), "abcdefxyz");
    EXPECT_EQ(Nearest("abcdefgh", {"abcdexyz"}), "");
    EXPECT_EQ(Nearest(std::string(65, 'a'), {std::string(65, 'a')}), "");
    EXPECT_EQ(Nearest("stop", {}), "");
}

TEST(Nearest, AcceptsInvalidUtf8)
{
    EXPECT_EQ(Nearest("ab\xFF", {"ab"}), "ab");
}
