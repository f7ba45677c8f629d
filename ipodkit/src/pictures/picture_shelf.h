/// @file
/// The pictures that are in use: equal bytes are one picture, whichever way they came.
#pragma once

#include <ipodkit/picture.h>

#include <unordered_map>

namespace ipodkit
{
/// Context thread only.
class PictureShelf
{
public:
    /// Pictures larger than @p limit bytes are left out.
    explicit PictureShelf(std::size_t limit) : m_limit(limit) {}

    /// Null when there are no bytes, or too many.
    PicturePtr Put(std::vector<unsigned char> bytes);

private:
    void ForgetUnused();

    const std::size_t m_limit;
    std::unordered_map<std::uint64_t, std::weak_ptr<const Picture>> m_pictures;  // by hash; the later of two
};
}  // namespace ipodkit
