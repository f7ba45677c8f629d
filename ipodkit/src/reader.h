/// @file
/// How names are read: Chinese in pinyin, everything else in Latin letters.
#pragma once

#include <ipodkit/error.h>
#include <unicode/translit.h>
#include <unicode/unistr.h>

#include <memory>
#include <string>
#include <unordered_map>

namespace ipodkit
{
/// Not thread-safe. Remembers what it has read: lists repeat their characters.
class Reader
{
public:
    static Result<Reader> Make();

    /// Syllables and words in lower case without accents, separated by single blanks: "zhou jie lun", "hey jude".
    std::string Read(const icu::UnicodeString& name);

private:
    using TransliteratorPtr = std::shared_ptr<icu::Transliterator>;
    using Readings = std::unordered_map<UChar32, std::string>;

    Reader(TransliteratorPtr words, TransliteratorPtr surnames);
    int ReadPhrase(const icu::UnicodeString& name, int at, std::string& reading) const;
    int ReadHan(const icu::UnicodeString& name, int at, std::string& reading);
    int ReadWord(const icu::UnicodeString& name, int at, std::string& reading);
    const std::string& ReadCharacter(Readings& known, const icu::Transliterator& rules, UChar32 character);

    TransliteratorPtr m_words;
    TransliteratorPtr m_surnames;
    Readings m_characters;
    Readings m_surnameCharacters;
};
}  // namespace ipodkit
