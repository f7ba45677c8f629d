/// @file
/// What the parts of the measuring program share. Each part prints lines "figure NAME VALUE", which run-figures reads.
#pragma once

#include <chrono>
#include <vector>

namespace test
{
using Clock = std::chrono::steady_clock;

/// Microseconds, or whatever a part says.
using Samples = std::vector<double>;

double Microseconds(std::chrono::nanoseconds duration);

/// The @p which of them, 0.5 for the median.
double Quantile(Samples samples, double which);

void Print(const char* name, double value);

/// IPODKIT_ROUNDS, or what is given.
int Rounds(int otherwise);
}  // namespace test
