/// @file
/// Call-level comparison: the variants of a contest take turns call by call, in random order.
#pragma once

#include <functional>
#include <set>
#include <string>
#include <vector>

namespace bench
{
/// One way of doing the thing that is compared. @p measure does it once and returns its cost in nanoseconds.
struct Variant
{
    std::string name;
    std::function<double()> measure;
};

/// The first variant is what the others are compared with. It runs a second time as "control": the two must
/// agree, or the machine was too unsteady for the contest to count.
struct Contest
{
    std::string name;
    int calls;
    std::vector<Variant> variants;
};

/// A variant whose cost is the time on the clock.
Variant Timed(std::string name, std::function<void()> call);

/// A variant whose cost is the processor time of the process, all threads together.
Variant CpuTimed(std::string name, std::function<void()> before, std::function<void()> call);

/// From now on Run() leaves out every contest that is not among @p names.
void RunOnly(std::set<std::string> names);

/// Runs a contest and prints one line of JSON with the percentiles of each variant.
void Run(Contest contest);
}  // namespace bench
