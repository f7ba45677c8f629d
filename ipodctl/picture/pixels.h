/// @file
/// Decodes images into pixels.
#pragma once

#include <ipodkit/picture.h>

#include <optional>
#include <vector>

namespace ctl
{
/// Red, green, blue, and alpha of each pixel, one byte each, row by row from the top.
struct Pixels
{
    int width;
    int height;
    std::vector<unsigned char> bytes;
};

/// Decodes a PNG or JPEG image. Large JPEG images are scaled down during decoding, which is cheap. Returns nothing if
/// the bytes have another format, are corrupt, or declare more than sixteen million pixels.
std::optional<Pixels> Decode(const ipodkit::Picture& picture);
}  // namespace ctl
