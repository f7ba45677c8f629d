/// @file
/// Readings of names as the service provides them: pinyin without tones for Chinese, transliteration for other scripts.
#pragma once

#include <ipodnames/reading.h>

#include <string>

namespace ipodsim
{
/// Returns ASCII text in lower case, other text in the reading of ipodnames, and unreadable text unchanged.
/// Thread-safe.
std::string Pinyin(const std::string& text, ipodnames::Subject subject);
}  // namespace ipodsim
