/// @file
/// Bytes and names that both ends can make from a number, so that each end knows what the other one sent.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace soak
{
using Bytes = std::vector<unsigned char>;

constexpr std::size_t kLargestWrite = 150000;    ///< accessory payload of an application
constexpr std::size_t kLargestPicture = 100000;  ///< picture that is asked for
constexpr std::size_t kLargestNews = 60000;      ///< picture or accessory payload that an event announces
constexpr int kLongestPage = 300;                ///< names

/// The bytes of that number: size and contents follow from it.
Bytes Payload(std::uint64_t number, std::size_t largest);

/// How many bytes differ from Payload(), which is more than a checksum could tell; missing and surplus ones count.
std::size_t ChangedBytes(const unsigned char* bytes, std::size_t size, std::uint64_t number, std::size_t largest);

/// The name of an entry; long, and another one for each index.
std::string Name(int index);
}  // namespace soak
