/// @file
/// Rules for ICU's transliterators where its own read names otherwise than people do.
#pragma once

namespace ipodnames
{
/// The ü of a Chinese syllable until the reading is finished: people type it as v or as u.
inline constexpr char16_t kUmlautMark = 0xFDD2;

/// Around the syllables of the Chinese rules. A blank would look like the edge of a name to the rules that follow.
inline constexpr char16_t kSyllableMark = u'·';

/// @name Simplified Chinese characters that are read otherwise in a word, or as a surname, than by kHanCharacter
/// @{
extern const char16_t* const kHanWords;
extern const char16_t* const kWordsLikeNames;     ///< that begin with a surname
extern const char16_t* const kShortNames;         ///< surnames begin two or three characters, because more are a title
extern const char16_t* const kAllNames;           ///< surnames begin any number of them
extern const char16_t* const kSurnames;           ///< after one of the two
extern const char16_t* const kSurnamesLikeWords;  ///< that begin titles far more often; after kSurnames
/// @}

extern const char16_t* const kHanCharacter;  ///< each by itself
extern const char16_t* const kHangul;        ///< by sound: Revised Romanization
extern const char16_t* const kKana;          ///< Hepburn's, with the syllables of foreign words
}  // namespace ipodnames
