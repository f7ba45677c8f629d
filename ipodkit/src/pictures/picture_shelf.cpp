#include "pictures/picture_shelf.h"

namespace ipodkit
{
PicturePtr PictureShelf::Put(std::vector<unsigned char> bytes)
{
    if (bytes.empty() || bytes.size() > m_limit) return nullptr;
    Picture picture = Examine(std::move(bytes));
    if (PicturePtr known = Find(picture)) return known;
    auto fresh = std::make_shared<const Picture>(std::move(picture));
    m_pictures.emplace(fresh->hash, fresh);
    return fresh;
}

// Forgets those that nobody uses any more.
PicturePtr PictureShelf::Find(const Picture& picture)
{
    for (auto entry = m_pictures.begin(); entry != m_pictures.end();)
    {
        PicturePtr known = entry->second.lock();
        if (known != nullptr && known->hash == picture.hash && known->bytes == picture.bytes) return known;
        entry = known == nullptr ? m_pictures.erase(entry) : std::next(entry);
    }
    return nullptr;
}
}  // namespace ipodkit
