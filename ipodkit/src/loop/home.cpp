#include "loop/home.h"

#include "loop/context.h"
#include "loop/terms.h"

namespace ipodkit::detail
{
Home::Turn::Turn(const Home& home) : m_held(home.Context())
{
    const bool mine = g_main_context_is_owner(m_held) != FALSE ||
                      home.m_thread.load(std::memory_order_relaxed) == std::this_thread::get_id();
    if (!mine || g_main_context_acquire(m_held) == FALSE) m_held = nullptr;
}

Home::Turn::~Turn()
{
    if (m_held != nullptr) g_main_context_release(m_held);
}

void Home::Run(const std::function<void()>& work) const
{
    if (const Turn turn(*this); turn) return work();
    Post(Context(), work);
}

void Home::Advance(std::chrono::microseconds time)
{
    m_ahead += time.count();
    m_clockWatchers.ForEach(m_guard, [](const auto& watcher) { watcher(); });
}

bool RunsHere(const Home& home)
{
    return static_cast<bool>(Home::Turn(home));
}

bool HasEnded(const Home& home)
{
    return home.Ended();
}

Error SessionEnded()
{
    return kSessionEnded;
}

Error WouldDeadlock()
{
    return {ErrorKind::WouldDeadlock,
            "this thread runs the session's context, where the result would arrive; use Start(), or wait on another "
            "thread"};
}
}  // namespace ipodkit::detail
