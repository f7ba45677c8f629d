/// @file
/// A picture's pixels.
#pragma once

#include <ipodkit/picture.h>

#include <optional>
#include <vector>

namespace ctl
{
/// Red, green, blue and opacity of each pixel, a byte each, row by row from the top.
struct Pixels
{
    int width;
    int height;
    std::vector<unsigned char> bytes;
};

/// Decodes a PNG or JPEG picture; large ones are made smaller where the format makes that cheap. Nothing when the bytes
/// are another format, broken, or of more than sixteen million pixels.
std::optional<Pixels> Decode(const ipodkit::Picture& picture);
}  // namespace ctl
