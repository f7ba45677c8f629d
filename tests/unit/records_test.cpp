// Fixed records: decoding what a service sends, valid or not, and encoding what it expects.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "internal/records.h"
#include "variants.h"

using test::Packed;
using test::Pattern;
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

TEST(ToEapInitRecord, CopiesANulInsideATextLikeAnyOtherByte)
{
    const std::string first("a\0b", 3);

    const qbx::EapInitRecord record = qbx::ToEapInitRecord({first, ""});

    EXPECT_EQ(first + std::string(253, '\0'), std::string(record.text[0], 256));
}
