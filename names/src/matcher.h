/// @file
/// Whether what was typed fits a reading.
#pragma once

#include <cstdint>
#include <string>

namespace ipodnames
{
/// A reading as Reader makes it: syllables and words, lower-case letters, digits and kUmlaut, single blanks between.
///
/// A query fits when it can be cut into pieces that are beginnings of successive syllables or words: "zjl", "zhoujl",
/// "zhoujielun" all fit "zhou jie lun", and "jl" does from its second syllable on.
enum class Fit
{
    None,
    Inside,     ///< from a later syllable or word on
    Beginning,  ///< from the first one on
};

/// @p query is of Typed(). Takes time in proportion to the lengths of both, whatever they are.
Fit Match(const std::string& query, const std::string& reading);

/// One bit for each letter and digit that occurs. What is not in the reading cannot be in a query that fits.
std::uint64_t LettersIn(const std::string& text);

/// The same for the first letters of its syllables and words: a query that fits begins with one of them.
std::uint64_t InitialsIn(const std::string& reading);

/// What counts of a query: its first 60 letters and digits, in lower case.
std::string Typed(const std::string& query);
}  // namespace ipodnames
