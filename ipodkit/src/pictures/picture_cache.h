/// @file
/// The images in use: equal bytes share one Picture, whether an event or an answer brought them.
#pragma once

#include <ipodkit/picture.h>

#include <unordered_map>

namespace ipodkit
{
/// Context thread only.
class PictureCache
{
public:
    /// Images larger than @p limit bytes are omitted.
    explicit PictureCache(std::size_t limit) : m_limit(limit) {}

    /// Returns null if there are no bytes, or too many.
    PicturePtr Put(std::vector<unsigned char> bytes);

private:
    void ForgetUnused();

    const std::size_t m_limit;
    std::unordered_map<std::uint64_t, std::weak_ptr<const Picture>> m_pictures;  // by hash; the later of two
};
}  // namespace ipodkit
