#include "contest.h"

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <random>

namespace bench
{
namespace
{
// Warm-up calls, not counted: caches and CPU frequency settle.
constexpr int kWarmUpCalls = 50;

// Empty for all.
std::set<std::string> wanted;

double Now(clockid_t clock)
{
    timespec now{};
    clock_gettime(clock, &now);
    return static_cast<double>(now.tv_sec) * 1e9 + static_cast<double>(now.tv_nsec);
}

using Costs = std::vector<std::vector<double>>;

void OneRound(const Contest& contest, std::vector<std::size_t>& order, std::minstd_rand& random, Costs& costs)
{
    std::shuffle(order.begin(), order.end(), random);
    for (const std::size_t i : order) costs[i].push_back(contest.variants[i].measure());
}

Costs RunRounds(const Contest& contest, int rounds)
{
    Costs costs(contest.variants.size());
    std::vector<std::size_t> order(contest.variants.size());
    for (std::size_t i = 0; i < order.size(); ++i) order[i] = i;
    std::minstd_rand random(std::random_device{}());
    for (int i = 0; i < rounds; ++i) OneRound(contest, order, random, costs);
    return costs;
}

double Percentile(const std::vector<double>& sorted, double share)
{
    return sorted[static_cast<std::size_t>(share * static_cast<double>(sorted.size() - 1))];
}

void Print(const Variant& variant, std::vector<double> costs, const char* separator)
{
    std::sort(costs.begin(), costs.end());
    std::printf(R"(%s"%s": {"p50": %.0f, "p99": %.0f, "calls": %zu})", separator, variant.name.c_str(),
                Percentile(costs, 0.50), Percentile(costs, 0.99), costs.size());
}
}  // namespace

Variant Timed(std::string name, std::function<void()> call)
{
    return {std::move(name), [call = std::move(call)]
            {
                const double start = Now(CLOCK_MONOTONIC);
                call();
                return Now(CLOCK_MONOTONIC) - start;
            }};
}

Variant CpuTimed(std::string name, std::function<void()> before, std::function<void()> call)
{
    return {std::move(name), [before = std::move(before), call = std::move(call)]
            {
                before();
                const double start = Now(CLOCK_PROCESS_CPUTIME_ID);
                call();
                return Now(CLOCK_PROCESS_CPUTIME_ID) - start;
            }};
}

void RunOnly(std::set<std::string> names)
{
    wanted = std::move(names);
}

void Run(Contest contest)
{
    if (!wanted.empty() && wanted.count(contest.name) == 0) return;
    contest.variants.push_back({"control", contest.variants.front().measure});
    RunRounds(contest, std::min(contest.calls, kWarmUpCalls));
    const Costs costs = RunRounds(contest, contest.calls);
    std::printf(R"({"contest": "%s", "variants": {)", contest.name.c_str());
    for (std::size_t i = 0; i < costs.size(); ++i) Print(contest.variants[i], costs[i], i == 0 ? "" : ", ");
    std::printf("}}\n");
    std::fflush(stdout);
}
}  // namespace bench
