/// @file
/// The end of the process, as a fault wants it.
#pragma once

#include "faults/faults.h"
#include "wire/segments.h"

namespace ipodsim
{
/// Kills the process at once; for CrashLocked with the locks of the segments held.
void CrashNow(Segments& segments, const Fault& fault);
}  // namespace ipodsim
