#include <ipodnames/jump_index.h>

#include <algorithm>

#include "filing.h"
#include "matcher.h"
#include "reader.h"

namespace ipodnames
{
namespace
{
std::string Folded(const std::string& name)
{
    std::string folded;
    icu::UnicodeString::fromUTF8(name).foldCase().toUTF8String(folded);
    return folded;
}

bool IsAscii(const std::string& text)
{
    return std::all_of(text.begin(), text.end(),
                       [](char character) { return static_cast<signed char>(character) >= 0; });
}

// Removes details in which readings of the same name may differ.
std::string Squeezed(const std::string& given)
{
    std::string reading = WithoutUmlauts(given);
    reading.erase(std::remove(reading.begin(), reading.end(), ' '), reading.end());
    return reading;
}

// A given reading that differs only in spelling lacks syllable boundaries or ü.
std::string ReadingOf(const icu::UnicodeString& spelling, const JumpIndexOptions& options, std::size_t index)
{
    std::string own = Reader::Shared().Read(spelling, options.subject);
    if (index >= options.readings.size()) return own;
    std::string given = Reader::Shared().Read(Spelling(options.readings[index]), options.subject);
    return given.empty() || Squeezed(given) == Squeezed(own) ? own : given;
}

struct Entry
{
    int index;
    std::string reading;
    std::string folded;  // the case-folded name, for queries in its own script
    Filed filed;
};

std::vector<Entry> Sorted(const std::vector<std::string>& names, const JumpIndexOptions& options)
{
    const Filing filing(options.locale, options.articles);
    std::vector<Entry> entries;
    for (std::size_t at = 0; at < names.size(); ++at)
    {
        const icu::UnicodeString spelling = Spelling(names[at]);
        std::string reading = ReadingOf(spelling, options, at);
        Filed filed = filing.File(spelling, reading);
        entries.push_back({static_cast<int>(at), std::move(reading), Folded(names[at]), std::move(filed)});
    }
    std::stable_sort(entries.begin(), entries.end(),
                     [](const Entry& one, const Entry& other) { return one.filed.key < other.filed.key; });
    return entries;
}

struct Query
{
    bool typed;  // in the letters of readings; otherwise it is searched for literally
    std::string text;
    std::uint64_t letters;
    std::uint64_t initial;
};

Query QueryOf(const std::string& text)
{
    if (!IsAscii(text)) return {false, Folded(text), 0, 0};
    const std::string typed = Typed(text);
    return {true, typed, LettersIn(typed), LettersIn(typed.substr(0, 1))};
}
}  // namespace

/// In index order, so that a search accesses memory sequentially.
struct JumpIndex::Contents
{
    explicit Contents(const std::vector<Entry>& entries);

    Fit FitOf(const Query& query, std::size_t position) const;

    std::vector<std::string> readings;
    std::vector<std::uint64_t> letters;   // in each reading
    std::vector<std::uint64_t> initials;  // initials of its syllables and words
    std::vector<std::string> folded;
    std::vector<int> order;      // the name's index at each position
    std::vector<int> positions;  // the position of each name
    std::vector<JumpSection> sections;
};

JumpIndex::Contents::Contents(const std::vector<Entry>& entries) : positions(entries.size())
{
    for (const Entry& entry : entries)
    {
        const int position = static_cast<int>(order.size());
        positions[static_cast<std::size_t>(entry.index)] = position;
        order.push_back(entry.index);
        readings.push_back(entry.reading);
        letters.push_back(LettersIn(entry.reading));
        initials.push_back(InitialsIn(entry.reading));
        folded.push_back(entry.folded);
        const bool fresh = sections.empty() || sections.back().label != entry.filed.label;
        if (fresh) sections.push_back({entry.filed.label, position});
    }
}

// Most names lack a letter of the query and are rejected at once.
Fit JumpIndex::Contents::FitOf(const Query& query, std::size_t position) const
{
    if (query.typed)
    {
        const bool possible = (query.letters & ~letters[position]) == 0 && (query.initial & initials[position]) != 0;
        return possible ? Match(query.text, readings[position]) : Fit::None;
    }
    const std::size_t at = folded[position].find(query.text);
    if (at == std::string::npos) return Fit::None;
    return at == 0 ? Fit::Beginning : Fit::Inside;
}

JumpIndex::JumpIndex(const std::vector<std::string>& names, const JumpIndexOptions& options)
    : m_contents(std::make_shared<const Contents>(Sorted(names, options)))
{
}

const std::vector<int>& JumpIndex::Order() const
{
    return m_contents->order;
}

const std::vector<JumpSection>& JumpIndex::Sections() const
{
    return m_contents->sections;
}

std::string JumpIndex::Reading(int index) const
{
    const int position = m_contents->positions.at(static_cast<std::size_t>(index));
    return WithoutUmlauts(m_contents->readings[static_cast<std::size_t>(position)]);
}

std::size_t JumpIndex::Size() const
{
    return m_contents->order.size();
}

std::vector<int> JumpIndex::Search(const std::string& query, std::size_t limit) const
{
    const Query wanted = QueryOf(query);
    if (wanted.text.empty()) return {};
    std::vector<int> found;
    std::vector<int> inside;
    for (std::size_t position = 0; position < Size() && found.size() < limit; ++position)
    {
        const Fit fit = m_contents->FitOf(wanted, position);
        if (fit == Fit::Beginning) found.push_back(m_contents->order[position]);
        if (fit == Fit::Inside && inside.size() < limit) inside.push_back(m_contents->order[position]);
    }
    const std::size_t rest = std::min(inside.size(), limit - found.size());
    found.insert(found.end(), inside.begin(), inside.begin() + static_cast<std::ptrdiff_t>(rest));
    return found;
}
}  // namespace ipodnames
