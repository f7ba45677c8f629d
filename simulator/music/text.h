/// @file
/// Text as it fits into the fixed slots of shared memory and of records.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace ipodsim
{
/// A slot has 256 bytes, one of them for the terminator.
constexpr std::size_t kLongestName = 255;

/// The longest beginning of @p text that has at most @p maxBytes bytes and ends at a character boundary.
std::string CutUtf8(std::string_view text, std::size_t maxBytes = kLongestName);

/// @p text as valid UTF-8, without leading and trailing blanks and cut to a slot; @p fallback when nothing is left.
std::string CleanName(const std::string& text, const std::string& fallback);

/// The capitals A to Z as small letters, everything else as it is.
std::string ToLowerAscii(std::string text);

/// Whether there is nothing but ASCII in it.
bool IsAscii(std::string_view text);

/// FNV-1a of 64 bits: a different number for nearly every text.
std::uint64_t Fingerprint(std::string_view text);
}  // namespace ipodsim
