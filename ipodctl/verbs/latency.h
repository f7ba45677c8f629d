/// @file
/// How long something took, many times.
#pragma once

#include <vector>

namespace ctl
{
/// All in microseconds.
struct Latency
{
    double least;
    double median;
    double p99;  ///< 99 of 100 took no longer
    double most;
};

/// Of at least one time; by nearest rank.
Latency Summarise(std::vector<double> times);
}  // namespace ctl
