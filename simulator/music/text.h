/// @file
/// Text for the fixed-size slots of shared memory and records, and its readings.
#pragma once

#include <ipodnames/reading.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace ipodsim
{
/// A slot has 256 bytes, including the terminator.
constexpr std::size_t kLongestName = 255;

/// The longest prefix of @p text with at most @p maxBytes bytes that ends at a character boundary.
std::string CutUtf8(std::string_view text, std::size_t maxBytes = kLongestName);

/// Returns @p text as valid UTF-8, trimmed and truncated to a slot; @p fallback if nothing is left.
std::string CleanName(const std::string& text, const std::string& fallback);

/// Converts A to Z to lower case and leaves everything else unchanged.
std::string ToLowerAscii(std::string text);

/// Returns the reading of a name as the service provides it: ASCII text in lower case, Chinese as pinyin without tones,
/// other scripts transliterated, and unreadable text unchanged. Thread-safe.
std::string Pinyin(const std::string& text, ipodnames::Subject subject);

/// The 64-bit FNV-1a hash.
std::uint64_t Fingerprint(std::string_view text);
}  // namespace ipodsim
