/// @file
/// Values as text, for readable comparisons in tests.
#pragma once

#include <QBXIpodTypes.h>

#include <cstdint>
#include <string>
#include <vector>

namespace test
{
std::string Text(int number);
std::string Text(unsigned number);
std::string Text(std::uint64_t number);
std::string Text(bool flag);

/// In quotes.
std::string Text(const std::string& text);

/// ["one", "two"]
std::string Text(const std::vector<std::string>& texts);

/// [0a ff]
std::string Text(const std::vector<unsigned char>& bytes);

/// The eight members: "one", "two", "three", "four", 1, 2, 3, 4
std::string Text(const QBXiPodTrackInfo& info);

/// The words and the image: 1, 2, 3, 4, [0a ff]
std::string Text(const QBXTrackArtwork& artwork);

std::string Join(const std::vector<std::string>& parts, const char* between);
}  // namespace test
