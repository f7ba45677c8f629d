/// @file
/// Whether the core will be able to attach the shared memory.
#pragma once

#include <ipodkit/error.h>

#include <exception>
#include <optional>

namespace ipodkit
{
/// The core tries once in a process: when that fails, shared data is out of reach for ever, and the lock of its
/// player stays held. So everything is tried here first, where it can be repeated.
///
/// Blocks, for seconds when somebody else holds a lock inside a segment or is still making it. Any thread.
/// Returns nothing if both segments are usable or do not exist yet; otherwise the problem and its remedy.
std::optional<Error> ProbeSegments();

/// Converts what Boost threw while it used a segment to a problem and its remedy.
Error SegmentFailure(const char* segment, const std::exception& thrown);

/// The same for what an attempt of the core threw.
Error AttachFailure(const std::string& what);
}  // namespace ipodkit
