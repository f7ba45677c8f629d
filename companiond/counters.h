/// @file
/// Counts the daemon's requests to the service, and measures their latency.
#pragma once

#include <gio/gio.h>
#include <ipodkit/fields.h>
#include <ipodkit/request.h>

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <tuple>
#include <vector>

namespace companion
{
/// Context thread only.
class Counters
{
public:
    using Clock = std::chrono::steady_clock;

    /// Sends a request, and answers the invocation with its result. The counters must outlive the request.
    /// @param answered  called afterwards, unless null, with whether the request succeeded
    void Send(ipodkit::Request<void> request, GDBusMethodInvocation* invocation,
              std::function<void(bool)> answered = nullptr);

    void CountRestarts(std::uint32_t generation) { m_restarts = generation == 0 ? 0 : generation - 1; }

    std::uint64_t Requests() const { return m_requests; }
    const std::map<std::string, std::uint64_t>& Failures() const { return m_failures; }
    std::uint32_t Restarts() const { return m_restarts; }
    std::uint64_t LatencyP50() const { return Percentile(50); }
    std::uint64_t LatencyP99() const { return Percentile(99); }

private:
    void Count(Clock::duration latency, const ipodkit::Result<void>& result);
    std::uint64_t Percentile(std::size_t percent) const;

    std::uint64_t m_requests = 0;
    std::map<std::string, std::uint64_t> m_failures;
    std::uint32_t m_restarts = 0;
    std::vector<std::uint64_t> m_latencies;  // of the last requests, in microseconds; the oldest is overwritten
};
}  // namespace companion

template <>
struct ipodkit::Rows<companion::Counters>
{
    static constexpr const char* type = "Counters";
    static constexpr const char* name = "counters";
    static constexpr std::tuple all{
        Row{"requests", &companion::Counters::Requests, "", "Completed requests of media controls"},
        Row{"failures", &companion::Counters::Failures, "", "Failed requests, by kind of error"},
        Row{"restarts", &companion::Counters::Restarts, "", "Number of service restarts"},
        Row{"latency_p50", &companion::Counters::LatencyP50, "us", "Median latency of the last 1,024 requests"},
        Row{"latency_p99", &companion::Counters::LatencyP99, "us", "99th percentile of the same latencies"},
    };
};
