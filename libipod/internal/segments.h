/// @file
/// Attaching the segments, and where they lie in this process.
#pragma once

#include <QBXIpodShareMemory.h>

#include <vector>

#include "internal/shared_bulk.h"

namespace qbx
{
/// Set once each, when the segments are attached.
extern Mapping listMapping;
extern Mapping bufferMapping;

/// Opens a segment, or creates it with @p size bytes and mode 0644.
///
/// An object that is there but empty or half made is waited for a few seconds, as its creator may be at work;
/// its creator may also have died.
///
/// @throws boost::interprocess::interprocess_exception  the object cannot be used: no access, no space, not ready
///         in time, or of another layout
QBXSharedSegment AttachSegment(const char* name, std::size_t size);

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
