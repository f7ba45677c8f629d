#include <images/image.h>
#include <ipodkit/picture.h>

#include "pictures/image_type.h"

namespace ipodkit
{
namespace
{
// FNV-1a, 64 bits.
std::uint64_t HashOf(const std::vector<unsigned char>& bytes)
{
    std::uint64_t hash = 14695981039346656037ULL;
    for (const unsigned char byte : bytes) hash = (hash ^ byte) * 1099511628211ULL;
    return hash;
}
}  // namespace

const char* MediaType(PictureType type)
{
    return images::MediaType(ToImageType(type));
}

Picture Examine(std::vector<unsigned char> bytes)
{
    const images::Head head = images::Examine(bytes.data(), bytes.size());
    const std::uint64_t hash = HashOf(bytes);
    return {std::move(bytes), ToPictureType(head.type), head.width, head.height, hash};
}
}  // namespace ipodkit
