/// @file
/// Reading of names in Latin letters: pinyin without tones for Chinese, the nearest letters for other scripts.
///
/// ICU knows the reading of surnames (曾 zeng, not ceng), but only for names of people: in a title the same character
/// mostly reads otherwise (单 in 单身 is dan). So names of artists go through "Han-Latin/Names" and everything else
/// through "Han-Latin", each after a few words that both read wrongly. Everything is lower case; ü becomes u.
#pragma once

#include <string>

namespace ipodsim
{
enum class Reading
{
    Person,
    Words,
};

/// One blank between syllables. Any thread may call it. Text that cannot be read comes back as it is.
std::string Pinyin(const std::string& text, Reading reading);
}  // namespace ipodsim
