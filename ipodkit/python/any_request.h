/// @file
/// Requests of any type behind one Python class.
#pragma once

#include <ipodkit/request.h>

#include <memory>

#include "callback.h"
#include "errors.h"

namespace ipodkit::python
{
/// A request that is sent once, in one of three ways.
class AnyRequest
{
public:
    AnyRequest() = default;
    virtual ~AnyRequest() = default;
    AnyRequest(const AnyRequest&) = delete;
    AnyRequest& operator=(const AnyRequest&) = delete;

    virtual void Within(std::chrono::milliseconds deadline) = 0;
    virtual void CancelledBy(const Cancellation& cancellation) = 0;

    /// The callback is given the value and None, or None and an ipodkit.Error.
    virtual void Start(const Callback& callback) = 0;

    /// Lets other Python threads run; raises ipodkit.Error.
    virtual py::object Wait() = 0;
};

template <class T>
class RequestOf final : public AnyRequest
{
public:
    explicit RequestOf(Request<T> request) : m_request(std::move(request)) {}

    void Within(std::chrono::milliseconds deadline) override { m_request = Take().Within(deadline); }
    void CancelledBy(const Cancellation& cancellation) override { m_request = Take().CancelledBy(cancellation); }

    void Start(const Callback& callback) override
    {
        Request<T> request = Take();
        const py::gil_scoped_release others;
        std::move(request).Start([callback](Result<T> result) { callback.Call([&] { return ArgumentsOf(result); }); });
    }

    py::object Wait() override
    {
        Request<T> request = Take();
        const Result<T> result = WaitWithoutLock(std::move(request));
        if (!result) Raise(result.error());
        return ValueOf(result);
    }

private:
    Request<T> Take()
    {
        if (!m_request) throw std::runtime_error("this request was sent already");
        Request<T> request = std::move(*m_request);
        m_request.reset();
        return request;
    }

    static Result<T> WaitWithoutLock(Request<T> request)
    {
        const py::gil_scoped_release others;
        return std::move(request).Wait();
    }

    static py::object ValueOf(const Result<T>& result)
    {
        if constexpr (std::is_void_v<T>)
            return py::none();
        else
            return py::cast(*result);
    }

    static py::tuple ArgumentsOf(const Result<T>& result)
    {
        if (!result) return py::make_tuple(py::none(), ToException(result.error()));
        return py::make_tuple(ValueOf(result), py::none());
    }

    std::optional<Request<T>> m_request;
};
}  // namespace ipodkit::python
