#include <gmock/gmock.h>
#include <ipodkit/picture_files.h>

#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <thread>

namespace test
{
namespace
{
using namespace ipodkit;
namespace fs = std::filesystem;
using Bytes = std::vector<unsigned char>;

Bytes Padded(Bytes bytes, std::size_t size = 64)
{
    bytes.resize(std::max(size, bytes.size()));
    return bytes;
}

Bytes Png(unsigned char width)
{
    return Padded(
        {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n', 0, 0, 0, 13, 'I', 'H', 'D', 'R', 0, 0, 0, width, 0, 0, 1, 0});
}

// Starts with a table, fill bytes, and another table.
const Bytes kJpeg = Padded(
    {0xFF, 0xD8, 0xFF, 0xE0, 0, 4, 'x', 'y', 0xFF, 0xFF, 0xC4, 0, 3, 'z', 0xFF, 0xC2, 0, 17, 8, 1, 44, 2, 88, 3});

struct Sample
{
    const char* name;
    Bytes bytes;
    PictureType type;
    std::uint32_t width;
    std::uint32_t height;
};

class PictureOfTypeTest : public testing::TestWithParam<Sample>
{
};

TEST_P(PictureOfTypeTest, HasTypeAndSize)
{
    const Picture picture = Examine(GetParam().bytes);

    EXPECT_EQ(picture.type, GetParam().type);
    EXPECT_EQ(picture.width, GetParam().width);
    EXPECT_EQ(picture.height, GetParam().height);
    EXPECT_EQ(picture.bytes, GetParam().bytes);
}

// Truncated at every length; the sanitizers check the reads.
TEST_P(PictureOfTypeTest, HasNoWrongTypeOrSizeWhenTruncated)
{
    const Sample& known = GetParam();
    for (std::size_t size = 0; size < known.bytes.size(); ++size)
    {
        const Picture picture =
            Examine(Bytes(known.bytes.begin(), known.bytes.begin() + static_cast<std::ptrdiff_t>(size)));
        EXPECT_EQ(picture.bytes.size(), size);
        EXPECT_THAT(picture.type, testing::AnyOf(known.type, PictureType::Unknown)) << size;
        EXPECT_THAT(std::pair(picture.width, picture.height),
                    testing::AnyOf(std::pair(known.width, known.height), std::pair(0U, 0U)))
            << size;
    }
}

// A BMP whose second header has that length and starts with these bytes.
Bytes Bmp(unsigned char length, const Bytes& size)
{
    Bytes bytes = {'B', 'M', 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, length, 0, 0, 0};
    bytes.insert(bytes.end(), size.begin(), size.end());
    return Padded(bytes);
}

// A WebP image with a single chunk.
Bytes WebP(char kind, const Bytes& chunk)
{
    Bytes bytes = {'R', 'I', 'F', 'F', 0, 0, 0, 0, 'W', 'E', 'B', 'P', 'V', 'P', '8', 0, 0, 0, 0, 0};
    bytes[15] = static_cast<unsigned char>(kind);
    bytes.insert(bytes.end(), chunk.begin(), chunk.end());
    return Padded(bytes);
}

// The directory follows the header: an irrelevant tag, a 16-bit width, and a 32-bit height.
const Bytes kTiff = Padded({'I', 'I', 42, 0, 8, 0, 0, 0, 3, 0, 0xFE, 0, 4, 0, 1, 0, 0, 0, 9, 9, 0, 0, 0,
                            1,   3,   0,  1, 0, 0, 0, 5, 0, 0, 0,    1, 1, 4, 0, 1, 0, 0, 0, 6, 0, 0, 0});
const Bytes kMotorolaTiff =
    Padded({'M', 'M', 0, 42, 0, 0, 0, 8, 0, 2, 1, 0, 0, 3, 0, 0, 0, 1, 0, 5, 0, 0, 1, 1, 0, 4, 0, 0, 0, 1, 0, 0, 0, 6});

INSTANTIATE_TEST_SUITE_P(
    Types, PictureOfTypeTest,
    testing::Values(
        Sample{"Png", Png(7), PictureType::Png, 7, 256}, Sample{"PngWithoutWidth", Png(0), PictureType::Png, 0, 0},
        Sample{"Jpeg", kJpeg, PictureType::Jpeg, 600, 300},
        Sample{"JpegWithPixelsBeforeItsSize",
               Padded({0xFF, 0xD8, 0xFF, 0xDA, 0, 2, 0xFF, 0xC0, 0, 17, 8, 1, 44, 2, 88, 3}), PictureType::Jpeg, 0, 0},
        Sample{"Gif", Padded({'G', 'I', 'F', '8', '9', 'a', 16, 0, 0, 1}), PictureType::Gif, 16, 256},
        Sample{"Bmp", Bmp(40, {5, 0, 0, 0, 0xFA, 0xFF, 0xFF, 0xFF}), PictureType::Bmp, 5, 6},
        Sample{"BmpWithItsOldestHead", Bmp(12, {200, 0, 24, 0, 1, 0, 24, 0}), PictureType::Bmp, 200, 24},
        Sample{"TextThatBeginsAsABmp", Padded({'B', 'M', 'W', ' ', 'i', 's', ' ', 'a'}), PictureType::Unknown, 0, 0},
        Sample{"WebpLossy", WebP(' ', {0, 0, 0, 0x9D, 1, 0x2A, 5, 0, 6, 0}), PictureType::WebP, 5, 6},
        Sample{"WebpLossless", WebP('L', {0x2F, 4, 0x40, 1, 0}), PictureType::WebP, 5, 6},
        Sample{"WebpExtended", WebP('X', {0, 0, 0, 0, 4, 0, 0, 5, 0, 0}), PictureType::WebP, 5, 6},
        Sample{"WebpWithoutPixels", WebP(' ', {0, 0, 0, 0, 0, 0, 5, 0, 6, 0}), PictureType::WebP, 0, 0},
        Sample{"Tiff", kTiff, PictureType::Tiff, 5, 6}, Sample{"MotorolaTiff", kMotorolaTiff, PictureType::Tiff, 5, 6},
        Sample{"Text", Padded({'h', 'e', 'l', 'l', 'o'}), PictureType::Unknown, 0, 0}),
    [](const auto& known) { return std::string(known.param.name); });

TEST(PictureTest, HashesAreEqualOnlyForEqualBytes)
{
    EXPECT_EQ(Examine(Png(1)).hash, Examine(Png(1)).hash);
    EXPECT_NE(Examine(Png(1)).hash, Examine(Png(2)).hash);
    EXPECT_EQ(Examine({'a'}).hash, 0x071717D2D36B6B11U);
    EXPECT_NE(Examine({'a', 0}).hash, Examine({'a'}).hash);
}

class PictureFilesTest : public testing::Test
{
protected:
    PictureFilesTest()
    {
        char name[] = "/tmp/ipodkit-pictures-XXXXXX";
        directory = mkdtemp(name);
    }
    ~PictureFilesTest() override { fs::remove_all(directory); }

    std::size_t Files(const fs::path& where) const
    {
        return static_cast<std::size_t>(std::distance(fs::directory_iterator(where), fs::directory_iterator()));
    }

    fs::path directory;
};

TEST_F(PictureFilesTest, WritesAnImageOnceAndReturnsItsUri)
{
    const PictureFiles files(directory / "new folder");

    const std::string uri = files.Uri(Examine(Png(1))).value();

    EXPECT_THAT(uri, testing::StartsWith("file:///tmp/"));
    EXPECT_THAT(uri, testing::HasSubstr("new%20folder"));
    EXPECT_THAT(uri, testing::EndsWith(".png"));
    EXPECT_EQ(files.Uri(Examine(Png(1))).value(), uri);
    EXPECT_NE(files.Uri(Examine(Png(2))).value(), uri);
    EXPECT_EQ(Files(directory / "new folder"), 2U);
    EXPECT_EQ(fs::file_size(*fs::directory_iterator(directory / "new folder")), 64U);
}

TEST_F(PictureFilesTest, TheFileOfTheLastImageAlwaysExists)
{
    const PictureFiles files(directory, 1);

    for (unsigned char i = 0; i < 50; ++i)
    {
        const std::string uri = files.Uri(Examine(Png(i))).value();
        EXPECT_EQ(fs::file_size(uri.substr(std::string("file://").size())), 64U);
        EXPECT_EQ(Files(directory), 1U);
    }
}

// Recency counts by use: the files returned last are kept, whether rewritten or not, regardless of the clock.
TEST_F(PictureFilesTest, KeepsTheFilesReturnedLast)
{
    const PictureFiles files(directory, 3);
    const auto path = [&](int picture)
    {
        const Picture examined = Examine(Png(static_cast<unsigned char>(picture)));
        return files.Uri(examined).value().substr(std::string("file://").size());
    };
    std::vector<std::string> handedOut;
    const auto handOut = [&](int picture)
    {
        handedOut.push_back(path(picture));
        for (std::size_t i = handedOut.size() - std::min<std::size_t>(handedOut.size(), 3); i < handedOut.size(); ++i)
            EXPECT_TRUE(fs::exists(handedOut[i])) << "number " << i << " after number " << handedOut.size() - 1;
    };

    for (const int picture : {1, 2, 3, 1, 4, 2, 1, 5, 4, 6, 4, 7, 4, 8, 9, 4}) handOut(picture);
    for (const auto& entry : fs::directory_iterator(directory))
        fs::last_write_time(entry, fs::last_write_time(entry) + std::chrono::hours(24));
    for (const int picture : {10, 11, 10, 12, 13, 10, 14, 15}) handOut(picture);

    EXPECT_EQ(Files(directory), 3U);
}

TEST_F(PictureFilesTest, AFileWithOtherBytesIsWrittenAgain)
{
    const PictureFiles files(directory);
    const std::string uri = files.Uri(Examine(Png(1))).value();
    const std::string path = uri.substr(std::string("file://").size());
    for (const std::size_t size : {5, 64})
    {
        std::ofstream(path) << std::string(size, 'x');

        EXPECT_EQ(files.Uri(Examine(Png(1))).value(), uri);

        std::ifstream file(path);
        EXPECT_EQ((Bytes{std::istreambuf_iterator<char>(file), {}}), Png(1));
    }
}

TEST_F(PictureFilesTest, RemovesOnlyItsOwnFiles)
{
    std::ofstream(directory / "holiday.jpg") << "x";
    const PictureFiles files(directory, 1);

    for (unsigned char i = 0; i < 10; ++i) EXPECT_TRUE(files.Uri(Examine(Png(i))));

    EXPECT_TRUE(fs::exists(directory / "holiday.jpg"));
    EXPECT_EQ(Files(directory), 2U);
}

// A reader that polls continuously finds only complete files.
TEST_F(PictureFilesTest, AFileIsNeverVisibleIncomplete)
{
    const PictureFiles files(directory);
    std::atomic<bool> writing{true};
    int seen = 0;
    int halves = 0;
    std::thread reader(
        [&]
        {
            while (writing)
                for (const auto& entry : fs::directory_iterator(directory))
                {
                    std::error_code gone;
                    const auto size = entry.path().extension() == ".png" ? fs::file_size(entry.path(), gone) : 1 << 20;
                    seen += gone ? 0 : 1;
                    halves += !gone && size != 1 << 20 ? 1 : 0;
                }
        });
    for (unsigned char i = 0; i < 100; ++i) EXPECT_TRUE(files.Uri(Examine(Padded(Png(i), 1 << 20))));
    writing = false;
    reader.join();

    EXPECT_GT(seen, 0);
    EXPECT_EQ(halves, 0);
}

TEST_F(PictureFilesTest, ADirectoryWithoutAUriIsAnError)
{
    setenv("XDG_RUNTIME_DIR", "nowhere", 1);
    fs::current_path(directory);
    const PictureFiles files;

    const Result<std::string> uri = files.Uri(Examine(Png(1)));

    fs::current_path("/");
    ASSERT_FALSE(uri);
    EXPECT_EQ(uri.error().kind, ErrorKind::NoStorage);
    EXPECT_FALSE(fs::exists(directory / "nowhere"));
}

TEST_F(PictureFilesTest, ADeletedWorkingDirectoryIsAnError)
{
    fs::create_directory(directory / "gone");
    fs::current_path(directory / "gone");
    fs::remove(directory / "gone");
    const PictureFiles files("pictures");

    const Result<std::string> uri = files.Uri(Examine(Png(1)));

    fs::current_path("/");
    ASSERT_FALSE(uri);
    EXPECT_EQ(uri.error().kind, ErrorKind::NoStorage);
}

TEST_F(PictureFilesTest, ReportsWhyItCannotWrite)
{
    std::ofstream(directory / "file") << "x";
    const PictureFiles files(directory / "file");

    const Result<std::string> uri = files.Uri(Examine(Png(1)));

    ASSERT_FALSE(uri);
    EXPECT_EQ(uri.error().kind, ErrorKind::NoStorage);
}
}  // namespace
}  // namespace test
