/// @file
/// Where names belong in an alphabetical list.
#pragma once

#include <unicode/alphaindex.h>
#include <unicode/coll.h>
#include <unicode/unistr.h>
#include <unicode/uscript.h>

#include <memory>
#include <string>
#include <vector>

namespace ipodnames
{
/// A name's place. The section follows from the key: both are made of the same text.
struct Filed
{
    std::string key;    ///< names are sorted by its bytes
    std::string label;  ///< of the section
};

class Filing
{
public:
    /// @throws std::runtime_error if ICU has no data for sorting
    Filing(const std::string& locale, const std::vector<std::string>& articles);

    /// Of a Spelling() and its reading.
    Filed File(const icu::UnicodeString& spelling, const std::string& reading) const;

private:
    icu::UnicodeString WithoutArticle(const icu::UnicodeString& spelling) const;
    std::string SortKey(const icu::UnicodeString& text) const;

    std::unique_ptr<icu::AlphabeticIndex::ImmutableIndex> m_index;
    std::unique_ptr<icu::Collator> m_collator;
    std::vector<UScriptCode> m_scripts;          // that the locale sorts as they are written
    std::vector<icu::UnicodeString> m_articles;  // each with a blank
};
}  // namespace ipodnames
