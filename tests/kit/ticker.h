/// @file
/// How long the main loop was kept from running.
#pragma once

#include <glib.h>

#include <chrono>
#include <fstream>

namespace test
{
/// Ticks every millisecond in the default context, on the thread that makes it. Time for which the kernel kept the
/// thread waiting for a processor is left out: it says how busy the machine is, not whether the loop was blocked.
class Ticker
{
public:
    Ticker() : m_last(Now()), m_source(g_timeout_add(1, Tick, this)) {}
    ~Ticker() { g_source_remove(m_source); }
    Ticker(const Ticker&) = delete;
    Ticker& operator=(const Ticker&) = delete;

    /// The longest time between two ticks so far.
    std::chrono::nanoseconds Longest() const { return m_longest; }
    int Count() const { return m_count; }

private:
    static std::chrono::nanoseconds Now()
    {
        long long ran = 0;
        long long waited = 0;
        std::ifstream("/proc/thread-self/schedstat") >> ran >> waited;
        return std::chrono::steady_clock::now().time_since_epoch() - std::chrono::nanoseconds(waited);
    }

    static gboolean Tick(gpointer data)
    {
        auto& ticker = *static_cast<Ticker*>(data);
        const auto now = Now();
        ticker.m_longest = std::max(ticker.m_longest, now - ticker.m_last);
        ticker.m_last = now;
        ++ticker.m_count;
        return G_SOURCE_CONTINUE;
    }

    std::chrono::nanoseconds m_last;
    std::chrono::nanoseconds m_longest{0};
    int m_count = 0;
    guint m_source;
};
}  // namespace test
