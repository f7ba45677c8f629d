#include "internal/records.h"

#include <algorithm>
#include <cstring>
#include <string>

#include "internal/variant_bytes.h"

namespace qbx
{
namespace
{
// A slot without a NUL continues into the next one, up to the end of the record.
std::string TextFrom(const TrackRecord& record, std::size_t slot)
{
    const char* const begin = record.text[slot];
    const char* const end = reinterpret_cast<const char*>(&record + 1);
    return std::string(begin, strnlen(begin, static_cast<std::size_t>(end - begin)));
}

// The last byte of a slot stays 0.
void FillSlot(char (&slot)[256], const std::string& text)
{
    text.copy(slot, sizeof(slot) - 1);
}
}  // namespace

void ExtractBounded(void* dest, std::size_t size, GVariant* value)
{
    const VariantBytes bytes(value);
    const std::size_t received = std::min<std::size_t>(bytes.count(), size);
    if (received > 0) std::memcpy(dest, bytes.data(), received);
    std::memset(static_cast<char*>(dest) + received, 0, size - received);
}

QBXiPodTrackInfo ToTrackInfo(const TrackRecord& record)
{
    return {TextFrom(record, 0), TextFrom(record, 1), TextFrom(record, 2), TextFrom(record, 3),
            record.value[0],     record.value[1],     record.value[2],     record.value[3]};
}

QBXTrackArtwork ToArtwork(const ArtworkHead& head)
{
    return {head.word[0], head.word[1], head.word[2], head.word[3], {}};
}

EapInitRecord ToEapInitRecord(const EAPInfo& info)
{
    EapInitRecord record{};
    FillSlot(record.text[0], info.text1);
    FillSlot(record.text[1], info.text2);
    return record;
}
}  // namespace qbx
