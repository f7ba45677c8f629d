/// @file
/// The three words of a shared vector that a faulty process may overwrite.
#pragma once

#include <QBXIpodShareMemory.h>

#include <cstddef>

namespace faults
{
static_assert(sizeof(QBXStringPageVector) == 4 * sizeof(std::size_t), "allocator, pointer, size, capacity");

/// Pointer (as an offset from itself), size, and capacity.
inline volatile std::size_t* HeaderOf(QBXStringPageVector& vector)
{
    return reinterpret_cast<volatile std::size_t*>(&vector) + 1;
}
}  // namespace faults
