/// @file
/// Payloads of the bus contract as GVariant text.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace test
{
/// A variant that holds a byte array: "<[byte 0x0a, 0xff]>".
std::string BytesInVariant(const std::string& bytes);

/// The 1040 bytes of a track: four 256-byte slots, then four little-endian numbers.
std::string TrackRecord(const std::vector<std::string>& texts, const std::vector<std::int32_t>& values);

/// 32 bits each, little-endian.
std::string Words(const std::vector<std::uint32_t>& words);
}  // namespace test
