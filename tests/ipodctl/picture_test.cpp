#include "picture/picture.h"

#include <gtest/gtest.h>

#include <string>

using ctl::Sniff;

namespace
{
std::vector<unsigned char> Bytes(const std::string& text)
{
    return {text.begin(), text.end()};
}
}  // namespace

TEST(Sniff, KnowsTheUsualKindsOfPictures)
{
    EXPECT_STREQ(Sniff(Bytes("\xFF\xD8\xFF\xE0")).extension, ".jpg");
    EXPECT_STREQ(Sniff(Bytes("\x89PNG\r\n\x1A\n")).extension, ".png");
    EXPECT_STREQ(Sniff(Bytes("GIF89a")).extension, ".gif");
    EXPECT_STREQ(Sniff(Bytes("BM....")).extension, ".bmp");
    EXPECT_STREQ(Sniff(Bytes("RIFF\x01\x02\x03\x04WEBPVP8 ")).extension, ".webp");
    EXPECT_STREQ(Sniff(Bytes(std::string("II*\0", 4))).extension, ".tiff");
}

TEST(Sniff, CallsEverythingElseBytes)
{
    for (const std::string text : {"", "\xFF\xD8", "\x89PN", "RIFF1234WAVE", "RIFF", "<svg>"})
        EXPECT_STREQ(Sniff(Bytes(text)).extension, ".bin") << text;
}
