/// @file
/// Artwork: the image of a track.
#pragma once

#include <ipodkit/fields.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <tuple>
#include <vector>

#pragma GCC visibility push(default)

namespace ipodkit
{
/// The type of an image according to its first bytes.
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

/// An image: the bytes that the service sent, with type and size according to their header. Immutable and shared.
struct Picture
{
    std::vector<unsigned char> bytes;
    PictureType type;
    std::uint32_t width;   ///< in pixels; 0 while width or height is unknown
    std::uint32_t height;  ///< in pixels; 0 while width or height is unknown
    std::uint64_t hash;    ///< of the bytes: equal pictures have equal hashes, on every machine

    const char* Type() const { return MediaType(type); }
    std::size_t Size() const { return bytes.size(); }
};
template <>
struct Rows<Picture>
{
    static constexpr const char* type = "Picture";
    static constexpr const char* name = "picture";
    static constexpr std::tuple all{
        Row{"type", &Picture::Type, "", "Media type according to the first bytes"},
        Row{"bytes", &Picture::Size, "bytes", "Size"},
        Row{"width", &Picture::width, "px", "Width, 0 when unknown"},
        Row{"height", &Picture::height, "px", "Height, 0 when unknown"},
    };
};

using PicturePtr = std::shared_ptr<const Picture>;

/// Reads type and size from the header of an image. Decodes nothing; any bytes are safe. The size of a truncated or
/// damaged header is unknown.
Picture Examine(std::vector<unsigned char> bytes);
}  // namespace ipodkit

#pragma GCC visibility pop
