/// @file
/// Chinese words, names and characters that are read otherwise than their characters alone as a rule.
#pragma once

#include <cstddef>
#include <string_view>

namespace ipodkit
{
struct Phrase
{
    std::u16string_view characters;  ///< simplified
    const char* reading;             ///< one syllable for each, separated by blanks; ü is kUmlaut
};

/// The longest phrase that @p text begins with; null when there is none.
const Phrase* PhraseAt(std::u16string_view text);

/// The reading of a character as a surname where ICU's list of surnames lacks it or gives one that is not used;
/// null otherwise.
const char* SurnameReading(char16_t character);
}  // namespace ipodkit
