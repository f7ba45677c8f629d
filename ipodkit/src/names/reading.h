/// @file
/// What readings are made of: lower-case letters and digits that can be typed, single blanks between syllables and
/// words.
#pragma once

#include <unicode/translit.h>
#include <unicode/unistr.h>

#include <memory>
#include <string>

namespace ipodkit
{
/// Stands for the ü of a Chinese syllable, which people type as v or as u. Nothing else in a reading is a capital.
inline constexpr char kUmlaut = 'V';

/// Null when the system's ICU lacks them.
std::shared_ptr<icu::Transliterator> MakeRules(const char16_t* id);

/// Rules that are written out; null when they need some that the system's ICU lacks.
std::shared_ptr<icu::Transliterator> ParseRules(const char16_t* rules);

/// Only what can be typed, and kUmlaut, of what the rules make of a text.
std::string Letters(const icu::Transliterator& rules, icu::UnicodeString text);

/// One more syllable or word, or several; nothing when it is empty.
void AppendReading(std::string& reading, const std::string& token);
}  // namespace ipodkit
