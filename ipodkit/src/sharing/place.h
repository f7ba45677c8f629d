/// @file
/// The resources that applications share, and the offsets of their locks.
#pragma once

#include <QBXIpodShareMemory.h>
#include <sys/types.h>

#include <cstdint>

namespace ipodkit
{
/// A shared resource. The values are offsets in the file, so they never change: see docs/sharing.md.
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

/// Each place has one byte for its lock, and one byte per millisecond for the tickets of waiting applications. No
/// segment is that large, so no lock covers data. The largest offset fits into 31 bits.
inline constexpr off_t kFirstLock = 0x40000000;
inline constexpr off_t kTickets = 0x1000000;

constexpr off_t LockOf(Place place)
{
    return kFirstLock + static_cast<off_t>(place);
}

/// A ticket is the time at which an application began to wait. The clock wraps around every 4.6 hours; applications
/// that wait at that moment are served in arbitrary order.
constexpr off_t FirstTicketOf(Place place)
{
    return kFirstLock + kTickets * (1 + static_cast<off_t>(place));
}

/// The file that holds all locks. A service may lock the whole file of the buffers to ensure that it is the only one.
inline constexpr const char* kLockedSegment = kListSegmentName;

static_assert(kFirstLock + kTickets * (kPlaces + 1) <= INT32_MAX, "offsets have 31 bits on the head unit");
static_assert(kFirstLock > static_cast<off_t>(kListSegmentSize), "locks are beyond the data");
}  // namespace ipodkit
