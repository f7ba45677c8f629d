/// @file
/// What kind of picture some bytes are.
#pragma once

#include <cstdint>
#include <vector>

namespace ctl
{
struct PictureType
{
    const char* mime;
    const char* extension;  ///< with its dot
};

/// Looks at the first bytes only. Unknown bytes are "application/octet-stream", ".bin".
PictureType Sniff(const std::vector<unsigned char>& image);

/// Whether a PNG or JPEG picture has its end. Other kinds are taken for whole.
bool IsWhole(const std::vector<unsigned char>& image);

/// Whether a picture of a track can have so many pixels; a head that says something else is rubbish.
bool IsSize(std::uint32_t width, std::uint32_t height);
}  // namespace ctl
