/// @file
/// A request to the service that has been written down but not sent: how it is sent is chosen where it is made.
///
///     commands.Next().Start([](Result<void> done) { … });              // asynchronous
///     std::future<Result<int>> count = commands.DeviceCount().Future();
///     Result<std::string> name = commands.IpodName().Within(500ms).Wait();   // blocks
///
/// **Threads.** Any thread may make and send requests. Completions run in the session's context, never inside
/// Start(). Future() is fulfilled there too: do not wait for it on the thread that runs that context. Wait() needs
/// no context: it iterates none, and may be called on any thread, also on the session's (which it blocks).
///
/// **Time.** A request waits for its answer no longer than its deadline: the session's, or that of Within().
///
/// **End.** When the session ends, requests under way by Start() or Future() complete with ErrorKind::Cancelled before
/// its destructor returns. A Wait() on another thread goes on to its answer or its deadline.
#pragma once

#include <ipodkit/cancellation.h>
#include <ipodkit/error.h>

#include <chrono>
#include <functional>
#include <future>
#include <memory>
#include <optional>
#include <utility>

#pragma GCC visibility push(default)

struct _GVariant;  // NOLINT(bugprone-reserved-identifier): GLib's own name

namespace ipodkit
{
namespace detail
{
class Bus;
using Body = std::shared_ptr<_GVariant>;
using BodyCompletion = std::function<void(Result<Body>)>;

struct Call
{
    std::shared_ptr<Bus> bus;
    const char* method;
    const char* replyType;
    Body arguments;
    std::chrono::milliseconds deadline;
    std::optional<Cancellation> cancellation;
    std::optional<Error> obstacle;  // why it cannot be sent
    bool isOrder = false;           // the reply "(b)" says whether it was followed
};

void Start(Call call, BodyCompletion completion);
Result<Body> Wait(const Call& call);
}  // namespace detail

template <class T>
class [[nodiscard]] Request
{
public:
    using Completion = std::function<void(Result<T>)>;
    using Decode = Result<T> (*)(_GVariant* body);

    Request(detail::Call call, Decode decode) : m_call(std::move(call)), m_decode(decode) {}

    /// Sets the deadline; at least 1 ms.
    Request Within(std::chrono::milliseconds deadline) &&
    {
        m_call.deadline = deadline;
        return std::move(*this);
    }

    Request CancelledBy(const Cancellation& cancellation) &&
    {
        m_call.cancellation = cancellation;
        return std::move(*this);
    }

    /// Sends it; @p completion runs exactly once.
    void Start(Completion completion) &&
    {
        detail::Start(std::move(m_call), [decode = m_decode, completion = std::move(completion)](
                                             Result<detail::Body> body) { completion(Decoded(decode, body)); });
    }

    /// Sends it; fulfilled in the session's context.
    std::future<Result<T>> Future() &&
    {
        auto promise = std::make_shared<std::promise<Result<T>>>();
        std::future<Result<T>> future = promise->get_future();
        std::move(*this).Start([promise](Result<T> result) { promise->set_value(std::move(result)); });
        return future;
    }

    /// Sends it and blocks until the answer or the deadline.
    Result<T> Wait() && { return Decoded(m_decode, detail::Wait(m_call)); }

private:
    static Result<T> Decoded(Decode decode, const Result<detail::Body>& body)
    {
        if (!body) return tl::unexpected<Error>(body.error());
        return decode(body->get());
    }

    detail::Call m_call;
    Decode m_decode;
};
}  // namespace ipodkit

#pragma GCC visibility pop
