/// @file
/// What kind of picture some bytes are.
#pragma once

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
}  // namespace ctl
