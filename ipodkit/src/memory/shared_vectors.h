/// @file
/// Reading the shared vectors, and filling the write buffer.
#pragma once

#include <QBXIpodShareMemory.h>
#include <ipodkit/error.h>

#include <optional>
#include <string>
#include <vector>

namespace ipodkit
{
/// Copies a vector of the list or buffer segment. Returns nothing if it is not attached, or if any of its elements is
/// outside its segment, because the other process may be faulty.
std::optional<std::vector<std::string>> NamesIn(const QBXStringPageVector* vector);
std::optional<std::vector<unsigned char>> BytesIn(const QBXByteVector* vector);

/// Returns how many bytes the write buffer accepts at once without exhausting its segment; 0 if it is not attached or
/// damaged.
std::size_t RoomToWrite(const QBXByteVector* vector);

/// Returns whether the write buffer has room for that many bytes. If not, it must grow, which acquires the segment's
/// lock.
bool HasCapacity(const QBXByteVector* vector, std::size_t count);

/// Replaces the bytes of the write buffer. ErrorKind::NoSharedMemory if it is not attached, is damaged, or cannot grow.
/// If it must grow while a dead process holds the segment's lock, blocks for up to ten seconds.
Result<void> WriteBytes(QBXByteVector* vector, const unsigned char* bytes, std::size_t count);
}  // namespace ipodkit
