/// @file
/// A result that is still to come, for another thread to wait for.
#pragma once

#include <ipodkit/error.h>

#include <chrono>
#include <future>
#include <memory>
#include <utility>

#pragma GCC visibility push(default)

namespace ipodkit
{
namespace detail
{
/// The session's context, and which thread runs it.
class __attribute__((visibility("hidden"))) Home;
using HomePtr = std::shared_ptr<Home>;

/// Whether the calling thread runs the context, or ran it last while no thread does now.
bool RunsHere(const Home& home);

Error WouldDeadlock();
}  // namespace detail

/// Returned by Request::Future(). Like std::future, except that it does not wait on the thread that would have to bring
/// the result. Any thread may use it, one at a time.
template <class T>
class [[nodiscard]] Future
{
public:
    Future() = default;
    Future(std::future<Result<T>> result, detail::HomePtr home) : m_result(std::move(result)), m_home(std::move(home))
    {
    }

    /// False for a default-constructed future, and after get() has returned the result.
    bool valid() const noexcept { return m_result.valid(); }

    /// Blocks for so long, or until the result is there. On the thread that runs the session's context it returns at
    /// once: nothing would arrive meanwhile.
    template <class Rep, class Period>
    std::future_status wait_for(const std::chrono::duration<Rep, Period>& time) const
    {
        if (Ready() || detail::RunsHere(*m_home)) return m_result.wait_for(std::chrono::seconds(0));
        return m_result.wait_for(time);
    }

    /// Blocks until the result is there, and returns it. On the thread that runs the session's context it returns
    /// ErrorKind::WouldDeadlock instead of blocking; the future stays valid then.
    Result<T> get()
    {
        if (!Ready() && DeadlocksHere()) return tl::unexpected<Error>(detail::WouldDeadlock());
        return m_result.get();
    }

private:
    bool Ready() const { return m_result.wait_for(std::chrono::seconds(0)) == std::future_status::ready; }

    // A context that no thread runs may be about to get one: the session is often opened before its loop's thread
    // starts.
    bool DeadlocksHere() const
    {
        if (!detail::RunsHere(*m_home)) return false;
        constexpr std::chrono::milliseconds kUntilTheLoopRuns(200);
        return m_result.wait_for(kUntilTheLoopRuns) != std::future_status::ready && detail::RunsHere(*m_home);
    }

    std::future<Result<T>> m_result;
    detail::HomePtr m_home;
};
}  // namespace ipodkit

#pragma GCC visibility pop
