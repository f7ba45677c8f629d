// Fixed records: decoding what a service sends, valid or not, and encoding what it expects.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "internal/records.h"
#include "variants.h"

using test::Boxed;
using test::Packed;
using test::Pattern;
using test::VariantPtr;
using Bytes = std::vector<unsigned char>;

namespace
{
template <class Record>
Bytes BytesOf(const Record& record)
{
    const auto* const first = reinterpret_cast<const unsigned char*>(&record);
    return Bytes(first, first + sizeof(record));
}

// The received bytes, truncated or zero-padded to the record's size.
Bytes Expected(std::size_t recordSize, std::size_t received)
{
    Bytes bytes = Pattern(received);
    bytes.resize(recordSize, 0);
    return bytes;
}

class RecordOfSize : public testing::TestWithParam<int>
{
};

qbx::TrackRecord FilledTrack(char fill)
{
    qbx::TrackRecord record;
    std::memset(&record, fill, sizeof(record));
    return record;
}

EAPInfo Info(const std::string& first, const std::string& second)
{
    return {first, second};
}

std::string SlotOf(const std::string& text)
{
    std::string slot = text.substr(0, 255);
    slot.resize(256, '\0');
    return slot;
}
}  // namespace

TEST_P(RecordOfSize, DecodesToAZeroPaddedTrackRecord)
{
    const auto received = static_cast<std::size_t>(GetParam());

    const auto record = qbx::DecodeRecord<qbx::TrackRecord>(Packed(Pattern(received)).get());

    EXPECT_EQ(Expected(1040, received), BytesOf(record));
}

TEST_P(RecordOfSize, DecodesToAZeroPaddedArtworkHead)
{
    const auto received = static_cast<std::size_t>(GetParam());

    const auto head = qbx::DecodeRecord<qbx::ArtworkHead>(Packed(Pattern(received)).get());

    EXPECT_EQ(Expected(16, received), BytesOf(head));
}

TEST_P(RecordOfSize, NeverWritesBeyondTheDestination)
{
    const auto received = static_cast<std::size_t>(GetParam());
    Bytes memory(16 + 64, 0xEE);

    qbx::ExtractBounded(memory.data(), 16, Packed(Pattern(received)).get());

    EXPECT_EQ(Expected(16, received), Bytes(memory.begin(), memory.begin() + 16));
    EXPECT_EQ(Bytes(64, 0xEE), Bytes(memory.begin() + 16, memory.end()));
}

INSTANTIATE_TEST_SUITE_P(Sizes, RecordOfSize,
                         testing::Values(0, 1, 15, 16, 17, 1039, 1040, 1041, 65535, 65536, 65537, 1 << 20));

TEST(DecodeRecord, IsAllZeroForANullPointerAndForAnotherType)
{
    const VariantPtr text = Boxed(g_variant_new_string("not bytes"));
    const VariantPtr integers = Boxed(g_variant_new_parsed("[1, 2, 3, 4]"));
    const VariantPtr twice = Boxed(g_variant_new_variant(g_variant_new_bytestring("x")));

    for (GVariant* const value : {static_cast<GVariant*>(nullptr), text.get(), integers.get(), twice.get()})
        EXPECT_EQ(Bytes(16, 0), BytesOf(qbx::DecodeRecord<qbx::ArtworkHead>(value)));
}

TEST(ToTrackInfo, EndsEachTextAtItsFirstNulAndKeepsTheIntegersInOrder)
{
    qbx::TrackRecord record{};
    std::strcpy(record.text[0], "one");
    std::memcpy(record.text[1], "two\0hidden", 10);
    std::strcpy(record.text[3], "\xE5\x91\xA8");
    record.value[0] = 1;
    record.value[1] = -2;
    record.value[2] = INT32_MAX;
    record.value[3] = INT32_MIN;

    const QBXiPodTrackInfo info = qbx::ToTrackInfo(record);

    EXPECT_EQ("one", info.text1);
    EXPECT_EQ("two", info.text2);
    EXPECT_EQ("", info.text3);
    EXPECT_EQ("\xE5\x91\xA8", info.text4);
    EXPECT_EQ(1, info.value1);
    EXPECT_EQ(-2, info.value2);
    EXPECT_EQ(INT32_MAX, info.value3);
    EXPECT_EQ(INT32_MIN, info.value4);
}

TEST(ToTrackInfo, KeepsATextOf255Bytes)
{
    qbx::TrackRecord record{};
    std::memset(record.text[0], 'a', 255);
    std::memset(record.text[1], 'b', 255);

    const QBXiPodTrackInfo info = qbx::ToTrackInfo(record);

    EXPECT_EQ(std::string(255, 'a'), info.text1);
    EXPECT_EQ(std::string(255, 'b'), info.text2);
}

TEST(ToTrackInfo, ContinuesATextWithoutNulIntoTheNextSlot)
{
    qbx::TrackRecord record{};
    std::memset(record.text[0], 'a', 256);
    std::strcpy(record.text[1], "b");

    const QBXiPodTrackInfo info = qbx::ToTrackInfo(record);

    EXPECT_EQ(std::string(256, 'a') + "b", info.text1);
    EXPECT_EQ("b", info.text2);
}

TEST(ToTrackInfo, StopsATextWithoutAnyNulAtTheEndOfTheRecord)
{
    const QBXiPodTrackInfo info = qbx::ToTrackInfo(FilledTrack('z'));

    EXPECT_EQ(std::string(1040, 'z'), info.text1);
    EXPECT_EQ(std::string(784, 'z'), info.text2);
    EXPECT_EQ(std::string(528, 'z'), info.text3);
    EXPECT_EQ(std::string(272, 'z'), info.text4);
}

TEST(ToArtwork, CopiesTheFourWordsAndNoImage)
{
    const QBXTrackArtwork artwork = qbx::ToArtwork({{0, 1, 0x80000000u, UINT32_MAX}});

    EXPECT_EQ(0u, artwork.word1);
    EXPECT_EQ(1u, artwork.word2);
    EXPECT_EQ(0x80000000u, artwork.word3);
    EXPECT_EQ(UINT32_MAX, artwork.word4);
    EXPECT_TRUE(artwork.image.empty());
}

TEST(ToEapInitRecord, StoresTheFirst255BytesOfEachTextAndPadsWithZeros)
{
    for (const std::size_t length : {0u, 1u, 254u, 255u, 256u, 1000u})
    {
        const std::string first(length, 'p');
        const std::string second(length / 2, 'q');

        const qbx::EapInitRecord record = qbx::ToEapInitRecord(Info(first, second));

        EXPECT_EQ(SlotOf(first), std::string(record.text[0], 256)) << length;
        EXPECT_EQ(SlotOf(second), std::string(record.text[1], 256)) << length;
    }
}

TEST(ToEapInitRecord, CopiesANulInsideATextLikeAnyOtherByte)
{
    const std::string first("a\0b", 3);

    const qbx::EapInitRecord record = qbx::ToEapInitRecord(Info(first, ""));

    EXPECT_EQ(SlotOf(first), std::string(record.text[0], 256));
}
