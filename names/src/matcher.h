/// @file
/// Matches typed queries against readings.
#pragma once

#include <cstdint>
#include <string>

namespace ipodnames
{
/// A reading produced by Reader: syllables and words of lower-case letters, digits, and kUmlaut, separated by single
/// spaces.
///
/// A query matches if it can be split into beginnings of successive syllables or words: "zmx", "zhoumx", and
/// "zhoumingxuan" all match "zhou ming xuan", and "mx" matches from the second syllable.
enum class Fit
{
    None,
    Inside,     ///< from a later syllable or word
    Beginning,  ///< from the first one
};

/// Returns how a query from Typed() matches a reading. The time is proportional to the lengths of both.
Fit Match(const std::string& query, const std::string& reading);

/// One bit for each letter and digit that occurs. A matching query has no letters but those of the reading.
std::uint64_t LettersIn(const std::string& text);

/// The same for the first letters of its syllables and words: a matching query starts with one of them.
std::uint64_t InitialsIn(const std::string& reading);

/// The relevant part of a query: its first 60 letters and digits, in lower case.
std::string Typed(const std::string& query);
}  // namespace ipodnames
