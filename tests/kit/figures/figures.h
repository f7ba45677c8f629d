/// @file
/// Code shared by the benchmarks. Each prints lines "figure NAME VALUE", which run-figures parses.
#pragma once

#include <chrono>
#include <functional>
#include <vector>

namespace test
{
using Clock = std::chrono::steady_clock;

/// In microseconds unless stated otherwise.
using Samples = std::vector<double>;

double Microseconds(std::chrono::nanoseconds duration);

/// The @p which quantile; 0.5 is the median.
double Quantile(Samples samples, double which);

void Print(const char* name, double value);

/// The value of IPODKIT_ROUNDS, or the given default.
int Rounds(int otherwise);

/// Runs each of three measurements about @p rounds times, in one random order, so that drift affects them equally.
void InRandomOrder(int rounds, const std::function<void()>& first, const std::function<void()>& second,
                   const std::function<void()>& third);
}  // namespace test
