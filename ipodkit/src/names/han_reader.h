/// @file
/// Chinese characters in pinyin.
#pragma once

#include <unicode/translit.h>
#include <unicode/unistr.h>

#include <memory>
#include <optional>
#include <string>
#include <unordered_map>

namespace ipodkit
{
/// Not thread-safe. Remembers what it has read: lists repeat their characters.
class HanReader
{
public:
    /// Nothing when the system's ICU lacks the rules.
    static std::optional<HanReader> Make();

    /// Appends the syllables of the run of Chinese characters at @p at; where it ends.
    int Read(const icu::UnicodeString& name, int at, std::string& reading);

    static bool IsHan(UChar32 character);

private:
    using TransliteratorPtr = std::shared_ptr<icu::Transliterator>;
    using Readings = std::unordered_map<UChar32, std::string>;

    HanReader(TransliteratorPtr characters, TransliteratorPtr surnames, TransliteratorPtr simplified);
    icu::UnicodeString Simplified(const icu::UnicodeString& run);
    const std::string& ReadCharacter(UChar32 character);
    const std::string& ReadSurname(UChar32 character);

    TransliteratorPtr m_characterRules;
    TransliteratorPtr m_surnameRules;
    TransliteratorPtr m_simplification;
    Readings m_characters;
    Readings m_surnames;
    std::unordered_map<UChar32, UChar32> m_simplified;
};
}  // namespace ipodkit
