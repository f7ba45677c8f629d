/// @file
/// Counts the allocations of the whole process, those of the libraries included.
#pragma once

namespace test
{
/// Allocations that were made and not released yet.
long LiveAllocations();

/// All allocations that the calling thread has made so far.
long AllocationsOfThisThread();
}  // namespace test
