/// @file
/// A picture that belongs to a track.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#pragma GCC visibility push(default)

namespace ipodkit
{
enum class PictureType
{
    Unknown,
    Jpeg,
    Png,
    Gif,
    Bmp,
    WebP,
    Tiff,
};

/// "image/jpeg"; "application/octet-stream" for an unknown type.
const char* MediaType(PictureType type);

/// The bytes as the service gave them, and what they say of themselves. Immutable and shared.
struct Picture
{
    std::vector<unsigned char> bytes;
    PictureType type;
    std::uint32_t width;   ///< in pixels; 0 while width or height is unknown
    std::uint32_t height;  ///< in pixels; 0 while width or height is unknown
    std::uint64_t hash;    ///< of the bytes: equal pictures have equal hashes, on every machine
};

using PicturePtr = std::shared_ptr<const Picture>;

/// Reads type and size from the head of the bytes. Nothing is decoded, any bytes are safe, and a head that is cut off
/// or damaged leaves the size unknown.
Picture Examine(std::vector<unsigned char> bytes);
}  // namespace ipodkit

#pragma GCC visibility pop
