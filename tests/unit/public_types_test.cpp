// Properties of the public types that existing applications and services rely on.
#include <IQBXAppListener.h>
#include <IQBXIpodPlayer.h>
#include <QBXIpodShareMemory.h>
#include <QBXIpodTypes.h>
#include <gtest/gtest.h>
#include <ipod.pb.h>

#include <cstddef>
#include <type_traits>

#include "internal/records.h"

namespace
{
template <class T>
constexpr bool kCarriesAnyInt = std::is_same<std::underlying_type_t<T>, int>::value &&
                                !std::is_convertible<int, T>::value && std::is_convertible<T, int>::value;

template <class Optional, class Value>
constexpr bool kIsOptional = std::is_same<std::decay_t<Optional>, std::optional<Value>>::value;
}  // namespace

TEST(PublicTypes, HaveEnumerationsForEveryInteger)
{
    EXPECT_TRUE(kCarriesAnyInt<iPodPlayerPlayStatus>);
    EXPECT_TRUE(kCarriesAnyInt<iPodPlayerShuffleStatus>);
    EXPECT_TRUE(kCarriesAnyInt<iPodPlayerRepeatStatus>);
    EXPECT_TRUE(kCarriesAnyInt<iPodPlayerPlayOption_e>);
    EXPECT_TRUE(kCarriesAnyInt<QBXAppleDeviceDetectStatus>);
    EXPECT_TRUE(kCarriesAnyInt<LocationStatus>);
    EXPECT_TRUE(kCarriesAnyInt<PhoneCallStatus>);
    EXPECT_TRUE(kCarriesAnyInt<BatteryChargingStatus>);
    EXPECT_EQ(255, static_cast<iPodPlayerPlayStatus>(255));
}

TEST(PublicTypes, NumberThePlayOptionsFromOneToSeven)
{
    EXPECT_EQ(1, IPOD_PLAY_REQUEST_SOURCE_0);
    EXPECT_EQ(2, IPOD_PLAY_REQUEST_SOURCE_1);
    EXPECT_EQ(3, IPOD_PLAY_START);
    EXPECT_EQ(4, IPOD_PLAY_RESUME);
    EXPECT_EQ(5, IPOD_PLAY_RESTART);
    EXPECT_EQ(6, IPOD_PLAY_CONFIRM_ACTIVE);
    EXPECT_EQ(7, IPOD_PLAY_CONFIRM_DEACTIVE);
}

TEST(PublicTypes, GiveOptionalEnumerationsTheirMessageRanges)
{
    EXPECT_EQ(6, PHONE_CALL_DISCONNECTING);
    EXPECT_EQ(2, PHONE_CALL_OUTGOING);
    EXPECT_EQ(3, CALL_SERVICE_AUDIO);
    EXPECT_EQ(2, CALL_FAILED);
    EXPECT_EQ(3, BATTERY_DISCHARGING);
    EXPECT_EQ(6, ipod::PhoneCallStatus_MAX);
    EXPECT_EQ(2, ipod::PhoneCallDirection_MAX);
    EXPECT_EQ(3, ipod::CallStateService_MAX);
    EXPECT_EQ(2, ipod::CallStateDisconnectReason_MAX);
    EXPECT_EQ(3, ipod::BatteryChargingStatus_MAX);
}

TEST(PublicTypes, DeclareThePhoneCallInTheOrderOfTheMessage)
{
    auto [remote, name, status, direction, uuid, book, label, service, conference, group, reason, start] =
        iPodPhoneCall_t{};

    EXPECT_TRUE((kIsOptional<decltype(remote), std::string>));
    EXPECT_TRUE((kIsOptional<decltype(name), std::string>));
    EXPECT_TRUE((kIsOptional<decltype(status), PhoneCallStatus>));
    EXPECT_TRUE((kIsOptional<decltype(direction), PhoneCallDirection>));
    EXPECT_TRUE((kIsOptional<decltype(uuid), std::string>));
    EXPECT_TRUE((kIsOptional<decltype(book), std::string>));
    EXPECT_TRUE((kIsOptional<decltype(label), std::string>));
    EXPECT_TRUE((kIsOptional<decltype(service), CallStateService>));
    EXPECT_TRUE((kIsOptional<decltype(conference), bool>));
    EXPECT_TRUE((kIsOptional<decltype(group), std::uint8_t>));
    EXPECT_TRUE((kIsOptional<decltype(reason), CallStateDisconnectReason>));
    EXPECT_TRUE((kIsOptional<decltype(start), std::uint64_t>));
}

TEST(PublicTypes, DeclareTheBatteryInTheOrderOfTheMessage)
{
    auto [status, level] = iPodBattery_t{};

    EXPECT_TRUE((kIsOptional<decltype(status), BatteryChargingStatus>));
    EXPECT_TRUE((kIsOptional<decltype(level), std::uint16_t>));
    EXPECT_FALSE(status.has_value());
    EXPECT_FALSE(level.has_value());
}

TEST(PublicTypes, DeclareTrackAndArtworkInTheOrderOfTheirRecords)
{
    const QBXiPodTrackInfo track{"1", "2", "3", "4", 5, 6, 7, 8};
    const QBXTrackArtwork artwork{1, 2, 3, 4, {5}};

    EXPECT_EQ("1234", track.text1 + track.text2 + track.text3 + track.text4);
    EXPECT_EQ(5678, track.value1 * 1000 + track.value2 * 100 + track.value3 * 10 + track.value4);
    EXPECT_EQ(1234u, artwork.word1 * 1000 + artwork.word2 * 100 + artwork.word3 * 10 + artwork.word4);
    EXPECT_EQ(std::vector<unsigned char>{5}, artwork.image);
}

TEST(PublicTypes, HaveTheSizesAndOffsetsOfTheWireFormat)
{
    EXPECT_EQ(256u, sizeof(PlayListSongNameStr));
    EXPECT_EQ(0u, offsetof(PlayListSongNameStr, name));
    EXPECT_EQ(12u, sizeof(iPodPlayerButtonControl));
    EXPECT_EQ(4u, offsetof(iPodPlayerButtonControl, word2));
    EXPECT_EQ(8u, offsetof(iPodPlayerButtonControl, word3));
    EXPECT_EQ(1040u, sizeof(qbx::TrackRecord));
    EXPECT_EQ(1024u, offsetof(qbx::TrackRecord, value));
    EXPECT_EQ(16u, sizeof(qbx::ArtworkHead));
    EXPECT_EQ(512u, sizeof(qbx::EapInitRecord));
}

TEST(PublicTypes, NameAndSizeTheSegments)
{
    EXPECT_STREQ("ListVectorSharedMemory", kListSegmentName);
    EXPECT_STREQ("BufferVectorSharedMemory", kBufferSegmentName);
    EXPECT_EQ(5u * 1024 * 1024, kListSegmentSize);
    EXPECT_EQ(1024u * 1024, kBufferSegmentSize);
}

TEST(PublicTypes, MakeThePlayerAListenerAndARegistryWithoutOwnData)
{
    using Service = IQBXService<IQBXIpodPlayerListener>;

    EXPECT_TRUE((std::is_base_of<Service, IQBXIpodPlayer>::value));
    EXPECT_TRUE((std::is_base_of<IQBXIpodPlayerListener, Service>::value));
    EXPECT_TRUE((std::is_base_of<IQBXListener<IQBXIpodPlayerListener>, Service>::value));
    EXPECT_EQ(sizeof(Service), sizeof(IQBXIpodPlayer));
    EXPECT_EQ(sizeof(void*), sizeof(IQBXIpodPlayerListener));
    EXPECT_EQ(sizeof(void*), sizeof(IQBXAppListener));
}
