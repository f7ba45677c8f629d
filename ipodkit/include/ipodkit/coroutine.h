/// @file
/// Requests in coroutines; needs C++20. The library itself does not.
///
///     Task<> Browser::Show()
///     {
///         const Result<int> count = co_await m_pager.Count().Within(1s);
///         for (int index = 0; count && index < *count; index += 50)
///             if (const Result<PagePtr> page = co_await m_pager.At(index)) Draw(**page);
///         while (const Result<StatePtr> state = co_await m_session.Changed(Field::Track)) Draw(**state);
///     }
///
///     m_tasks.Start(Show());
///
/// **Threads.** A task begins on the thread that starts it, which is the context's, and always resumes in the session's
/// context.
///
/// **Ownership.** A task belongs to the Tasks that started it, or to the task that awaits it. Destroying the owner
/// destroys the frame at its suspension point, and withdraws the request that it awaits: a request that has not been
/// sent is dropped, and the answer to one that has is ignored.
///
/// **Exceptions** of a task reach the task that awaits it; those of the outermost task are logged, level WARN.
///
/// **Cost.** Awaiting a request allocates no more than Start() does.
#pragma once

#if !defined(__cpp_impl_coroutine) && !defined(__cpp_coroutines)
#error "ipodkit/coroutine.h needs coroutines: compile with -std=c++20"
#endif

#include <ipodkit/request.h>

#include <coroutine>
#include <exception>
#include <optional>
#include <utility>

#pragma GCC visibility push(default)

namespace ipodkit
{
template <class T>
class Task;

namespace detail
{
/// A started task and everything it awaits: a link in its owner's list.
class TaskRoot
{
public:
    TaskRoot() = default;
    ~TaskRoot()
    {
        if (m_ended != nullptr) *m_ended = true;
        Unlink();
    }
    TaskRoot(const TaskRoot&) = delete;
    TaskRoot& operator=(const TaskRoot&) = delete;

    void LinkTo(TaskRoot*& first)
    {
        m_next = first;
        m_link = &first;
        if (m_next != nullptr) m_next->m_link = &m_next;
        first = this;
    }

    /// Runs a coroutine of this task to its next suspension. It may end the task, and the owner.
    void Resume(std::coroutine_handle<> suspended)
    {
        bool ended = false;
        m_ended = &ended;
        suspended.resume();
        if (ended) return;
        m_ended = nullptr;
        if (m_orphaned) m_frame.destroy();
    }

    /// Called when the owner ends. A running task ends when it suspends.
    void End()
    {
        Unlink();
        m_orphaned = m_ended != nullptr;
        if (!m_orphaned) m_frame.destroy();
    }

    bool Orphaned() const { return m_orphaned; }

protected:
    void SetFrame(std::coroutine_handle<> frame) { m_frame = frame; }

private:
    void Unlink()
    {
        if (m_link == nullptr) return;
        *m_link = m_next;
        if (m_next != nullptr) m_next->m_link = m_link;
        m_link = nullptr;
    }

    std::coroutine_handle<> m_frame;
    TaskRoot** m_link = nullptr;
    TaskRoot* m_next = nullptr;
    bool* m_ended = nullptr;  // while it runs
    bool m_orphaned = false;
};

/// The frame that a Tasks owns; the task is part of it.
struct OwnedTask
{
    struct promise_type : TaskRoot
    {
        OwnedTask get_return_object()
        {
            const auto own = std::coroutine_handle<promise_type>::from_promise(*this);
            SetFrame(own);
            return {own};
        }
        std::suspend_always initial_suspend() const noexcept { return {}; }
        std::suspend_never final_suspend() const noexcept { return {}; }
        void return_void() const {}
        void unhandled_exception() const { LogThrownByTask(std::current_exception()); }
        TaskRoot* Root() { return this; }
    };

    std::coroutine_handle<promise_type> frame;
};

class TaskPromiseBase
{
public:
    struct GoOn
    {
        bool await_ready() const noexcept { return false; }
        template <class Promise>
        std::coroutine_handle<> await_suspend(std::coroutine_handle<Promise> ended) const noexcept
        {
            return ended.promise().Awaiting();
        }
        void await_resume() const noexcept {}
    };

    std::suspend_always initial_suspend() const noexcept { return {}; }
    GoOn final_suspend() const noexcept { return {}; }
    void unhandled_exception() { m_thrown = std::current_exception(); }
    TaskRoot* Root() const { return m_root; }
    std::coroutine_handle<> Awaiting() const { return m_awaiting; }

    template <class Promise>
    void AwaitedBy(std::coroutine_handle<Promise> awaiting)
    {
        m_awaiting = awaiting;
        m_root = awaiting.promise().Root();
    }

protected:
    void RethrowThrown() const
    {
        if (m_thrown) std::rethrow_exception(m_thrown);
    }

private:
    std::coroutine_handle<> m_awaiting;
    TaskRoot* m_root = nullptr;
    std::exception_ptr m_thrown;
};

template <class T>
class TaskPromise final : public TaskPromiseBase
{
public:
    Task<T> get_return_object();
    void return_value(T value) { m_value.emplace(std::move(value)); }
    T Take()
    {
        RethrowThrown();
        return std::move(*m_value);
    }

private:
    std::optional<T> m_value;
};

template <>
class TaskPromise<void> final : public TaskPromiseBase
{
public:
    Task<void> get_return_object();
    void return_void() const {}
    void Take() const { RethrowThrown(); }
};

/// Waits for a request. Destroying it withdraws the request.
template <class T>
class RequestAwaiter
{
public:
    explicit RequestAwaiter(Request<T> request) : m_operation(std::move(request).Inside()) {}
    ~RequestAwaiter()
    {
        if (std::exchange(m_suspended, nullptr)) m_operation->Withdraw();
    }
    RequestAwaiter(const RequestAwaiter&) = delete;
    RequestAwaiter& operator=(const RequestAwaiter&) = delete;

    bool await_ready() const noexcept { return false; }

    template <class Promise>
    void await_suspend(std::coroutine_handle<Promise> suspended)
    {
        if constexpr (requires { suspended.promise().Root(); }) m_root = suspended.promise().Root();
        if (m_root != nullptr && m_root->Orphaned()) return;
        m_suspended = suspended;
        const OperationPtr<T> operation = m_operation;
        operation->Start([this](Result<T> result) { Arrived(std::move(result)); });
    }

    Result<T> await_resume() { return std::move(*m_result); }

private:
    void Arrived(Result<T> result)
    {
        const std::coroutine_handle<> suspended = std::exchange(m_suspended, nullptr);
        if (!suspended) return;
        m_result.emplace(std::move(result));
        if (m_root != nullptr)
            m_root->Resume(suspended);
        else
            suspended.resume();
    }

    const OperationPtr<T> m_operation;
    TaskRoot* m_root = nullptr;
    std::coroutine_handle<> m_suspended;
    std::optional<Result<T>> m_result;
};
}  // namespace detail

/// A coroutine that does nothing until a Tasks starts it or another task awaits it: `T value = co_await task`.
template <class T = void>
class [[nodiscard]] Task
{
public:
    using promise_type = detail::TaskPromise<T>;

    explicit Task(std::coroutine_handle<promise_type> frame) : m_frame(frame) {}
    Task(Task&& other) noexcept : m_frame(std::exchange(other.m_frame, nullptr)) {}
    Task& operator=(Task&&) = delete;
    ~Task()
    {
        if (m_frame) m_frame.destroy();
    }

    bool await_ready() const noexcept { return false; }
    template <class Promise>
    std::coroutine_handle<> await_suspend(std::coroutine_handle<Promise> awaiting)
    {
        m_frame.promise().AwaitedBy(awaiting);
        return m_frame;
    }
    T await_resume() { return m_frame.promise().Take(); }

private:
    std::coroutine_handle<promise_type> m_frame;
};

/// Owns the tasks that it started until they end. Context thread only. Declare it after the members that the tasks use,
/// so that the tasks end first.
class Tasks
{
public:
    Tasks() = default;

    /// Destroys the frames of the tasks that have not ended, which withdraws their requests. A task that destroys its
    /// own owner continues to its next co_await, and ends there.
    ~Tasks()
    {
        while (m_first != nullptr) m_first->End();
    }
    Tasks(const Tasks&) = delete;
    Tasks& operator=(const Tasks&) = delete;

    /// Runs the task to its first suspension.
    void Start(Task<> task)
    {
        const auto frame = Own(std::move(task)).frame;
        frame.promise().LinkTo(m_first);
        frame.promise().Resume(frame);
    }

    /// Returns whether all tasks have ended.
    bool Empty() const { return m_first == nullptr; }

private:
    static detail::OwnedTask Own(Task<> task) { co_await task; }

    detail::TaskRoot* m_first = nullptr;
};

namespace detail
{
template <class T>
Task<T> TaskPromise<T>::get_return_object()
{
    return Task<T>(std::coroutine_handle<TaskPromise>::from_promise(*this));
}

inline Task<void> TaskPromise<void>::get_return_object()
{
    return Task<void>(std::coroutine_handle<TaskPromise>::from_promise(*this));
}
}  // namespace detail

/// Starts the request and waits for its result, in any coroutine.
template <class T>
detail::RequestAwaiter<T> operator co_await(Request<T>&& request)
{
    return detail::RequestAwaiter<T>(std::move(request));
}
}  // namespace ipodkit

#pragma GCC visibility pop
