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

bool IsPng(const Bytes& bytes)
{
    constexpr unsigned char kSignature[] = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
    return bytes.size() >= 24 && std::equal(std::begin(kSignature), std::end(kSignature), bytes.begin());
}

bool IsJpeg(const Bytes& bytes)
{
    return bytes.size() >= 4 && bytes[0] == 0xFF && bytes[1] == 0xD8;
}

// Frame headers are C0 to CF but for three markers of other meaning.
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
// More than any picture that fits into shared memory, so that a larger one is refused there and not cut here.
constexpr std::size_t kLargestPicture = std::size_t{4} << 20U;
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
    const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    const auto begins = [&](std::string_view signature) { return text.substr(0, signature.size()) == signature; };
    return IsPng(bytes) || IsJpeg(bytes) || begins("GIF8") || begins("BM") ||
           (begins("RIFF") && text.substr(0, 12).substr(8) == "WEBP");
}

bool IsPictureFile(const std::string& file)
{
    return IsPicture(ReadBeginning(file, kSignatureBytes));
}

Picture PictureOf(const Track& track)
{
    if (track.cover.valid()) return track.cover.get();
    if (!track.hasPicture) return {};
    if (!track.folderPicture.empty()) return MakePicture(ReadBeginning(track.folderPicture, kLargestPicture));
    return MakePicture(ReadEmbeddedPicture(track.file));
}
}  // namespace ipodsim
