/// @file
/// Bytes as hexadecimal digits.
#pragma once

#include <cstdlib>
#include <optional>
#include <string>

#include "music/track.h"

namespace ipodsim
{
/// Empty when there is anything but pairs of digits.
inline std::optional<Bytes> FromHex(const std::string& hex)
{
    if (hex.size() % 2 != 0 || hex.find_first_not_of("0123456789abcdefABCDEF") != std::string::npos) return {};
    Bytes bytes;
    for (std::size_t i = 0; i < hex.size(); i += 2)
        bytes.push_back(static_cast<unsigned char>(std::stoi(hex.substr(i, 2), nullptr, 16)));
    return bytes;
}
}  // namespace ipodsim
