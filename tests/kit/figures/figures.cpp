#include "kit/figures/figures.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <random>

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

void InRandomOrder(int rounds, const std::function<void()>& first, const std::function<void()>& second,
                   const std::function<void()>& third)
{
    const std::array steps{&first, &second, &third};
    std::mt19937 engine(1);
    for (int i = 0; i < 3 * rounds; ++i) (*steps[engine() % steps.size()])();
}

int Rounds(int otherwise)
{
    const char* const rounds = std::getenv("IPODKIT_ROUNDS");
    return rounds == nullptr ? otherwise : std::max(std::atoi(rounds), 10);
}
}  // namespace test
