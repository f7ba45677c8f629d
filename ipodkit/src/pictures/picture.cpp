#include <glib.h>
#include <images/image.h>
#include <ipodkit/picture.h>

#include <cstring>

#include "pictures/image_type.h"

namespace ipodkit
{
namespace
{
// MurmurHash64A, eight bytes at a time, in the byte order of x86 and ARM on every machine.
constexpr std::uint64_t kFactor = 0xc6a4a7935bd1e995U;

std::uint64_t Shifted(std::uint64_t sum)
{
    return sum ^ (sum >> 47);
}

std::uint64_t HashOf(const std::vector<unsigned char>& bytes)
{
    const std::size_t size = bytes.size();
    std::uint64_t hash = size * kFactor;
    std::uint64_t word = 0;
    std::size_t at = 0;
    for (; size - at >= sizeof(word); at += sizeof(word))
    {
        std::memcpy(&word, &bytes[at], sizeof(word));
        hash = (hash ^ Shifted(GUINT64_FROM_LE(word) * kFactor) * kFactor) * kFactor;
    }
    word = 0;
    for (std::size_t i = at; i < size; ++i) word |= std::uint64_t{bytes[i]} << (8 * (i - at));
    if (at < size) hash = (hash ^ word) * kFactor;
    return Shifted(Shifted(hash) * kFactor);
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
