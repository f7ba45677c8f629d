/// @file
/// Checks images beyond the type and size that ipodkit::Examine() detects.
#pragma once

#include <ipodkit/picture.h>

#include <cstdint>
#include <vector>

namespace ctl
{
/// Returns the file extension, such as ".png"; ".bin" for an unknown type.
const char* Extension(ipodkit::PictureType type);

/// Returns whether a PNG or JPEG image has its end marker. Images of other types count as complete.
bool IsWhole(ipodkit::PictureType type, const std::vector<unsigned char>& image);

/// Returns whether both dimensions are between 1 and 65535 pixels; a header with other dimensions is corrupt.
bool IsSize(std::uint32_t width, std::uint32_t height);
}  // namespace ctl
