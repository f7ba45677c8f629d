#include "commands/records.h"

#include <gvariant_data.h>

#include <algorithm>
#include <cstring>

namespace ipodkit
{
namespace
{
constexpr std::size_t kSlot = 256;

struct TrackRecord
{
    char text[4][kSlot];
    std::int32_t value[4];
};
static_assert(sizeof(TrackRecord) == 1040, "the service sends exactly this record");

struct EapInitRecord
{
    char text[2][kSlot];
};

tl::unexpected<Error> BadReply(const std::string& reason)
{
    return tl::unexpected(Error{ErrorKind::BadReply, reason});
}

std::vector<unsigned char> BytesOf(GVariant* boxed)
{
    std::vector<unsigned char> bytes;
    gvariant_data_extract(bytes, boxed);
    return bytes;
}

template <class Record>
Record FilledFrom(const std::vector<unsigned char>& bytes)
{
    Record record{};
    if (!bytes.empty()) std::memcpy(&record, bytes.data(), std::min(bytes.size(), sizeof(record)));
    return record;
}

template <class Record>
Result<Record> ToRecord(GVariant* body)
{
    const VariantPtr boxed(g_variant_get_child_value(body, 0));
    const std::vector<unsigned char> bytes = BytesOf(boxed.get());
    if (bytes.size() == sizeof(Record)) return FilledFrom<Record>(bytes);
    return BadReply("expected a record of " + std::to_string(sizeof(Record)) + " bytes, got " +
                    std::to_string(bytes.size()));
}

// Like the core when it reads the records of events: a text without a NUL in its slot continues into the next one, up
// to the end of the record.
std::string TextIn(const TrackRecord& record, std::size_t slot)
{
    const char* const begin = record.text[slot];
    const char* const end = reinterpret_cast<const char*>(&record + 1);
    return {begin, strnlen(begin, static_cast<std::size_t>(end - begin))};
}

Track FromRecord(const TrackRecord& record)
{
    return {TextIn(record, 0),
            TextIn(record, 1),
            TextIn(record, 2),
            TextIn(record, 3),
            std::chrono::milliseconds(record.value[0]),
            record.value[1],
            record.value[2],
            record.value[3]};
}
}  // namespace

Result<Track> ToTrack(GVariant* body)
{
    return ToRecord<TrackRecord>(body).map(FromRecord);
}

Result<PictureHead> ToPictureHead(GVariant* body)
{
    return ToRecord<PictureHead>(body);
}

Track TrackIn(GVariant* boxed)
{
    return FromRecord(FilledFrom<TrackRecord>(BytesOf(boxed)));
}

PictureHead PictureHeadIn(GVariant* boxed)
{
    return FilledFrom<PictureHead>(BytesOf(boxed));
}

std::optional<Error> CheckText(const std::string& text, std::size_t longest)
{
    if (text.size() > longest)
        return Error{ErrorKind::BadArgument, "expected text of at most " + std::to_string(longest) + " bytes, got " +
                                                 std::to_string(text.size())};
    if (!g_utf8_validate(text.data(), static_cast<gssize>(text.size()), nullptr))
        return Error{ErrorKind::BadArgument, "expected UTF-8 text without NUL"};
    return std::nullopt;
}

GVariant* ToEapInit(const AccessoryInfo& info)
{
    EapInitRecord record{};
    info.protocols.copy(record.text[0], kSlot - 1);
    info.bundleId.copy(record.text[1], kSlot - 1);
    return gvariant_data_build(&record, sizeof(record));
}
}  // namespace ipodkit
