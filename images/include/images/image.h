/// @file
/// Detects the type and size of an image from its first bytes. Decodes no pixels; any input is safe.
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

/// Type and size of an image. The size is in pixels; both numbers are 0 if either is unknown because the header is
/// truncated, damaged, or longer than the given bytes.
struct Head
{
    Type type = Type::Unknown;
    std::uint32_t width = 0;
    std::uint32_t height = 0;
};

/// Returns type and size. Most headers need 32 bytes; a JPEG stores its size after its tables and an embedded preview,
/// a TIFF anywhere.
///
/// @param bytes  the beginning of the image; may be null when @p count is 0
Head Examine(const unsigned char* bytes, std::size_t count);

/// Returns the media type, for example "image/jpeg"; "application/octet-stream" for Type::Unknown.
const char* MediaType(Type type);

/// Returns the file name extension, for example ".jpg"; ".bin" for Type::Unknown.
const char* Extension(Type type);
}  // namespace images
