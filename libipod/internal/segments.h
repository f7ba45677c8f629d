/// @file
/// Attaching the segments, and where they lie in this process.
#pragma once

#include <QBXIpodShareMemory.h>

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

/// The memory that an attached segment occupies.
Mapping MappingOf(const QBXSharedSegment& segment);
}  // namespace qbx
