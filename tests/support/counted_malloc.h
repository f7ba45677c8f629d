/// @file
/// Counts the allocations of the whole process, including libraries.
#pragma once

#include <cstddef>

namespace test
{
/// The number of live allocations.
long LiveAllocations();

/// All allocations that the calling thread has made so far.
long AllocationsOfThisThread();

/// All allocations of at least kLargeAllocation bytes that any thread has made so far, including reallocations of
/// smaller ones.
long LargeAllocations();
inline constexpr std::size_t kLargeAllocation = 0x40000;
}  // namespace test
