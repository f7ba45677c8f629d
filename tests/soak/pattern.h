/// @file
/// Bytes and names generated from a number, so that each end can check what the other one sent.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace soak
{
using Bytes = std::vector<unsigned char>;

constexpr std::size_t kLargestWrite = 150000;    ///< accessory payload of an application
constexpr std::size_t kLargestPicture = 100000;  ///< requested image
constexpr std::size_t kLargestNews = 60000;      ///< image or accessory payload announced by an event
constexpr int kLongestPage = 300;                ///< names

/// Returns the payload with that number, which determines its size and contents.
Bytes Payload(std::uint64_t number, std::size_t largest);

/// Returns the number of bytes that differ from Payload(), including missing and surplus ones.
std::size_t ChangedBytes(const unsigned char* bytes, std::size_t size, std::uint64_t number, std::size_t largest);

/// Returns a long name, different for each index.
std::string Name(int index);
}  // namespace soak
