/// @file
/// Measures how long the main loop was blocked.
#pragma once

#include <glib.h>

#include <algorithm>
#include <chrono>
#include <fstream>

namespace test
{
/// The current time minus the time this thread waited for a CPU, which reflects the load of the machine, not whether
/// the loop was blocked.
inline std::chrono::nanoseconds OwnTime()
{
    long long ran = 0;
    long long waited = 0;
    std::ifstream("/proc/thread-self/schedstat") >> ran >> waited;
    return std::chrono::steady_clock::now().time_since_epoch() - std::chrono::nanoseconds(waited);
}

/// Ticks every millisecond in the default context, on the creating thread. Delays caused by a virtual machine or a
/// timer count, although nothing blocked the loop.
class Ticker
{
public:
    Ticker() : m_last(OwnTime()), m_source(g_timeout_add(1, Tick, this)) {}
    ~Ticker() { g_source_remove(m_source); }
    Ticker(const Ticker&) = delete;
    Ticker& operator=(const Ticker&) = delete;

    /// The longest time between two ticks so far.
    std::chrono::nanoseconds Longest() const { return m_longest; }
    int Count() const { return m_count; }

private:
    static gboolean Tick(gpointer data)
    {
        auto& ticker = *static_cast<Ticker*>(data);
        const auto now = OwnTime();
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

/// The longest iteration of the default context, from one wait to the next: the duration of its callbacks. Only one may
/// exist at a time.
class Turns
{
public:
    Turns() : m_poll(g_main_context_get_poll_func(nullptr))
    {
        s_now = this;
        g_main_context_set_poll_func(nullptr, Poll);
    }
    ~Turns() { g_main_context_set_poll_func(nullptr, m_poll); }
    Turns(const Turns&) = delete;
    Turns& operator=(const Turns&) = delete;

    std::chrono::nanoseconds Longest() const { return m_longest; }

private:
    static gint Poll(GPollFD* files, guint count, gint timeout)
    {
        Turns& turns = *s_now;
        if (turns.m_woke.count() != 0) turns.m_longest = std::max(turns.m_longest, OwnTime() - turns.m_woke);
        const gint ready = turns.m_poll(files, count, timeout);
        turns.m_woke = OwnTime();
        return ready;
    }

    static inline Turns* s_now = nullptr;

    const GPollFunc m_poll;
    std::chrono::nanoseconds m_woke{0};
    std::chrono::nanoseconds m_longest{0};
};
}  // namespace test
