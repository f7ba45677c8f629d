#include "counters.h"

#include <ipodkit/variant.h>

#include <algorithm>
#include <utility>

namespace companion
{
namespace
{
constexpr std::size_t kLatencies = 1024;

void Answer(GDBusMethodInvocation* invocation, const ipodkit::Result<void>& result)
{
    if (result) return g_dbus_method_invocation_return_value(invocation, nullptr);
    const std::string name = std::string("com.zarn.linux.ipod.Error.") + Name(result.error().kind);
    g_dbus_method_invocation_return_dbus_error(invocation, name.c_str(),
                                               ipodkit::BusText(result.error().reason).c_str());
}
}  // namespace

void Counters::Send(ipodkit::Request<void> request, GDBusMethodInvocation* invocation,
                    std::function<void(bool)> answered)
{
    const auto ended =
        [this, invocation, answered = std::move(answered), since = Clock::now()](const ipodkit::Result<void>& result)
    {
        Count(Clock::now() - since, result);
        Answer(invocation, result);
        if (answered) answered(result.has_value());
    };
    std::move(request).Start(ended);
}

void Counters::Count(Clock::duration latency, const ipodkit::Result<void>& result)
{
    using std::chrono::duration_cast;
    using std::chrono::microseconds;
    if (m_latencies.size() < kLatencies) m_latencies.resize(m_latencies.size() + 1);
    m_latencies[m_requests % kLatencies] = static_cast<std::uint64_t>(duration_cast<microseconds>(latency).count());
    ++m_requests;
    if (!result) ++m_failures[Name(result.error().kind)];
}

std::uint64_t Counters::Percentile(std::size_t percent) const
{
    if (m_latencies.empty()) return 0;
    std::vector<std::uint64_t> sorted = m_latencies;
    const auto at = sorted.begin() + static_cast<std::ptrdiff_t>((sorted.size() - 1) * percent / 100);
    std::nth_element(sorted.begin(), at, sorted.end());
    return *at;
}
}  // namespace companion
