/// @file
/// One Python class for requests of all result types.
#pragma once

#include <ipodkit/request.h>

#include <chrono>
#include <functional>
#include <future>
#include <memory>
#include <optional>

#include "callback.h"
#include "dropped.h"
#include "errors.h"
#include "rows.h"

namespace ipodkit::python
{
/// A request that can be sent once: with a callback, as a future, or by a blocking call.
class AnyRequest
{
public:
    explicit AnyRequest(detail::HomePtr home) : m_home(std::move(home)) {}
    virtual ~AnyRequest() = default;
    AnyRequest(const AnyRequest&) = delete;
    AnyRequest& operator=(const AnyRequest&) = delete;

    virtual void Within(std::chrono::milliseconds deadline) = 0;
    virtual void CancelledBy(const Cancellation& cancellation) = 0;
    virtual bool HasSwitch() const = 0;
    const detail::HomePtr& Home() const { return m_home; }

    /// Sends the request. The callback receives (value, None) or (None, ipodkit.Error).
    virtual void Start(const Callback& callback) = 0;

    /// Sends the request and blocks until the answer, while other Python threads and signal handlers run. Raises
    /// ipodkit.Error, or the exception of a signal handler, which also withdraws the request.
    virtual py::object Wait() = 0;

protected:
    /// Calls @p ready with a time limit until it returns true. Signal handlers run between the calls.
    /// @param stop  cancelled when @p other is cancelled, and when a signal handler raises
    static void WaitUntil(const std::function<bool(std::chrono::milliseconds)>& ready, const Cancellation& stop,
                          const std::optional<Cancellation>& other);

private:
    const detail::HomePtr m_home;
};

template <class T>
py::object ValueOf(const Result<T>& result)
{
    if constexpr (std::is_void_v<T>)
        return py::none();
    else
        return ToObject(*result);
}

/// Converts a result to the arguments of a callback: (value, None) or (None, ipodkit.Error).
template <class T>
py::tuple ToArguments(const Result<T>& result)
{
    if (!result) return py::make_tuple(py::none(), ToException(result.error()));
    return py::make_tuple(ValueOf(result), py::none());
}

template <class... Values>
py::tuple ToArguments(const Values&... values)
{
    return py::make_tuple(ToObject(values)...);
}

template <class T>
class RequestOf final : public AnyRequest
{
public:
    explicit RequestOf(Request<T> request) : RequestOf(std::move(request).Inside()) {}
    ~RequestOf() override
    {
        if (m_request) WarnOfDropped("a request was dropped without being sent; call start(), future(), or wait()");
    }

    void Within(std::chrono::milliseconds deadline) override { m_request = Take().Within(deadline); }

    void CancelledBy(const Cancellation& cancellation) override
    {
        m_request = Take();
        m_switch = cancellation;
    }

    bool HasSwitch() const override { return m_switch.has_value(); }

    void Start(const Callback& callback) override
    {
        Request<T> request = Take();
        if (m_switch) request = std::move(request).CancelledBy(*m_switch);
        const py::gil_scoped_release others;
        std::move(request).Start([callback](Result<T> result) { callback.Call([&] { return ToArguments(result); }); });
    }

    py::object Wait() override
    {
        const Result<T> result = AwaitInterruptibly(Take());
        if (!result) Raise(result.error());
        return ValueOf(result);
    }

private:
    explicit RequestOf(const detail::OperationPtr<T>& operation) : AnyRequest(operation->home), m_request(operation) {}

    Request<T> Take()
    {
        if (!m_request) throw std::runtime_error("this request was already sent");
        Request<T> request = std::move(*m_request);
        m_request.reset();
        return request;
    }

    // The request waits on a separate thread, because only a Cancellation ends that wait early. The wait uses its own
    // Cancellation, since m_switch may serve other requests.
    Result<T> AwaitInterruptibly(Request<T> request) const
    {
        const Cancellation stop;
        if (m_switch && m_switch->Cancelled()) stop.Cancel();
        std::future<Result<T>> answer =
            std::async(std::launch::async, [&] { return std::move(request).CancelledBy(stop).Wait(); });
        WaitUntil([&](std::chrono::milliseconds slice) { return answer.wait_for(slice) == std::future_status::ready; },
                  stop, m_switch);
        return answer.get();
    }

    std::optional<Request<T>> m_request;
    std::optional<Cancellation> m_switch;
};

template <class T>
std::unique_ptr<AnyRequest> Wrapped(Request<T> request)
{
    return std::make_unique<RequestOf<T>>(std::move(request));
}
}  // namespace ipodkit::python
