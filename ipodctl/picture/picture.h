/// @file
/// What ipodctl checks of an image beyond its type and size, which ipodkit::Examine() detects.
#pragma once

#include <ipodkit/picture.h>

#include <cstdint>
#include <vector>

namespace ctl
{
/// ".png"; ".bin" for an unknown type.
const char* Extension(ipodkit::PictureType type);

/// Whether a PNG or JPEG image has its end. Images of other types count as whole.
bool IsWhole(ipodkit::PictureType type, const std::vector<unsigned char>& image);

/// Whether artwork can have this many pixels; a header that claims other dimensions is broken.
bool IsSize(std::uint32_t width, std::uint32_t height);
}  // namespace ctl
