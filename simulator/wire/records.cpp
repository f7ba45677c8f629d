#include "wire/records.h"

#include <cstring>

#include "music/text.h"

namespace ipodsim
{
namespace
{
void Put(char (&slot)[256], const std::string& text)
{
    const std::string fitting = CutUtf8(text, sizeof(slot) - 1);
    std::memcpy(slot, fitting.data(), fitting.size());
}
}  // namespace

TrackRecord ToRecord(const Track& track, std::size_t entries, bool deliverable)
{
    TrackRecord record{};
    Put(record.texts[0], track.title);
    Put(record.texts[1], track.artist);
    Put(record.texts[2], track.album);
    Put(record.texts[3], track.genre);
    record.values[0] = track.lengthMs;
    record.values[1] = track.number;
    record.values[2] = static_cast<std::int32_t>(entries);
    record.values[3] = track.hasPicture && deliverable ? 1 : 0;
    return record;
}

ArtworkHead HeadOf(const Picture& picture)
{
    return {{0, static_cast<std::uint32_t>(picture.bytes.size()), picture.width, picture.height}};
}

ArtworkHead HeadOfNone()
{
    return {{1, 0, 0, 0}};
}

GVariant* Pack(const void* data, std::size_t size)
{
    return g_variant_new_variant(g_variant_new_fixed_array(G_VARIANT_TYPE_BYTE, data, size, 1));
}

bool Unpack(GVariant* value, void* data, std::size_t size)
{
    GVariant* const inner = g_variant_get_variant(value);
    gsize count = 0;
    const void* bytes = nullptr;
    if (g_variant_is_of_type(inner, G_VARIANT_TYPE_BYTESTRING)) bytes = g_variant_get_fixed_array(inner, &count, 1);
    const bool fits = bytes != nullptr && count == size;
    if (fits) std::memcpy(data, bytes, size);
    g_variant_unref(inner);
    return fits;
}
}  // namespace ipodsim
