/// @file
/// Attaching the segments, and where they lie in this process.
#pragma once

#include <QBXIpodShareMemory.h>

#include <functional>
#include <vector>

#include "internal/shared_bulk.h"

namespace qbx
{
/// Set once each, when the segments are attached.
extern Mapping listMapping;
extern Mapping bufferMapping;

/// Constructs in a segment what belongs there.
using Furnish = std::function<void(QBXSegmentManager&)>;

/// Opens a segment, or creates it with @p size bytes and mode 0644.
///
/// A new segment gets its name when it is whole and furnished, so that nobody meets it half made: not when this process
/// is killed, and not in a race, in which the object of that name that was there first wins. Where the system cannot do
/// that, the segment is made under its name, and not furnished.
///
/// An object that is there but empty or half made is waited for a few seconds, as its creator may be at work;
/// its creator may also have died.
///
/// @throws boost::interprocess::interprocess_exception  the object cannot be used: no access, no space, not ready
///         in time, or of another layout
QBXSharedSegment AttachSegment(const char* name, std::size_t size, const Furnish& furnish);

/// Makes a new segment of @p size bytes, furnishes it, and only then gives it its name. False, and nothing happened,
/// when that cannot be done here, the name is taken, or the size is too small.
bool PublishNewSegment(const char* name, std::size_t size, const Furnish& furnish);

/// Refuses a segment whose named objects lie where this build does not look: its index counts objects, none of
/// @p vectors is found, and yet one of their names is written somewhere in the segment. Without this check a second set
/// of vectors would be constructed beside those of the service.
///
/// @throws boost::interprocess::interprocess_exception  the segment has another layout
/// @throws boost::interprocess::lock_exception          its lock is held by a process that died
void CheckNames(QBXSharedSegment& segment, const char* name, const std::vector<const char*>& vectors);

/// The memory that an attached segment occupies.
Mapping MappingOf(const QBXSharedSegment& segment);
}  // namespace qbx
