#include "music/picture.h"

#include <algorithm>
#include <cstddef>
#include <fstream>
#include <iterator>
#include <string_view>

#include "music/tag_reader.h"

namespace ipodsim
{
namespace
{
std::uint32_t BigEndian(const Bytes& bytes, std::size_t at, std::size_t count)
{
    std::uint32_t value = 0;
    for (std::size_t i = at; i < at + count; ++i) value = value << 8U | bytes[i];
    return value;
}

std::string_view TextOf(const Bytes& bytes)
{
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

bool Begins(const Bytes& bytes, std::string_view signature)
{
    return TextOf(bytes).substr(0, signature.size()) == signature;
}

// The first chunk is the 13-byte header, which starts with width and height.
bool IsPng(const Bytes& bytes)
{
    constexpr std::string_view kSignature("\x89PNG\r\n\x1A\n\0\0\0\rIHDR", 16);
    return bytes.size() >= 24 && Begins(bytes, kSignature) && BigEndian(bytes, 16, 4) != 0 &&
           BigEndian(bytes, 20, 4) != 0;
}

// After the first marker comes a marker with a length: not fill bytes, a standalone marker, SOI, or EOI.
bool IsJpeg(const Bytes& bytes)
{
    return bytes.size() >= 4 && Begins(bytes, "\xFF\xD8\xFF") && bytes[3] >= 0xC0 && bytes[3] < 0xFF &&
           (bytes[3] < 0xD0 || bytes[3] > 0xD9);
}

bool IsGif(const Bytes& bytes)
{
    const bool hasSize = bytes.size() >= 10 && (bytes[6] | bytes[7]) != 0 && (bytes[8] | bytes[9]) != 0;
    return hasSize && (Begins(bytes, "GIF87a") || Begins(bytes, "GIF89a"));
}

// The second header starts with its own length.
bool IsBmp(const Bytes& bytes)
{
    constexpr unsigned char kLengths[] = {12, 16, 40, 52, 56, 64, 108, 124};
    const bool known =
        bytes.size() >= 26 && std::find(std::begin(kLengths), std::end(kLengths), bytes[14]) != std::end(kLengths);
    return known && Begins(bytes, "BM") && TextOf(bytes).substr(15, 3) == std::string_view("\0\0\0", 3);
}

bool IsWebp(const Bytes& bytes)
{
    return bytes.size() >= 16 && Begins(bytes, "RIFF") && TextOf(bytes).substr(8, 7) == "WEBPVP8";
}

// Frame headers are C0 to CF, except for three markers with other meanings.
bool IsFrameHeader(unsigned char marker)
{
    return marker >= 0xC0 && marker <= 0xCF && marker != 0xC4 && marker != 0xC8 && marker != 0xCC;
}

void ReadJpegSize(Picture& picture)
{
    const Bytes& bytes = picture.bytes;
    for (std::size_t at = 2; at + 9 <= bytes.size() && bytes[at] == 0xFF; at += 2 + BigEndian(bytes, at + 2, 2))
    {
        if (!IsFrameHeader(bytes[at + 1])) continue;
        picture.height = BigEndian(bytes, at + 5, 2);
        picture.width = BigEndian(bytes, at + 7, 2);
        return;
    }
}

void ReadPngSize(Picture& picture)
{
    picture.width = BigEndian(picture.bytes, 16, 4);
    picture.height = BigEndian(picture.bytes, 20, 4);
}

// Larger than any image that fits into shared memory: a file that has grown is rejected there, not truncated here.
constexpr std::size_t kMostRead = std::size_t{4} << 20U;
constexpr std::size_t kSignatureBytes = 32;

Bytes ReadBeginning(const std::string& file, std::size_t most)
{
    std::ifstream in(file, std::ios::binary);
    Bytes bytes(most);
    in.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(most));
    bytes.resize(static_cast<std::size_t>(std::max<std::streamsize>(in.gcount(), 0)));
    return bytes;
}
}  // namespace

Picture MakePicture(Bytes bytes)
{
    Picture picture;
    picture.bytes = std::move(bytes);
    if (IsPng(picture.bytes)) ReadPngSize(picture);
    if (IsJpeg(picture.bytes)) ReadJpegSize(picture);
    return picture;
}

bool IsPicture(const Bytes& bytes)
{
    return IsPng(bytes) || IsJpeg(bytes) || IsGif(bytes) || IsBmp(bytes) || IsWebp(bytes);
}

bool IsPictureFile(const std::string& file)
{
    return IsPicture(ReadBeginning(file, kSignatureBytes));
}

Picture PictureOf(const Track& track)
{
    if (track.cover.valid()) return track.cover.get();
    if (!track.hasPicture) return {};
    if (!track.folderPicture.empty()) return MakePicture(ReadBeginning(track.folderPicture, kMostRead));
    return MakePicture(ReadEmbeddedPicture(track.file));
}
}  // namespace ipodsim
