/// @file
/// Counts the allocations of the whole process, including libraries.
#pragma once

namespace bench
{
/// The number of live allocations.
long LiveAllocations();
}  // namespace bench
