/// @file
/// Korean syllables in Latin letters.
#pragma once

#include <unicode/unistr.h>

namespace ipodkit
{
/// Replaces each run of syllables by its Revised Romanization, in lower case: by sound, hence with what neighbouring
/// consonants make of each other. Sounds that compounds insert are not known. Everything else stays.
icu::UnicodeString RomanizedHangul(const icu::UnicodeString& word);
}  // namespace ipodkit
