/// @file
/// How names are read: Chinese in pinyin, everything else in Latin letters.
#pragma once

#include <ipodkit/error.h>
#include <unicode/normalizer2.h>
#include <unicode/unistr.h>

#include <string>

#include "names/han_reader.h"
#include "names/word_reader.h"

namespace ipodkit
{
/// Not thread-safe.
class Reader
{
public:
    static Result<Reader> Make();

    /// Syllables and words in lower case without accents, separated by single blanks: "zhou jie lun", "hey jude".
    std::string Read(const icu::UnicodeString& name);

private:
    Reader(HanReader han, const icu::Normalizer2& composition) : m_han(std::move(han)), m_composition(&composition) {}
    int ReadWord(const icu::UnicodeString& name, int at, std::string& reading);

    HanReader m_han;
    WordReader m_words;
    const icu::Normalizer2* m_composition;  // ICU's own
};
}  // namespace ipodkit
