/// @file
/// The session's context: the thread that runs it, and work for it.
#pragma once

#include <ipodkit/future.h>

#include <atomic>
#include <functional>
#include <thread>

#include "loop/glib_ptr.h"
#include "loop/guard.h"

namespace ipodkit::detail
{
/// Any thread may use it.
class Home
{
public:
    /// Until the context runs, it counts as that of the calling thread.
    Home(GMainContext* context, const Guard& guard) : m_context(g_main_context_ref(context)), m_guard(guard) {}

    GMainContext* Context() const { return m_context.get(); }
    const Guard& CallbackGuard() const { return m_guard; }

    /// Remembers that the calling thread runs the context.
    void RunsOnThisThread() { m_thread.store(std::this_thread::get_id(), std::memory_order_relaxed); }

    /// The session has ended; it completes everything that was started before.
    void End() { m_ended.store(true); }
    bool Ended() const { return m_ended.load(); }

    /// Runs @p work now where the context runs, else later there.
    void Run(const std::function<void()>& work) const;

    /// Holds the context for as long as it lives, where that may be done: on the thread that runs it, or that ran it
    /// last while no thread does.
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
};
}  // namespace ipodkit::detail
