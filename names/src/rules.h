/// @file
/// Rules for ICU's transliterators where ICU reads names differently from people.
#pragma once

namespace ipodnames
{
/// Represents the ü of a Chinese syllable until the reading is complete: people type it as v or as u.
inline constexpr char16_t kUmlautMark = 0xFDD2;

/// Delimits the syllables of the Chinese rules. To later rules a blank would look like the edge of a name.
inline constexpr char16_t kSyllableMark = u'·';

/// @name Simplified Chinese characters whose reading in a word or a surname differs from kHanCharacter
/// @{
extern const char16_t* const kHanWords;
extern const char16_t* const kWordsLikeNames;  ///< words that start with a surname
extern const char16_t* const kShortNames;  ///< surnames start two or three characters, because longer text is a title
extern const char16_t* const kAllNames;    ///< surnames start any number of characters
extern const char16_t* const kSurnames;    ///< applied after kShortNames or kAllNames
extern const char16_t* const
    kSurnamesLikeWords;  ///< surnames that far more often start titles; applied after kSurnames
/// @}

extern const char16_t* const kHanCharacter;  ///< single characters
extern const char16_t* const kHangul;        ///< by pronunciation: Revised Romanization
extern const char16_t* const kKana;          ///< Hepburn, with the syllables of foreign words
}  // namespace ipodnames
