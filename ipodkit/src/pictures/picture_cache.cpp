#include "pictures/picture_cache.h"

namespace ipodkit
{
PicturePtr PictureCache::Put(std::vector<unsigned char> bytes)
{
    if (bytes.empty() || bytes.size() > m_limit) return nullptr;
    Picture picture = Examine(std::move(bytes));
    const auto known = m_pictures.find(picture.hash);
    PicturePtr inUse = known == m_pictures.end() ? nullptr : known->second.lock();
    if (inUse != nullptr && inUse->bytes == picture.bytes) return inUse;
    ForgetUnused();
    auto fresh = std::make_shared<const Picture>(std::move(picture));
    m_pictures[fresh->hash] = fresh;
    return fresh;
}

void PictureCache::ForgetUnused()
{
    for (auto entry = m_pictures.begin(); entry != m_pictures.end();)
        entry = entry->second.expired() ? m_pictures.erase(entry) : std::next(entry);
}
}  // namespace ipodkit
