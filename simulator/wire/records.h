/// @file
/// The records inside variants: fixed size, little-endian, NUL-terminated strings.
#pragma once

#include <glib.h>

#include <cstddef>
#include <cstdint>
#include <string>

#include "music/track.h"

namespace ipodsim
{
struct TrackRecord
{
    char texts[4][256];
    std::int32_t values[4];
};
static_assert(sizeof(TrackRecord) == 1040, "size on the wire");

struct ArtworkHead
{
    std::uint32_t words[4];
};
static_assert(sizeof(ArtworkHead) == 16, "size on the wire");

struct ButtonRecord
{
    std::uint32_t words[3];
};
static_assert(sizeof(ButtonRecord) == 12, "size on the wire");

struct AccessoryRecord
{
    char texts[2][256];
};
static_assert(sizeof(AccessoryRecord) == 512, "size on the wire");

/// @param entries      number of entries in the playing list
/// @param deliverable  whether its artwork, if any, can be delivered
TrackRecord ToRecord(const Track& track, std::size_t entries, bool deliverable);

/// The heads for an image and for no image.
ArtworkHead HeadOf(const Picture& picture);
ArtworkHead HeadOfNone();

/// Wraps the bytes in a variant "v" holding an "ay"; floating.
GVariant* Pack(const void* data, std::size_t size);

template <class Record>
GVariant* Pack(const Record& record)
{
    return Pack(&record, sizeof(record));
}

/// Returns false and writes nothing unless @p value is a "v" holding an "ay" of exactly @p size bytes.
bool Unpack(GVariant* value, void* data, std::size_t size);

template <class Record>
bool Unpack(GVariant* value, Record& record)
{
    return Unpack(value, &record, sizeof(record));
}
}  // namespace ipodsim
