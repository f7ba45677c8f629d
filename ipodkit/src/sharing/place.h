/// @file
/// Where the locks lie that applications share.
#pragma once

#include <QBXIpodShareMemory.h>
#include <sys/types.h>

#include <cstdint>

namespace ipodkit
{
/// What one application at a time may use. The numbers are offsets, so they never change: docs/sharing.md.
enum class Place
{
    PlayingList,
    DatabaseList,
    DatabaseListPinyin,
    UpdateList,
    UpdateListPinyin,
    DeviceList,
    Level,   ///< of the database: shared by those who read it, exclusive for a change
    Browse,  ///< exclusive for the application that holds the browse lease
};

inline constexpr int kPlaces = 8;

/// One byte for the lock of a place, and one per millisecond for those who wait for it. No segment is that large, so
/// no lock covers data; the largest offset fits into 31 bits.
inline constexpr off_t kFirstLock = 0x40000000;
inline constexpr off_t kTickets = 0x1000000;

constexpr off_t LockOf(Place place)
{
    return kFirstLock + static_cast<off_t>(place);
}

/// A ticket is the time at which an application began to wait. The clock wraps around after 4.6 hours; the order of
/// those who wait at that moment is arbitrary.
constexpr off_t FirstTicketOf(Place place)
{
    return kFirstLock + kTickets * (1 + static_cast<off_t>(place));
}

/// All locks are on the file of the lists. A service may lock all of the other file, to be the only one.
inline constexpr const char* kLockedSegment = kListSegmentName;

static_assert(kFirstLock + kTickets * (kPlaces + 1) <= INT32_MAX, "offsets have 31 bits on the head unit");
static_assert(kFirstLock > static_cast<off_t>(kListSegmentSize), "locks lie behind the data");
}  // namespace ipodkit
