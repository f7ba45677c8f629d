/// @file
/// Readings of names in any script, in Latin letters that can be typed.
#pragma once

#include <string>

#pragma GCC visibility push(default)

namespace ipodnames
{
/// What a name refers to, if known. Some Chinese surnames have a special reading.
enum class Subject
{
    Unknown,  ///< two or three Chinese characters are read as a person's name unless they are a common word
    Person,   ///< 单晓 is "shan xiao"
    Title,    ///< 单晓 is "dan xiao"
};

/// Returns the syllables and words of a name in lower-case letters and digits, separated by single spaces:
/// "zhou ming xuan" for 周明轩, "elodie rouviere" for Élodie Rouvière. Empty if the name has no letter or digit.
///
/// Chinese is read in pinyin without tones, traditional characters as simplified ones, ü as u. Russian and Ukrainian
/// are romanized according to BGN, Greek according to UNGEGN, Korean in Revised Romanization, and kana in Hepburn
/// romanization. Any bytes are safe. Thread-safe. The first call prepares ICU's rules, which takes about 0.1 s.
std::string Reading(const std::string& name, Subject subject = Subject::Unknown);
}  // namespace ipodnames

#pragma GCC visibility pop
