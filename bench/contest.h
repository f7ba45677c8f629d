/// @file
/// Call-level comparison: the variants alternate call by call, in random order.
#pragma once

#include <functional>
#include <set>
#include <string>
#include <vector>

namespace bench
{
/// One of the compared implementations. @p measure runs it once and returns its cost in nanoseconds.
struct Variant
{
    std::string name;
    std::function<double()> measure;
};

/// The first variant is the baseline. It runs a second time as "control": if the two differ, the machine was too
/// unsteady and the comparison is void.
struct Contest
{
    std::string name;
    int calls;
    std::vector<Variant> variants;
};

/// A variant measured in wall-clock time.
Variant Timed(std::string name, std::function<void()> call);

/// A variant measured in CPU time of the process, including all threads.
Variant CpuTimed(std::string name, std::function<void()> before, std::function<void()> call);

/// Restricts Run() to the comparisons in @p names.
void RunOnly(std::set<std::string> names);

/// Runs a comparison and prints one line of JSON with the percentiles of each variant.
void Run(Contest contest);
}  // namespace bench
