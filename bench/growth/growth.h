/// @file
/// One kind of cost at several sizes, as a contest whose variants are the sizes.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "contest.h"

namespace bench
{
/// Measures the processor time of @p work at each size. @p prepare runs before each measurement and is not measured. At
/// small sizes the work is repeated, so that the clock's own cost does not matter; the time is that of one.
inline void RunGrowth(const std::string& what, int rounds, const std::vector<int>& sizes,
                      const std::function<void(int)>& prepare, const std::function<void(int)>& work)
{
    constexpr int kEnough = 1000;
    std::vector<Variant> variants;
    for (const int size : sizes)
    {
        const int times = size < kEnough ? kEnough / size : 1;
        Variant variant = CpuTimed(
            std::to_string(size), [prepare, size] { prepare(size); },
            [work, size, times]
            {
                for (int i = 0; i < times; ++i) work(size);
            });
        variant.measure = [measure = variant.measure, times] { return measure() / times; };
        variants.push_back(variant);
    }
    Run({what, rounds, variants});
}
}  // namespace bench
