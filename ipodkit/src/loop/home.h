/// @file
/// The session's context: which thread runs it, and tasks for it.
#pragma once

#include <ipodkit/future.h>

#include <atomic>
#include <functional>
#include <thread>

#include "loop/glib_ptr.h"
#include "loop/guard.h"
#include "loop/slot.h"

namespace ipodkit::detail
{
/// Any thread may use it.
class Home
{
public:
    /// Until the context runs, it counts as the calling thread's.
    Home(GMainContext* context, const Guard& guard) : m_context(g_main_context_ref(context)), m_guard(guard) {}

    GMainContext* Context() const { return m_context.get(); }
    const Guard& CallbackGuard() const { return m_guard; }

    /// Records that the calling thread runs the context.
    void RunsOnThisThread() { m_thread.store(std::this_thread::get_id(), std::memory_order_relaxed); }

    /// Records that the session has ended, which completes everything that was started before.
    void End() { m_ended.store(true); }
    bool Ended() const { return m_ended.load(); }

    /// Returns the time in microseconds: GLib's, plus what a test has advanced.
    gint64 Now() const { return g_get_monotonic_time() + m_ahead; }
    void WakeAt(GSource* source, gint64 time) const { g_source_set_ready_time(source, time - m_ahead); }

    /// Advances Now(), and calls the watchers of the clock. Context thread only.
    void Advance(std::chrono::microseconds time);
    Registry<std::function<void()>>& ClockWatchers() { return m_clockWatchers; }

    /// Runs @p work now if the calling thread runs the context, otherwise later in the context.
    void Run(const std::function<void()>& work) const;

    /// Acquires the context during its lifetime, if the calling thread may: if it runs the context, or ran it last and
    /// no thread runs it now.
    class Turn
    {
    public:
        explicit Turn(const Home& home);
        ~Turn();
        Turn(const Turn&) = delete;
        Turn& operator=(const Turn&) = delete;
        explicit operator bool() const { return m_held != nullptr; }

    private:
        GMainContext* m_held;
    };

private:
    const ContextPtr m_context;
    const Guard m_guard;
    std::atomic<std::thread::id> m_thread{std::this_thread::get_id()};
    std::atomic<bool> m_ended{false};
    std::atomic<gint64> m_ahead{0};
    Registry<std::function<void()>> m_clockWatchers;
};
}  // namespace ipodkit::detail
