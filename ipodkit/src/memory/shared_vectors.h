/// @file
/// Reading the shared vectors.
#pragma once

#include <QBXIpodShareMemory.h>

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

/// Replaces the bytes of the write buffer. False when it is not attached, is damaged, or has no room.
bool WriteBytes(QBXByteVector* vector, const unsigned char* bytes, std::size_t count);
}  // namespace ipodkit
