#include "kit/figures/figures.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace test
{
double Microseconds(std::chrono::nanoseconds duration)
{
    return std::chrono::duration<double, std::micro>(duration).count();
}

double Quantile(Samples samples, double which)
{
    std::sort(samples.begin(), samples.end());
    return samples[static_cast<std::size_t>(which * static_cast<double>(samples.size() - 1))];
}

void Print(const char* name, double value)
{
    std::printf("figure %s %.4f\n", name, value);
    std::fflush(stdout);
}

int Rounds(int otherwise)
{
    const char* const rounds = std::getenv("IPODKIT_ROUNDS");
    return rounds == nullptr ? otherwise : std::max(std::atoi(rounds), 10);
}
}  // namespace test
