#include "picture/picture.h"

#include <gio/gio.h>
#include <gtest/gtest.h>

#include <string>

using ctl::IsSize;

namespace
{
std::vector<unsigned char> Bytes(const std::string& text)
{
    return {text.begin(), text.end()};
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

std::string BigEndian(std::uint32_t number)
{
    std::string bytes;
    for (const unsigned shift : {24U, 16U, 8U, 0U}) bytes += static_cast<char>(number >> shift & 0xFFU);
    return bytes;
}

std::uint32_t Checksum(const std::string& text)
{
    std::uint32_t sum = 0xFFFFFFFFU;
    for (const char byte : text)
    {
        sum ^= static_cast<unsigned char>(byte);
        for (int bit = 0; bit < 8; ++bit) sum = sum >> 1U ^ ((sum & 1U) != 0 ? 0xEDB88320U : 0U);
    }
    return ~sum;
}

std::string ValidChunk(const std::string& name, const std::string& content)
{
    return BigEndian(static_cast<std::uint32_t>(content.size())) + name + content + BigEndian(Checksum(name + content));
}

std::string Compressed(const std::string& plain)
{
    std::string out(plain.size() + 1000, '\0');
    GZlibCompressor* const compressor = g_zlib_compressor_new(G_ZLIB_COMPRESSOR_FORMAT_ZLIB, 9);
    gsize read = 0;
    gsize written = 0;
    g_converter_convert(G_CONVERTER(compressor), plain.data(), plain.size(), out.data(), out.size(),
                        G_CONVERTER_INPUT_AT_END, &read, &written, nullptr);
    g_object_unref(compressor);
    return out.substr(0, written);
}

// Returns a valid white PNG file of one bit per pixel.
std::string WhitePng(std::uint32_t width, std::uint32_t height)
{
    std::string rows;
    for (std::uint32_t row = 0; row < height; ++row) rows += '\0' + std::string((width + 7) / 8, '\xFF');
    const std::string head = BigEndian(width) + BigEndian(height) + std::string("\1\0\0\0\0", 5);
    return "\x89PNG\r\n\x1A\n" + ValidChunk("IHDR", head) + ValidChunk("IDAT", Compressed(rows)) +
           ValidChunk("IEND", "");
}

ctl::Drawing Drawn(const std::string& image)
{
    return ctl::Draw(ipodkit::Examine(Bytes(image)), 20, 10, ctl::Palette::None, true);
}

// Returns a JPEG file with a thumbnail in its own segment.
std::string Jpeg()
{
    return "\xFF\xD8\xFF\xE1" + std::string("\0\x07", 2) + "\xFF\xD8 \xFF\xD9" + "\xFF\xFF\xDA" +
           std::string("\0\x04", 2) + "12pixels\xFF\xD9";
}
}  // namespace

TEST(Extension, FollowsTheTypeOfTheImage)
{
    EXPECT_STREQ(ctl::Extension(Bytes("\xFF\xD8\xFF\xE0")), ".jpg");
    EXPECT_STREQ(ctl::Extension(Bytes("\x89PNG\r\n\x1A\n")), ".png");
    EXPECT_STREQ(ctl::Extension(Bytes("GIF89a")), ".gif");
    EXPECT_STREQ(ctl::Extension(Bytes("BM" + std::string(12, '\0') + "\x28" + std::string(11, '\0'))), ".bmp");
    EXPECT_STREQ(ctl::Extension(Bytes("RIFF\x01\x02\x03\x04WEBPVP8 ")), ".webp");
    EXPECT_STREQ(ctl::Extension(Bytes(std::string("II*\0\x08\0\0\0", 8))), ".tiff");
}

TEST(IsWhole, RequiresTheLastChunkOfAPng)
{
    const std::string png = Png();
    EXPECT_TRUE(IsWhole(Bytes(png)));
    EXPECT_TRUE(IsWhole(Bytes(png + "behind it")));
    for (std::size_t size = 8; size < png.size(); ++size) EXPECT_FALSE(IsWhole(Bytes(png.substr(0, size)))) << size;
    EXPECT_FALSE(IsWhole(Bytes("\x89PNG\r\n\x1A\nrubbish rubbish rubbish IEND")));
}

TEST(IsWhole, RequiresTheEndOfAJpegNotThatOfItsThumbnail)
{
    const std::string jpeg = Jpeg();
    EXPECT_TRUE(IsWhole(Bytes(jpeg)));
    EXPECT_TRUE(IsWhole(Bytes(jpeg + std::string(3, '\0'))));
    for (std::size_t size = 3; size < jpeg.size(); ++size) EXPECT_FALSE(IsWhole(Bytes(jpeg.substr(0, size)))) << size;
}

TEST(IsWhole, AcceptsOtherTypes)
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
        EXPECT_STREQ(ctl::Extension(Bytes(text)), ".bin") << text;
}

TEST(Draw, KeepsTheAspectRatioOfAnImage)
{
    if (!ctl::CanDraw()) GTEST_SKIP();
    EXPECT_EQ(Drawn(WhitePng(30, 30)).width, 20);
    EXPECT_EQ(Drawn(WhitePng(30, 30)).lines.size(), 10U);
    EXPECT_EQ(Drawn(WhitePng(1200, 600)).lines.size(), 5U);
}

TEST(Draw, RefusesAnImageOfMoreThanSixteenMillionPixels)
{
    if (!ctl::CanDraw()) GTEST_SKIP();
    EXPECT_EQ(Drawn(WhitePng(16000, 1000)).width, 20);
    EXPECT_EQ(Drawn(WhitePng(16001, 1000)).width, 0);
}

TEST(Draw, ReturnsNothingForADamagedImage)
{
    const std::string png = WhitePng(30, 30);
    for (std::size_t size = 0; size < png.size(); ++size) EXPECT_TRUE(Drawn(png.substr(0, size)).lines.empty()) << size;
    EXPECT_TRUE(Drawn(Png()).lines.empty());
    EXPECT_TRUE(Drawn(Jpeg()).lines.empty());
    EXPECT_TRUE(Drawn("GIF89a").lines.empty());
}
