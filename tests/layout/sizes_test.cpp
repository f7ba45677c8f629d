// Sizes that applications and the service were built with, checked by the compiler for the word sizes of the head
// unit and of a desktop.
#include <IQBXIpodPlayer.h>
#include <QBXIpodShareMemory.h>

#include <cstddef>
#include <set>

namespace
{
// Sizes on a desktop and on the head unit.
constexpr std::size_t Size(std::size_t onTheUnit, std::size_t onADesk)
{
    return sizeof(void*) == 4 ? onTheUnit : onADesk;
}

static_assert(sizeof(PlayListSongNameStr) == 256 && offsetof(PlayListSongNameStr, name) == 0, "an entry is its name");
static_assert(sizeof(QBXStringPageVector) == Size(16, 32), "allocator, entries, size, capacity: one word each");
static_assert(sizeof(QBXByteVector) == Size(16, 32), "allocator, entries, size, capacity: one word each");
static_assert(sizeof(QBXSegmentManager) == Size(108, 200), "it is at the beginning of a segment");
static_assert(sizeof(QBXSharedSegment) == Size(24, 40), "applications may reach the two segments");

static_assert(sizeof(iPodPlayerButtonControl) == 12, "passed by value and sent as it is in memory");
static_assert(offsetof(iPodPlayerButtonControl, word2) == 4 && offsetof(iPodPlayerButtonControl, word3) == 8,
              "no padding between the words");
static_assert(sizeof(iPodBattery_t) == 12, "two optional members");

static_assert(sizeof(iPodPlayerPlayStatus) == 4 && sizeof(iPodPlayerShuffleStatus) == 4 &&
                  sizeof(iPodPlayerRepeatStatus) == 4 && sizeof(QBXAppleDeviceDetectStatus) == 4 &&
                  sizeof(LocationStatus) == 4 && sizeof(PhoneCallStatus) == 4 && sizeof(PhoneCallDirection) == 4 &&
                  sizeof(CallStateService) == 4 && sizeof(CallStateDisconnectReason) == 4 &&
                  sizeof(BatteryChargingStatus) == 4,
              "every enumeration is an int");

// All of these differ with the old string ABI of the C++ library.
#if _GLIBCXX_USE_CXX11_ABI
static_assert(sizeof(QBXiPodTrackInfo) == Size(112, 144), "four texts and four numbers");
static_assert(offsetof(QBXiPodTrackInfo, value1) == Size(96, 128), "the numbers follow the texts");
static_assert(sizeof(QBXTrackArtwork) == Size(28, 40), "four words and the picture");
static_assert(offsetof(QBXTrackArtwork, image) == 16, "the picture follows the words");
static_assert(sizeof(iPodPhoneCall_t) == Size(192, 256), "twelve optional members");
static_assert(sizeof(EAPInfo) == Size(48, 64), "two texts");
#endif

static_assert(sizeof(std::set<IQBXIpodPlayerListener*>) == Size(24, 48), "the set of listeners");
static_assert(sizeof(IQBXListener<IQBXIpodPlayerListener>) ==
                  sizeof(void*) + sizeof(QBXMutex) + sizeof(std::set<IQBXIpodPlayerListener*>),
              "a registry is its table, its lock and its set");
static_assert(sizeof(QBXMutex) == Size(24, 40), "the lock of the stand-in; the head unit's may differ in size");
static_assert(sizeof(IQBXListener<IQBXIpodPlayerListener>) == Size(52, 96), "applications derive from it");
static_assert(sizeof(IQBXService<IQBXIpodPlayerListener>) == Size(84, 152), "applications derive from it");
static_assert(sizeof(IQBXIpodPlayer) == sizeof(IQBXService<IQBXIpodPlayerListener>), "it adds operations only");
}  // namespace
