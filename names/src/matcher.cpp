#include "matcher.h"

#include <algorithm>

#include "reader.h"

namespace ipodnames
{
namespace
{
constexpr std::size_t kLongest = 60;

// Bit n: the first n letters of the query are matched.
using Reached = std::uint64_t;

bool Stands(char typed, char letter)
{
    return typed == letter || (letter == kUmlaut && (typed == 'v' || typed == 'u'));
}

// From each reached position, the query may continue with any matching beginning of the token.
Reached Advance(Reached reached, const std::string& query, const char* token, std::size_t length)
{
    Reached next = 0;
    for (std::size_t from = 0; from < query.size(); ++from)
    {
        if ((reached >> from & 1) == 0) continue;
        for (std::size_t i = 0; i < length && from + i < query.size() && Stands(query[from + i], token[i]); ++i)
            next |= Reached{1} << (from + i + 1);
    }
    return next;
}

// Whether some run of tokens matches the whole query. @p anywhere: the run may start at any token.
bool Fits(const std::string& query, const std::string& reading, bool anywhere)
{
    const Reached whole = Reached{1} << query.size();
    Reached reached = 1;
    for (std::size_t begin = 0; begin < reading.size() && reached != 0;)
    {
        const std::size_t end = std::min(reading.find(' ', begin), reading.size());
        reached = Advance(reached, query, reading.data() + begin, end - begin);
        if ((reached & whole) != 0) return true;
        reached |= anywhere ? 1 : 0;
        begin = end + 1;
    }
    return false;
}

bool IsTyped(char letter)
{
    return (letter >= 'a' && letter <= 'z') || (letter >= '0' && letter <= '9');
}

std::uint64_t BitOf(char typed)
{
    return std::uint64_t{1} << (typed >= 'a' ? typed - 'a' : 26 + typed - '0');
}

// The ways to type a letter of a reading; none for a blank.
std::uint64_t BitsOf(char letter)
{
    if (letter == kUmlaut) return BitOf('v') | BitOf('u');
    return IsTyped(letter) ? BitOf(letter) : 0;
}
}  // namespace

Fit Match(const std::string& query, const std::string& reading)
{
    if (query.empty() || query.size() > std::min(kLongest, reading.size())) return Fit::None;
    if (query[0] == reading[0] && Fits(query, reading, false)) return Fit::Beginning;
    return Fits(query, reading, true) ? Fit::Inside : Fit::None;
}

std::uint64_t LettersIn(const std::string& text)
{
    std::uint64_t letters = 0;
    for (const char letter : text) letters |= BitsOf(letter);
    return letters;
}

std::uint64_t InitialsIn(const std::string& reading)
{
    std::uint64_t initials = 0;
    for (std::size_t i = 0; i < reading.size(); ++i)
        if (i == 0 || reading[i - 1] == ' ') initials |= BitsOf(reading[i]);
    return initials;
}

std::string Typed(const std::string& query)
{
    std::string typed;
    for (const char character : query)
    {
        const char lower =
            character >= 'A' && character <= 'Z' ? static_cast<char>(character + ('a' - 'A')) : character;
        if (IsTyped(lower)) typed += lower;
    }
    return typed.substr(0, kLongest);
}
}  // namespace ipodnames
