#include <ipodkit/jump_index.h>

#include <unicode/coll.h>
#include <unicode/sortkey.h>
#include <unicode/uchar.h>

#include <algorithm>
#include <numeric>

#include "names/matcher.h"
#include "names/reader.h"
#include "names/reading.h"

namespace ipodkit
{
namespace
{
using Keys = std::vector<std::string>;

std::string Folded(icu::UnicodeString name)
{
    std::string folded;
    name.foldCase().toUTF8String(folded);
    return folded;
}

bool IsAscii(const std::string& text)
{
    return std::all_of(text.begin(), text.end(),
                       [](char character) { return static_cast<signed char>(character) >= 0; });
}

std::string SortKey(const icu::Collator& collator, const icu::UnicodeString& name)
{
    UErrorCode status = U_ZERO_ERROR;
    icu::CollationKey key;
    collator.getCollationKey(name, key, status);
    int32_t length = 0;
    const uint8_t* const bytes = key.getByteArray(length);
    return {reinterpret_cast<const char*>(bytes), static_cast<std::size_t>(length)};
}

// Whether its first letter is Chinese.
bool BeginsInChinese(const icu::UnicodeString& name)
{
    for (int32_t at = 0; at < name.length(); at = name.moveIndex32(at, 1))
        if (u_isUAlphabetic(name.char32At(at))) return u_hasBinaryProperty(name.char32At(at), UCHAR_UNIFIED_IDEOGRAPH);
    return false;
}

// The reading decides the section, so it decides the order of Chinese names within it too: the collation reads 单 as
// dan where a surname is read shan. They follow the others, as the locales have it.
std::string OrderKey(const icu::Collator& collator, const icu::UnicodeString& name, const std::string& reading)
{
    if (!BeginsInChinese(name)) return '\0' + SortKey(collator, name);
    icu::UnicodeString read = icu::UnicodeString::fromUTF8(reading);
    read.findAndReplace(icu::UnicodeString(char16_t{kUmlaut}), icu::UnicodeString(u'ü'));
    return '\1' + SortKey(collator, read) + SortKey(collator, name);
}

std::string LabelOf(const std::string& reading)
{
    const bool isLetter = !reading.empty() && reading[0] >= 'a' && reading[0] <= 'z';
    return isLetter ? std::string(1, static_cast<char>(reading[0] - 'a' + 'A')) : "#";
}

// By letter first, so that a letter is one section whatever script its names have; "#" comes last.
std::vector<int> Sorted(const Keys& keys, const std::vector<std::string>& readings)
{
    std::vector<int> order(keys.size());
    std::iota(order.begin(), order.end(), 0);
    const auto rank = [&](int index)
    {
        const std::string& reading = readings[static_cast<std::size_t>(index)];
        const bool isLetter = !reading.empty() && reading[0] >= 'a';
        return isLetter ? reading[0] : '\x7f';
    };
    std::stable_sort(order.begin(), order.end(),
                     [&](int left, int right)
                     {
                         const char one = rank(left);
                         const char other = rank(right);
                         if (one != other) return one < other;
                         return keys[static_cast<std::size_t>(left)] < keys[static_cast<std::size_t>(right)];
                     });
    return order;
}

std::vector<JumpSection> SectionsOf(const std::vector<std::string>& sortedReadings)
{
    std::vector<JumpSection> sections;
    for (std::size_t position = 0; position < sortedReadings.size(); ++position)
    {
        std::string label = LabelOf(sortedReadings[position]);
        const bool fresh = sections.empty() || sections.back().label != label;
        if (fresh) sections.push_back({std::move(label), static_cast<int>(position)});
    }
    return sections;
}

std::unique_ptr<icu::Collator> CollatorOf(const std::string& locale)
{
    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<icu::Collator> collator(
        icu::Collator::createInstance(icu::Locale::createFromName(locale.c_str()), status));
    return U_FAILURE(status) ? nullptr : std::move(collator);
}

struct Query
{
    bool typed;  // in letters of the readings; otherwise it is looked for as it stands
    std::string text;
    std::uint64_t letters;
    std::uint64_t initial;
};

Query QueryOf(const std::string& text)
{
    if (!IsAscii(text)) return {false, Folded(icu::UnicodeString::fromUTF8(text)), 0, 0};
    const std::string typed = Typed(text);
    return {true, typed, LettersIn(typed), LettersIn(typed.substr(0, 1))};
}
}  // namespace

/// In the order of the index, so that a search runs through memory from one end to the other.
struct JumpIndex::Contents
{
    Contents(const std::vector<std::string>& names, const std::vector<std::string>& namesRead, std::vector<int> sorted);

    Fit FitOf(const Query& query, std::size_t position) const;

    std::vector<std::string> readings;
    std::vector<std::uint64_t> letters;   // of each reading
    std::vector<std::uint64_t> initials;  // of its syllables and words
    std::vector<std::string> folded;      // the names without case, for queries in their own script
    std::vector<int> order;               // the name at each position
    std::vector<int> positions;           // the position of each name
    std::vector<JumpSection> sections;
};

JumpIndex::Contents::Contents(const std::vector<std::string>& names, const std::vector<std::string>& namesRead,
                              std::vector<int> sorted)
    : order(std::move(sorted)), positions(names.size())
{
    for (const int index : order)
    {
        const auto at = static_cast<std::size_t>(index);
        positions[at] = static_cast<int>(readings.size());
        readings.push_back(namesRead[at]);
        letters.push_back(LettersIn(namesRead[at]));
        initials.push_back(InitialsIn(namesRead[at]));
        folded.push_back(Folded(icu::UnicodeString::fromUTF8(names[at])));
    }
    sections = SectionsOf(readings);
}

// Most names lack a letter of the query, which is seen at once.
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

Result<JumpIndex> JumpIndex::Build(std::vector<std::string> names, const JumpIndexOptions& options)
{
    Result<Reader> reader = Reader::Make();
    if (!reader) return tl::unexpected<Error>(reader.error());
    const auto collator = CollatorOf(options.locale);
    if (collator == nullptr)
        return tl::unexpected<Error>(
            Error{ErrorKind::BadArgument, "ICU has no collation for the locale '" + options.locale + "'"});
    Keys keys;
    std::vector<std::string> readings;
    for (const std::string& name : names)
    {
        const icu::UnicodeString text = icu::UnicodeString::fromUTF8(name);
        readings.push_back(reader->Read(text));
        keys.push_back(OrderKey(*collator, text, readings.back()));
    }
    return JumpIndex(std::make_shared<const Contents>(names, readings, Sorted(keys, readings)));
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
    std::string reading = m_contents->readings[static_cast<std::size_t>(position)];
    std::replace(reading.begin(), reading.end(), kUmlaut, 'u');
    return reading;
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
}  // namespace ipodkit
