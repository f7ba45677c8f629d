/// @file
/// Counts the allocations of the whole process, including libraries.
#pragma once

namespace test
{
/// The number of live allocations.
long LiveAllocations();

/// All allocations that the calling thread has made so far.
long AllocationsOfThisThread();
}  // namespace test
