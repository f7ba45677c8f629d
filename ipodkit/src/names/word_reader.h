/// @file
/// Words of all scripts but Chinese in Latin letters.
#pragma once

#include <unicode/translit.h>
#include <unicode/unistr.h>
#include <unicode/uscript.h>

#include <map>
#include <memory>
#include <string>

namespace ipodkit
{
/// Not thread-safe. Prepares the rules of a script when it meets its first word.
class WordReader
{
public:
    /// One token of a reading: @p word has letters, digits and marks only.
    std::string Read(icu::UnicodeString word);

private:
    const icu::Transliterator& RulesFor(const icu::UnicodeString& word);

    std::map<const char16_t*, std::shared_ptr<icu::Transliterator>> m_rules;  // by their identifiers below
};
}  // namespace ipodkit
