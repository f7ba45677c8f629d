#include "music/picture.h"

#include <images/image.h>

#include <algorithm>
#include <cstddef>
#include <fstream>
#include <utility>

#include "music/tag_reader.h"

namespace ipodsim
{
namespace
{
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
    const images::Head head = images::Examine(bytes.data(), bytes.size());
    return {std::move(bytes), head.width, head.height};
}

// Only the size of a JPEG may follow after the beginning of the file.
bool IsPicture(const Bytes& bytes)
{
    const images::Head head = images::Examine(bytes.data(), bytes.size());
    return head.type == images::Type::Jpeg || (head.width != 0 && head.type != images::Type::Tiff);
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
