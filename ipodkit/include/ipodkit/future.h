/// @file
/// The future result of a request, for another thread to wait for.
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

/// Returns whether the calling thread runs the context, or ran it last if no thread runs it now.
bool RunsHere(const Home& home);

/// Returns whether the session has ended: a result that has not arrived by then never will.
bool HasEnded(const Home& home);

Error WouldDeadlock();
Error SessionEnded();
}  // namespace detail

/// Returned by Request::Future(). Like std::future, except that it does not throw when no result can arrive, and does
/// not wait on the thread where the result would arrive. Any thread may use it, one at a time.
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

    /// Blocks until the result is available, at most for @p time. On the thread that runs the session's context it
    /// returns at once, because no result can arrive meanwhile.
    template <class Rep, class Period>
    std::future_status wait_for(const std::chrono::duration<Rep, Period>& time) const
    {
        if (Arrived() || detail::HasEnded(*m_home)) return std::future_status::ready;
        return m_result.wait_for(detail::RunsHere(*m_home) ? std::chrono::duration<Rep, Period>::zero() : time);
    }

    /// Blocks until the result is available, and returns it; the future is no longer valid then. Returns
    /// ErrorKind::Cancelled when the session has ended and the result can no longer arrive.
    ///
    /// On the thread that runs the session's context it returns ErrorKind::WouldDeadlock instead of blocking, and the
    /// future stays valid.
    Result<T> get()
    {
        const bool arrived = Arrived();
        if (!arrived && detail::HasEnded(*m_home)) return Lost();
        if (!arrived && DeadlocksHere()) return tl::unexpected(detail::WouldDeadlock());
        try
        {
            return m_result.get();
        }
        catch (const std::future_error&)
        {
            return Lost();
        }
    }

private:
    bool Arrived() const { return m_result.wait_for(std::chrono::seconds(0)) == std::future_status::ready; }

    Result<T> Lost()
    {
        m_result = {};
        return tl::unexpected(detail::SessionEnded());
    }

    // A context that no thread runs may soon be run: the session is often opened before the loop's thread starts.
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
