/// @file
/// Counts the allocations of the whole process, those of the libraries included.
#pragma once

namespace bench
{
/// Allocations that were made and not released yet.
long LiveAllocations();
}  // namespace bench
