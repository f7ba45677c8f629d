/// @file
/// Summarizes measured durations.
#pragma once

#include <vector>

namespace ctl
{
/// All members are in microseconds.
struct Latency
{
    double least;
    double median;
    double p99;  ///< 99th percentile
    double most;
};

/// Returns the extremes and the nearest-rank percentiles of @p times (microseconds), which must not be empty.
Latency Summarise(std::vector<double> times);
}  // namespace ctl
