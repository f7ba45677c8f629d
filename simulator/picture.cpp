#include "picture.h"

#include <algorithm>
#include <cstddef>

#include "tag_reader.h"

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
}  // namespace

Picture MakePicture(Bytes bytes)
{
    Picture picture;
    picture.bytes = std::move(bytes);
    if (IsPng(picture.bytes)) ReadPngSize(picture);
    if (IsJpeg(picture.bytes)) ReadJpegSize(picture);
    return picture;
}

Picture PictureOf(const Track& track)
{
    if (track.picture != nullptr) return *track.picture;
    if (!track.hasPicture || track.file.empty()) return {};
    return MakePicture(ReadEmbeddedPicture(track.file));
}
}  // namespace ipodsim
