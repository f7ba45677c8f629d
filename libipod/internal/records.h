/// @file
/// The fixed records that travel as raw bytes inside variants: little-endian, with NUL-terminated texts in their slots.
#pragma once

#include <QBXIpodTypes.h>
#include <glib.h>

#include <cstddef>
#include <cstdint>
#include <type_traits>

namespace qbx
{
static_assert(G_BYTE_ORDER == G_LITTLE_ENDIAN, "records are little-endian and are copied in memory order");

struct TrackRecord
{
    char text[4][256];
    std::int32_t value[4];
};
static_assert(sizeof(TrackRecord) == 1040 && offsetof(TrackRecord, value) == 1024,
              "the service sends exactly this record");

struct ArtworkHead
{
    std::uint32_t word[4];
};
static_assert(sizeof(ArtworkHead) == 16, "the service sends exactly this record");

struct EapInitRecord
{
    char text[2][256];
};
static_assert(sizeof(EapInitRecord) == 512, "the service expects exactly this record");

/// Fills @p size bytes at @p dest from a "v" holding an "ay". A shorter array is padded with zeros, a longer one
/// truncated.
void ExtractBounded(void* dest, std::size_t size, GVariant* value);

/// A record as received; all zero if @p value is null or of another type.
template <class Record>
Record DecodeRecord(GVariant* value)
{
    static_assert(std::is_trivially_copyable<Record>::value, "records are copied byte by byte");
    Record record;
    ExtractBounded(&record, sizeof(record), value);
    return record;
}

QBXiPodTrackInfo ToTrackInfo(const TrackRecord& record);
QBXTrackArtwork ToArtwork(const ArtworkHead& head);
EapInitRecord ToEapInitRecord(const EAPInfo& info);
}  // namespace qbx
