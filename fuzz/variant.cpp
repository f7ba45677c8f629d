// Fuzzes serialized variants of many types: both extractors, and the track and artwork records.
#include <gvariant_data.h>

#include <algorithm>
#include <cstring>

#include "harness.h"
#include "signal_callbacks.h"

namespace
{
using namespace fuzz;

constexpr const char* kTypes[] = {"ay", "v", "s", "ai", "(yi)", "a{sv}", "y", "aay", "mv", "a(y)", "ab", "d"};
constexpr std::size_t kLongest = 4096;  // far below 65,536, where the extractor wraps around

// The first byte selects the type of the contained value; the rest is its serialized form, which need not be in normal
// form. GVariant data from the bus is always in normal form.
GVariant* FromInput(const std::uint8_t* data, std::size_t size)
{
    const char* const type = size == 0 ? "ay" : kTypes[data[0] % std::size(kTypes)];
    void* const copy = g_memdup2(data + (size > 0), size - (size > 0));
    GVariant* const inner = g_variant_new_from_data(G_VARIANT_TYPE(type), copy, size - (size > 0), FALSE, g_free, copy);
    GVariant* const normal = g_variant_get_normal_form(g_variant_ref_sink(inner));
    g_variant_unref(inner);
    GVariant* const value = g_variant_new_variant(normal);
    g_variant_unref(normal);
    return value;
}

// What a receiver must decode from it.
std::vector<unsigned char> Expected(const std::uint8_t* data, std::size_t size)
{
    if (size == 0 || std::strcmp(kTypes[data[0] % std::size(kTypes)], "ay") != 0) return {};
    return {data + 1, data + size};
}

void CheckExtractors(GVariant* value, const std::vector<unsigned char>& expected)
{
    std::vector<unsigned char> bytes = {1, 2, 3};
    gvariant_data_extract(bytes, value);
    Require(bytes.size() == expected.size() + 3 && std::equal(expected.begin(), expected.end(), bytes.begin() + 3),
            "bytes of the vector");
    static unsigned char memory[kLongest + 1];
    memory[expected.size()] = 0xee;
    gvariant_data_extract(memory, value);
    Require(std::equal(expected.begin(), expected.end(), memory), "the bytes in memory");
    Require(memory[expected.size()] == 0xee, "the byte after the last");
}

std::uint32_t WordAt(const std::vector<unsigned char>& record, std::size_t offset)
{
    return record[offset] | record[offset + 1] << 8 | record[offset + 2] << 16 |
           static_cast<std::uint32_t>(record[offset + 3]) << 24;
}

void CheckTrack(GVariant* value, std::vector<unsigned char> record)
{
    record.resize(1040);
    qbx::CallBack_OnIpodPlayingTrackChange(Proxy(), 1, value, Client());
    Require(Listener().track.has_value(), "a track");
    const QBXiPodTrackInfo& track = *Listener().track;
    const std::string* const texts[] = {&track.text1, &track.text2, &track.text3, &track.text4};
    const std::int32_t values[] = {track.value1, track.value2, track.value3, track.value4};
    for (std::size_t i = 0; i < 4; ++i)
    {
        const auto begin = record.begin() + static_cast<std::ptrdiff_t>(256 * i);
        Require(*texts[i] == std::string(begin, std::find(begin, record.end(), 0)), "a text of the track");
        Require(static_cast<std::uint32_t>(values[i]) == WordAt(record, 1024 + 4 * i), "a number of the track");
    }
}

void CheckArtwork(GVariant* value, std::vector<unsigned char> record)
{
    record.resize(16);
    qbx::CallBack_OnIpodArtworkChange(Proxy(), value, Client());
    Require(Listener().artwork.has_value(), "a picture");
    const QBXTrackArtwork& artwork = *Listener().artwork;
    const std::uint32_t words[] = {artwork.word1, artwork.word2, artwork.word3, artwork.word4};
    for (std::size_t i = 0; i < 4; ++i) Require(words[i] == WordAt(record, 4 * i), "a word of the picture");
}
}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size > kLongest) return 0;
    const Variant value(FromInput(data, size));
    const std::vector<unsigned char> expected = Expected(data, size);
    Listener().Forget();
    CheckExtractors(value.get(), expected);
    CheckTrack(value.get(), expected);
    CheckArtwork(value.get(), expected);
    return 0;
}
