/// @file
/// Type and size of an image from its first bytes. Nothing is decoded, and any bytes are safe.
///
///     const images::Head head = images::Examine(bytes.data(), bytes.size());
///     if (head.type == images::Type::Png && head.width > 0) …
#pragma once

#include <cstddef>
#include <cstdint>

namespace images
{
enum class Type
{
    Unknown,
    Jpeg,
    Png,
    Gif,
    Bmp,
    WebP,
    Tiff,
};

/// What the first bytes of an image report. The size is in pixels; both numbers are 0 while one of them is unknown:
/// the head is cut off, is damaged, or is longer than the bytes.
struct Head
{
    Type type = Type::Unknown;
    std::uint32_t width = 0;
    std::uint32_t height = 0;
};

/// Returns type and size. Most heads take 32 bytes; a JPEG has its size behind its tables and an embedded preview, and
/// a TIFF anywhere.
///
/// @param bytes  the beginning of the image; may be null when @p count is 0
Head Examine(const unsigned char* bytes, std::size_t count);

/// Returns the media type, for example "image/jpeg"; "application/octet-stream" for Type::Unknown.
const char* MediaType(Type type);

/// Returns the ending of file names, for example ".jpg"; ".bin" for Type::Unknown.
const char* Extension(Type type);
}  // namespace images
