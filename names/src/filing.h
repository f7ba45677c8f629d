/// @file
/// The place of names in an alphabetical list.
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
/// The place of a name. The key determines the section: both are derived from the same text.
struct Filed
{
    std::string key;    ///< names are sorted by its bytes
    std::string label;  ///< label of the section
};

class Filing
{
public:
    /// @throws std::runtime_error if ICU has no data for sorting
    Filing(const std::string& locale, const std::vector<std::string>& articles);

    /// Returns the place of a Spelling() and its reading.
    Filed File(const icu::UnicodeString& spelling, const std::string& reading) const;

private:
    icu::UnicodeString WithoutArticle(const icu::UnicodeString& spelling) const;
    std::string SortKey(const icu::UnicodeString& text) const;

    std::unique_ptr<icu::AlphabeticIndex::ImmutableIndex> m_index;
    std::unique_ptr<icu::Collator> m_collator;
    std::vector<UScriptCode> m_scripts;          // scripts that the locale sorts as written
    std::vector<icu::UnicodeString> m_articles;  // each followed by a blank
};
}  // namespace ipodnames
