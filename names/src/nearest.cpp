#include <ipodnames/nearest.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <cstdint>
#include <numeric>
#include <utility>

namespace ipodnames
{
namespace
{
icu::UnicodeString CaseFolded(const std::string& name)
{
    return icu::UnicodeString::fromUTF8(name).foldCase();
}

// Returns the Levenshtein distance.
std::int32_t Edits(const icu::UnicodeString& from, const icu::UnicodeString& to)
{
    std::vector<std::int32_t> row(static_cast<std::size_t>(to.length()) + 1);
    std::iota(row.begin(), row.end(), 0);
    for (std::int32_t i = 0; i < from.length(); ++i)
    {
        std::int32_t diagonal = std::exchange(row[0], i + 1);
        for (std::size_t j = 0; j + 1 < row.size(); ++j)
        {
            const std::int32_t replaced = diagonal + (from[i] == to[static_cast<std::int32_t>(j)] ? 0 : 1);
            diagonal = row[j + 1];
            row[j + 1] = std::min({replaced, row[j] + 1, row[j + 1] + 1});
        }
    }
    return row.back();
}
}  // namespace

std::string Nearest(const std::string& name, const std::vector<std::string>& names)
{
    constexpr std::int32_t kLongest = 64;  // bounds the cost of a comparison
    const icu::UnicodeString folded = CaseFolded(name);
    if (folded.length() > kLongest) return {};
    std::string nearest;
    std::int32_t least = std::min(std::max(2, folded.length() / 3) + 1, folded.length());
    for (const std::string& other : names)
    {
        const std::int32_t edits = Edits(folded, CaseFolded(other));
        if (edits < least) nearest = other;
        least = std::min(least, edits);
    }
    return nearest;
}
}  // namespace ipodnames
