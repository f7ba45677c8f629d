/// @file
/// Checks whether the core will be able to attach the shared memory.
#pragma once

#include <ipodkit/error.h>

#include <exception>
#include <optional>

namespace ipodkit
{
/// Checks the segments before the core attaches them. The core attaches once per process: if that fails, shared data
/// stays unavailable, and the lock of its player stays held.
///
/// Blocks for seconds while another process holds a lock inside a segment, or is still creating it. Any thread.
/// Returns nothing if both segments are usable or do not exist yet; otherwise the problem and its remedy.
std::optional<Error> ProbeSegments();

/// Converts an exception of Boost about @p segment to a problem and its remedy.
Error SegmentFailure(const char* segment, const std::exception& thrown);
}  // namespace ipodkit
