/// @file
/// Finds names in a long list: by letter, and while typing.
///
///     const JumpIndex index(names);
///     index.Search("zmx");          // finds 周明轩, as "zhoumx", "zhou ming xuan" and "明轩" do
///     index.Sections();             // where A, B, … start in the sorted list
#pragma once

#include <ipodnames/reading.h>

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#pragma GCC visibility push(default)

namespace ipodnames
{
struct JumpIndexOptions
{
    std::string locale = "zh";  ///< ICU locale whose alphabet and order are used; an unknown one selects the root order
    Subject subject = Subject::Unknown;

    /// Words to ignore at the beginning of a name when it is sorted, such as {"The", "A"}; case does not matter. "The
    /// Bellows" is then in section B. Search() still finds it by "the".
    std::vector<std::string> articles;

    /// Readings from another source, in the order of the names. Empty or missing ones are computed.
    std::vector<std::string> readings;
};

/// A letter and the position of its first name.
struct JumpSection
{
    std::string label;  ///< a letter of the locale's alphabet, or "#" for everything else
    int position;       ///< in JumpIndex::Order()
};

/// Immutable: several threads may search at the same time. Copies share their contents.
class JumpIndex
{
public:
    /// Takes a few microseconds per name: index long lists on another thread. Any bytes are safe.
    /// @throws std::runtime_error if the system's ICU has no data for sorting
    explicit JumpIndex(const std::vector<std::string>& names, const JumpIndexOptions& options = {});

    /// Returns the indices of the names by section, and within a section in the order of the locale. Names filed by
    /// their reading follow the others there: Sam, 三月 (san yue), 单晓岚 (shan xiao lan).
    const std::vector<int>& Order() const;

    /// Returns the non-empty sections of ICU's AlphabeticIndex for the locale and for Latin letters, in the order of
    /// Order(); "#" comes last.
    ///
    /// A name is filed by its first letter or digit. Names in scripts that the locale does not use, and Chinese names
    /// where the locale sorts them by pinyin, are filed by their reading: 单晓岚 is in S, as a surname is read shan.
    const std::vector<JumpSection>& Sections() const;

    /// Returns the indices of matching names: first those that match from their first syllable or word, then the
    /// others, each in the order of Order(). An empty query matches nothing; only its first 60 letters count.
    ///
    /// A query matches the beginnings of successive syllables or words, in any mixture; the ü of 女 is typed as v or u.
    /// A non-ASCII query is searched for in the names themselves.
    std::vector<int> Search(const std::string& query, std::size_t limit = 100) const;

    /// Returns the given reading of a name, or else that of ipodnames::Reading().
    /// @throws std::out_of_range if no name has this index
    std::string Reading(int index) const;

    std::size_t Size() const;

private:
    struct Contents;
    std::shared_ptr<const Contents> m_contents;
};
}  // namespace ipodnames

#pragma GCC visibility pop
