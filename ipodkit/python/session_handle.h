/// @file
/// Owners of the session, its parts, and their subscriptions for Python.
#pragma once

#include <ipodkit/session.h>
#include <pybind11/pybind11.h>

#include <functional>
#include <memory>
#include <string>
#include <utility>

#include "any_request.h"
#include "callback.h"
#include "dropped.h"
#include "errors.h"

namespace ipodkit::python
{
/// Ends its subscription without the GIL, because End() waits for a callback on another thread that may need the GIL.
class OwnedSubscription
{
public:
    /// @param session  while it exists, destroying the object without End() issues a ResourceWarning
    OwnedSubscription(std::string name, Subscription subscription, std::weak_ptr<const Session> session)
        : m_name(std::move(name)), m_subscription(std::move(subscription)), m_session(std::move(session))
    {
    }
    ~OwnedSubscription()
    {
        const bool dropped = !m_ended && !m_session.expired();
        End();
        if (dropped)
            WarnOfDropped(("subscription '" + m_name + "' was dropped; keep a reference to it, or call end()").c_str());
    }
    OwnedSubscription(const OwnedSubscription&) = delete;
    OwnedSubscription& operator=(const OwnedSubscription&) = delete;

    void End()
    {
        const py::gil_scoped_release others;
        m_subscription.Reset();
        m_ended = true;
    }

private:
    const std::string m_name;
    Subscription m_subscription;
    const std::weak_ptr<const Session> m_session;
    bool m_ended = false;
};

using OwnedSubscriptionPtr = std::unique_ptr<OwnedSubscription>;

class SessionHandle
{
public:
    explicit SessionHandle(const SessionOptions& options)
    {
        auto opened = Session::Open(options);
        if (!opened) Raise(opened.error());
        m_session = std::move(*opened);
        present = m_session;
    }
    ~SessionHandle() { Close(); }
    SessionHandle(const SessionHandle&) = delete;
    SessionHandle& operator=(const SessionHandle&) = delete;

    void Close()
    {
        const py::gil_scoped_release others;
        m_session.reset();
    }

    Session& Get() const
    {
        if (m_session == nullptr) throw std::runtime_error("the session was closed");
        return *m_session;
    }

    /// Wraps a subscription to the current session or to a part of it; a process has one session at a time.
    static OwnedSubscriptionPtr Own(const std::string& name, Subscription subscription)
    {
        return std::make_unique<OwnedSubscription>(name, std::move(subscription), present);
    }

private:
    static inline std::weak_ptr<const Session> present;

    std::shared_ptr<Session> m_session;  // the only strong reference
};

/// Deletes a part of the session without the GIL, because that may wait for a callback on another thread.
struct Unlocked
{
    template <class Part>
    void operator()(Part* part) const
    {
        const py::gil_scoped_release others;
        delete part;
    }
};
template <class Part>
using Owned = std::unique_ptr<Part, Unlocked>;

/// Keeps a part of the session alive as long as its request, because deleting the part withdraws its requests.
using KeepsPart = py::keep_alive<0, 1>;

/// Wraps an operation that returns a request as a Python method.
template <class Part, class T, class... Args>
auto Requesting(Request<T> (Part::*make)(Args...))
{
    return [make](Part& part, Args... args) { return Wrapped((part.*make)(std::move(args)...)); };
}

/// Wraps an operation that subscribes as a Python method.
template <class Part, class... Args>
auto Subscribing(Subscription (Part::*subscribe)(std::string, std::function<void(Args...)>))
{
    return [subscribe](Part& part, const std::string& name, py::function function)
    {
        const Callback callback(name, std::move(function));
        const auto deliver = [callback](Args... args) { callback.Call([&] { return ToArguments(args...); }); };
        const py::gil_scoped_release others;
        return SessionHandle::Own(name, (part.*subscribe)(name, deliver));
    };
}
}  // namespace ipodkit::python
