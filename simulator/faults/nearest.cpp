#include "faults/nearest.h"

#include <glib.h>

#include <algorithm>
#include <numeric>
#include <utility>

namespace ipodsim
{
namespace
{
// Edit distance: characters added, removed, or replaced.
std::size_t Distance(const std::string& from, const std::string& to)
{
    std::vector<std::size_t> row(to.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 0; i < from.size(); ++i)
    {
        std::size_t diagonal = std::exchange(row[0], i + 1);
        for (std::size_t j = 0; j < to.size(); ++j)
        {
            const std::size_t replaced = diagonal + (g_ascii_tolower(from[i]) == g_ascii_tolower(to[j]) ? 0 : 1);
            diagonal = row[j + 1];
            row[j + 1] = std::min({replaced, diagonal + 1, row[j] + 1});
        }
    }
    return row.back();
}
}  // namespace

std::string Nearest(const std::string& name, const std::vector<std::string>& names)
{
    constexpr std::size_t kLongest = 64;  // of any name; bounds the cost of comparing
    if (name.size() > kLongest) return {};
    std::string nearest;
    std::size_t least = std::max<std::size_t>(2, name.size() / 3) + 1;
    for (const std::string& other : names)
    {
        const std::size_t distance = Distance(name, other);
        if (distance < least && distance < name.size()) nearest = other;
        least = std::min(least, distance);
    }
    return nearest;
}

std::string NearestHint(const std::string& name, const std::vector<std::string>& names)
{
    const std::string nearest = Nearest(name, names);
    return nearest.empty() ? "" : " (did you mean '" + nearest + "'?)";
}

std::string UnknownName(const char* what, const std::string& name, const std::vector<std::string>& names)
{
    return std::string("the interface has no ") + what + " '" + name + "'" + NearestHint(name, names);
}
}  // namespace ipodsim
