#include "picture/picture.h"

#include <gtest/gtest.h>

#include <string>

using ctl::IsSize;

namespace
{
std::vector<unsigned char> Bytes(const std::string& text)
{
    return {text.begin(), text.end()};
}

const char* ExtensionOf(std::vector<unsigned char> image)
{
    return ctl::Extension(ipodkit::Examine(std::move(image)).type);
}

bool IsWhole(std::vector<unsigned char> image)
{
    const ipodkit::Picture picture = ipodkit::Examine(std::move(image));
    return ctl::IsWhole(picture.type, picture.bytes);
}

std::string Chunk(const char* name, const std::string& content)
{
    return std::string(3, '\0') + static_cast<char>(content.size()) + name + content + "sum!";
}

std::string Png()
{
    return "\x89PNG\r\n\x1A\n" + Chunk("IHDR", std::string(13, 'x')) + Chunk("IDAT", "pixels, IEND") +
           Chunk("IEND", "");
}

// Returns a JPEG file with a thumbnail in its own segment.
std::string Jpeg()
{
    return "\xFF\xD8\xFF\xE1" + std::string("\0\x07", 2) + "\xFF\xD8 \xFF\xD9" + "\xFF\xFF\xDA" +
           std::string("\0\x04", 2) + "12pixels\xFF\xD9";
}
}  // namespace

TEST(Extension, FollowsTheTypeThatTheKitDetects)
{
    EXPECT_STREQ(ExtensionOf(Bytes("\xFF\xD8\xFF\xE0")), ".jpg");
    EXPECT_STREQ(ExtensionOf(Bytes("\x89PNG\r\n\x1A\n")), ".png");
    EXPECT_STREQ(ExtensionOf(Bytes("GIF89a")), ".gif");
    EXPECT_STREQ(ExtensionOf(Bytes("BM" + std::string(12, '\0') + "\x28" + std::string(11, '\0'))), ".bmp");
    EXPECT_STREQ(ExtensionOf(Bytes("RIFF\x01\x02\x03\x04WEBPVP8 ")), ".webp");
}

TEST(IsWhole, WantsTheLastChunkOfAPng)
{
    const std::string png = Png();
    EXPECT_TRUE(IsWhole(Bytes(png)));
    EXPECT_TRUE(IsWhole(Bytes(png + "behind it")));
    for (std::size_t size = 8; size < png.size(); ++size) EXPECT_FALSE(IsWhole(Bytes(png.substr(0, size)))) << size;
    EXPECT_FALSE(IsWhole(Bytes("\x89PNG\r\n\x1A\nrubbish rubbish rubbish IEND")));
}

TEST(IsWhole, WantsTheEndOfAJpegAndNotThatOfAPictureInside)
{
    const std::string jpeg = Jpeg();
    EXPECT_TRUE(IsWhole(Bytes(jpeg)));
    EXPECT_TRUE(IsWhole(Bytes(jpeg + std::string(3, '\0'))));
    for (std::size_t size = 3; size < jpeg.size(); ++size) EXPECT_FALSE(IsWhole(Bytes(jpeg.substr(0, size)))) << size;
}

TEST(IsWhole, BelievesOtherKinds)
{
    EXPECT_TRUE(IsWhole(Bytes("GIF89a")));
    EXPECT_TRUE(IsWhole({}));
}

TEST(IsSize, OmitsImpossibleSizes)
{
    EXPECT_TRUE(IsSize(1, 65535));
    EXPECT_FALSE(IsSize(0, 300));
    EXPECT_FALSE(IsSize(1347307277, 169478770));
}

TEST(Extension, IsBinForEverythingElse)
{
    for (const std::string text : {"", "\xFF\xD8", "\x89PN", "RIFF1234WAVE", "RIFF", "<svg>", "BM", "BMX is a bicycle"})
        EXPECT_STREQ(ExtensionOf(Bytes(text)), ".bin") << text;
}
