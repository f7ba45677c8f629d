/// @file
/// Attaching the segments, and their addresses in this process.
#pragma once

#include <QBXIpodShareMemory.h>

#include <functional>
#include <vector>

#include "internal/shared_bulk.h"

namespace qbx
{
/// Each is set once, when its segment is attached.
extern Mapping listMapping;
extern Mapping bufferMapping;

/// Constructs the contents of a segment.
using Furnish = std::function<void(QBXSegmentManager&)>;

/// Opens a segment, or creates it with @p size bytes and mode 0644.
///
/// A new segment is named only after it is complete, so that no process finds a partial one: not if this process is
/// killed, and not in a race, which the first object of that name wins. Where the system does not support that, the
/// segment is created under its name and left without contents.
///
/// If the object exists but is empty or incomplete, waits a few seconds: its creator may still be working, or may have
/// died.
///
/// @throws boost::interprocess::interprocess_exception  the object cannot be used: no access, no space, not ready in
///                                                      time, or another layout
QBXSharedSegment AttachSegment(const char* name, std::size_t size, const Furnish& furnish);

/// Creates a new segment of @p size bytes, fills it, and only then names it. Returns false without side effects if the
/// system does not support that, the name is taken, or the size is too small.
bool PublishNewSegment(const char* name, std::size_t size, const Furnish& furnish);

/// Rejects a segment that stores its named objects in another layout: its index counts objects, none of @p vectors is
/// found, and yet one of their names occurs somewhere in the segment. Without this check a second set of vectors would
/// be constructed beside those of the service.
///
/// @throws boost::interprocess::interprocess_exception  the segment has another layout
/// @throws boost::interprocess::lock_exception          its lock is held by a dead process
void CheckNames(QBXSharedSegment& segment, const char* name, const std::vector<const char*>& vectors);

/// The memory that an attached segment occupies.
Mapping MappingOf(const QBXSharedSegment& segment);
}  // namespace qbx
