/// @file
/// Finding names in a long list: by letter, and while typing.
///
///     auto index = JumpIndex::Build(names);
///     index->Search("zjl");          // finds 周杰伦, as "zhoujl", "zhou jie lun" and "杰伦" do
///     index->Sections();             // where A, B, … begin in the sorted list
///
/// Chinese names are found by pinyin: whole syllables, their beginnings, or initials, mixed as they come; the ü of 女
/// and 绿 is typed as v or as u. Surnames and common words with a reading of their own (曾, 单, 乐队) are read as such,
/// traditional characters as simplified ones.
/// Names in other scripts are found by their Latin transcription, accents aside, in the way that people write it:
/// Russian and Ukrainian after BGN, Greek after UNGEGN, Korean in Revised Romanization, kana in Hepburn's.
#pragma once

#include <ipodkit/error.h>

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#pragma GCC visibility push(default)

namespace ipodkit
{
struct JumpIndexOptions
{
    std::string locale = "zh";  ///< whose order the list is sorted in; an unknown one gives the root order
};

/// Where the names of a letter begin.
struct JumpSection
{
    std::string label;  ///< "A" to "Z", or "#" for everything else
    int position;       ///< in JumpIndex::Order()
};

/// Immutable: any thread may search, several at the same time. Copies share their contents.
class JumpIndex
{
public:
    /// Takes some microseconds per name: build long ones on another thread. Any text is safe, also what is not UTF-8.
    /// ErrorKind::BadArgument when the system's ICU lacks the rules.
    static Result<JumpIndex> Build(std::vector<std::string> names, const JumpIndexOptions& options = {});

    /// Indices of the names, section by section, and as the locale sorts them within a section. Chinese names follow
    /// the others there, by their reading: 三毛 (san mao) before 单依纯 (shan yi chun).
    const std::vector<int>& Order() const;

    /// By the first letter of the reading, in the order of Order(); letters without a name are left out.
    const std::vector<JumpSection>& Sections() const;

    /// Indices of the names that match, those that match from their first syllable or word on before the others, in
    /// the order of Order(). An empty query matches nothing; only its first 60 letters count.
    std::vector<int> Search(const std::string& query, std::size_t limit = 100) const;

    /// How a name is read, for example "zhou jie lun"; ü is written u.
    /// @throws std::out_of_range when there is no name with this index
    std::string Reading(int index) const;

    std::size_t Size() const;

private:
    struct Contents;
    explicit JumpIndex(std::shared_ptr<const Contents> contents) : m_contents(std::move(contents)) {}

    std::shared_ptr<const Contents> m_contents;
};
}  // namespace ipodkit

#pragma GCC visibility pop
