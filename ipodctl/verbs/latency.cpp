#include "verbs/latency.h"

#include <algorithm>
#include <cmath>

namespace ctl
{
namespace
{
double AtShare(const std::vector<double>& sorted, double share)
{
    const auto rank = static_cast<std::size_t>(std::ceil(share * static_cast<double>(sorted.size())));
    return sorted[std::clamp<std::size_t>(rank, 1, sorted.size()) - 1];
}
}  // namespace

Latency Summarise(std::vector<double> times)
{
    std::sort(times.begin(), times.end());
    return {times.front(), AtShare(times, 0.5), AtShare(times, 0.99), times.back()};
}
}  // namespace ctl
