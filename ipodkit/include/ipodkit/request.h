/// @file
/// Requests: the type of every operation that takes time. Nothing is sent before Start(), Future(), Wait(), or
/// co_await. A request that is destroyed unsent does nothing.
///
///     commands.Next().Start([](Result<void> done) { … });                        // asynchronous
///     Result<int> count = commands.DeviceCount().Future().get();                 // on another thread
///     Result<std::string> name = commands.IpodName().Within(500ms).Wait();       // blocks
///     commands.EnterRoot().AndThen([=] { return commands.DatabaseCount(); }).Start(…);
///     Result<PagePtr> page = co_await pager.At(1234);                            // see coroutine.h
///
/// **Use.** A request is sent once, and each of its functions consumes it. Chain the calls as above; a request in a
/// variable must be moved, and not be used afterwards: `std::move(request).Start(…)`. Everything that a completion
/// refers to must outlive it; it runs no later than the end of the session.
///
/// **Threads.** Any thread may make and send requests. Completions, and functions given to AndThen(), run in the
/// session's context, exactly once, never inside Start(). Exceptions they throw are logged at level WARN and are not
/// propagated.
///
/// **Blocking.** The Wait() of a command needs no context: it iterates none, and may be called on any thread, also on
/// the session's (which it blocks). All other requests (of pagers, accessory sessions, audio sources, and leases, and
/// Session::Changed() and Refreshed()) need the context to run: on its thread Wait() returns ErrorKind::WouldDeadlock,
/// on others it blocks.
///
/// **Time.** A request completes no later than its deadline: that of Within(), or else the session's. Without Within(),
/// requests of several steps (Pager::Range(), AccessorySession::Write(), AndThen()) have one deadline per step, and
/// Session::Changed() and Refreshed() have none.
///
/// **End.** When the session ends, requests under way by Start() or Future() complete with ErrorKind::Cancelled before
/// its destructor returns. A Wait() of a command on another thread continues until its answer or its deadline. Requests
/// made afterwards complete with ErrorKind::Cancelled, too: a Start() in the context, while it runs.
#pragma once

#include <ipodkit/cancellation.h>
#include <ipodkit/error.h>
#include <ipodkit/future.h>

#include <chrono>
#include <exception>
#include <functional>
#include <future>
#include <memory>
#include <optional>
#include <type_traits>
#include <utility>

#pragma GCC visibility push(default)

namespace ipodkit
{
template <class T>
class Request;

namespace detail
{
class __attribute__((visibility("hidden"))) Bus;

/// Deadline and cancellation of a request, as set by Within() and CancelledBy().
struct Terms
{
    std::optional<std::chrono::milliseconds> deadline{};
    std::optional<Cancellation> cancellation{};
};

/// Deadline and cancellation of a request of several steps that has begun.
class SharedTerms
{
public:
    SharedTerms() = default;
    explicit SharedTerms(Terms terms);

    /// Limits a step that begins now to what is left for the whole request. Returns an error if the whole has ended or
    /// its deadline has passed.
    std::optional<Error> ApplyTo(Terms& step) const;

private:
    Terms m_terms;
    std::chrono::steady_clock::time_point m_end{};
};

/// The error of a request whose AndThen() function threw.
Error Threw();

/// Writes the exception that ended a task of coroutine.h to the log.
void LogThrownByTask(const std::exception_ptr& thrown);

/// Executes one request, once: by Start() or Wait().
template <class T>
class Operation
{
public:
    using Completion = std::function<void(Result<T>)>;

    Operation(HomePtr where, Terms limits) : home(std::move(where)), terms(std::move(limits)) {}
    virtual ~Operation() = default;
    Operation(const Operation&) = delete;
    Operation& operator=(const Operation&) = delete;

    virtual void Start(Completion completion) = 0;

    /// Completes a started operation with ErrorKind::Cancelled before it returns, unless it has completed. Context
    /// thread only.
    virtual void Withdraw() = 0;

    virtual Result<T> Wait()
    {
        if (RunsHere(*home)) return tl::unexpected(WouldDeadlock());
        return Started().get();
    }

    ipodkit::Future<T> Started()
    {
        const auto promise = std::make_shared<std::promise<Result<T>>>();
        ipodkit::Future<T> future(promise->get_future(), home);
        Start([promise](Result<T> result) { promise->set_value(std::move(result)); });
        return future;
    }

    HomePtr home;
    Terms terms;
};

template <class T>
using OperationPtr = std::shared_ptr<Operation<T>>;

template <class F, class T>
struct Following : std::invoke_result<F, T>
{
};
template <class F>
struct Following<F, void> : std::invoke_result<F>
{
};

/// Two operations; the second is made from the result of the first.
template <class T, class U, class F>
class Chain final : public Operation<U>, public std::enable_shared_from_this<Chain<T, U, F>>
{
public:
    Chain(OperationPtr<T> first, F next)
        : Operation<U>(first->home, {}), m_first(std::move(first)), m_next(std::move(next))
    {
    }

    void Start(typename Operation<U>::Completion completion) override
    {
        m_completion = std::move(completion);
        Begin();
        m_first->Start([self = this->shared_from_this()](Result<T> result) { self->Arrived(std::move(result)); });
    }

    void Withdraw() override
    {
        if (m_second != nullptr)
            m_second->Withdraw();
        else
            m_first->Withdraw();
    }

    Result<U> Wait() override
    {
        if (!RunsHere(*this->home)) return Operation<U>::Wait();
        Begin();
        const Result<OperationPtr<U>> second = Second(m_first->Wait());
        if (!second) return tl::unexpected(second.error());
        return (*second)->Wait();
    }

private:
    void Begin()
    {
        m_shared = SharedTerms(std::move(this->terms));
        m_shared.ApplyTo(m_first->terms);
    }

    void Arrived(Result<T> result)
    {
        const Result<OperationPtr<U>> second = Second(std::move(result));
        const auto completion = std::move(m_completion);
        if (second) return (m_second = *second)->Start(completion);
        completion(tl::unexpected(second.error()));
        if (m_thrown) std::rethrow_exception(std::exchange(m_thrown, nullptr));
    }

    Result<OperationPtr<U>> Second(Result<T> result)
    {
        if (!result) return tl::unexpected(std::move(result.error()));
        try
        {
            OperationPtr<U> second = Made(std::move(result)).Inside();
            if (std::optional<Error> late = m_shared.ApplyTo(second->terms)) return tl::unexpected(*late);
            return second;
        }
        catch (...)
        {
            m_thrown = std::current_exception();
            return tl::unexpected(Threw());
        }
    }

    Request<U> Made(Result<T> result)
    {
        F next = std::move(m_next);
        if constexpr (std::is_void_v<T>)
            return std::move(next)();
        else
            return std::move(next)(*std::move(result));
    }

    const OperationPtr<T> m_first;
    OperationPtr<U> m_second;  // once it has begun
    F m_next;
    SharedTerms m_shared;
    std::exception_ptr m_thrown;
    typename Operation<U>::Completion m_completion;
};
}  // namespace detail

template <class T>
class [[nodiscard]] Request
{
public:
    using Value = T;
    using Completion = std::function<void(Result<T>)>;

    explicit Request(detail::OperationPtr<T> operation) : m_operation(std::move(operation)) {}

    /// Sets the deadline, counted from Start(), Future(), or Wait(). Less than 1 ms is ErrorKind::BadArgument; more
    /// than 24 days counts as 24 days.
    Request Within(std::chrono::milliseconds deadline) &&
    {
        m_operation->terms.deadline = deadline;
        return std::move(*this);
    }

    /// Lets @p cancellation withdraw the request, which then completes with ErrorKind::Cancelled. Replaces the one
    /// given before.
    Request CancelledBy(const Cancellation& cancellation) &&
    {
        m_operation->terms.cancellation = cancellation;
        return std::move(*this);
    }

    /// Chains two requests: @p next is called with the value of this one, if it has one, and returns the second, whose
    /// result is that of the whole. An error ends the whole at once.
    ///
    /// Each part keeps its own deadline. Within() and CancelledBy(), applied to the whole, hold for all parts together:
    /// they reach the one that is under way.
    ///
    /// @param next  called in the session's context, once or never. When it throws, the request completes with
    ///              ErrorKind::Cancelled.
    template <class F>
    typename detail::Following<F, T>::type AndThen(F next) &&
    {
        using Second = typename detail::Following<F, T>::type;
        using U = typename Second::Value;
        static_assert(std::is_same_v<Second, Request<U>>, "the function given to AndThen() returns a Request");
        return Second(std::make_shared<detail::Chain<T, U, F>>(std::move(m_operation), std::move(next)));
    }

    /// Sends the request and returns at once. @p completion runs exactly once, in the session's context, after Start()
    /// has returned.
    void Start(Completion completion) &&
    {
        const detail::OperationPtr<T> operation = std::move(m_operation);
        operation->Start(std::move(completion));
    }

    /// Sends the request and returns at once; the future is fulfilled in the session's context.
    ipodkit::Future<T> Future() &&
    {
        const detail::OperationPtr<T> operation = std::move(m_operation);
        return operation->Started();
    }

    /// Sends the request and blocks until its result arrives. See "Blocking" above.
    Result<T> Wait() &&
    {
        const detail::OperationPtr<T> operation = std::move(m_operation);
        return operation->Wait();
    }

    /// For the kit's own classes only.
    detail::OperationPtr<T> Inside() && { return std::move(m_operation); }

private:
    detail::OperationPtr<T> m_operation;
};
}  // namespace ipodkit

#pragma GCC visibility pop
