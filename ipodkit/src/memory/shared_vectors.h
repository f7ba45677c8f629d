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
/// Copies a vector of the list or buffer segment; nothing when it is not attached, or does not lie, with all its
/// elements, inside its segment: the other process may be broken.
std::optional<std::vector<std::string>> NamesIn(const QBXStringPageVector* vector);
std::optional<std::vector<unsigned char>> BytesIn(const QBXByteVector* vector);

/// How many bytes the write buffer takes at once without using up its segment; 0 when it is not attached or damaged.
std::size_t RoomToWrite(const QBXByteVector* vector);

/// Whether the write buffer takes so many bytes as it is. If not it must grow, which takes the lock of its segment.
bool HasCapacity(const QBXByteVector* vector, std::size_t count);

/// Replaces the bytes of the write buffer. ErrorKind::NoSharedMemory when it is not attached, is damaged, or cannot
/// grow. Without capacity it blocks for up to ten seconds while a process that died holds the lock of the segment.
Result<void> WriteBytes(QBXByteVector* vector, const unsigned char* bytes, std::size_t count);
}  // namespace ipodkit
