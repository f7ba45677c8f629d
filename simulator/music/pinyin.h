/// @file
/// Readings of names as the service has them: pinyin without tones for Chinese, the nearest letters for other scripts.
#pragma once

#include <ipodnames/reading.h>

#include <string>

namespace ipodsim
{
/// Returns ASCII text in lower case, other text as ipodnames reads it, and text that cannot be read as it is. Any
/// thread may call it.
std::string Pinyin(const std::string& text, ipodnames::Subject subject);
}  // namespace ipodsim
