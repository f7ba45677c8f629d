/// @file
/// The connection of an application to the service, through any number of its restarts. Start reading here.
///
///     auto session = ipodkit::Session::Open();
///     auto shown = (*session)->OnState("now playing", [](const StatePtr& state, Fields changed) { … });
///     (*session)->Commands().Next().Start([](Result<void> done) { … });
///     g_main_loop_run(loop);
///
/// **Context.** A session runs in one GMainContext: callbacks run there, outside of all locks, and the session never
/// blocks there. Create and destroy it on the thread that runs the context, or before any thread does. All other
/// operations may be called on any thread, and do not block.
///
/// **Callbacks** may call everything, end subscriptions, and destroy the session. Exceptions they throw are logged at
/// level WARN with the callback's name; the session and the other callbacks continue.
///
/// **Process.** One session exists at a time, because the lists in shared memory belong to the process. The session
/// obtains the core's player, which attaches the shared memory, but does not call its InitInstance(): it receives the
/// service's events itself. An application that uses the core alongside the session calls InitInstance() itself.
///
/// **End of the bus.** GLib terminates a process whose session bus disappears, unless
/// `g_dbus_connection_set_exit_on_close()` disables that. In a process that survives, requests fail with
/// ErrorKind::NoBus until a bus is available at the same address; the session checks once a second.
#pragma once

#include <ipodkit/commands.h>
#include <ipodkit/event.h>
#include <ipodkit/player_state.h>
#include <ipodkit/subscription.h>

#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>

typedef struct _GMainContext GMainContext;  // NOLINT(bugprone-reserved-identifier): GLib's own name

#pragma GCC visibility push(default)

namespace ipodkit
{
/// Session::Open() returns ErrorKind::BadArgument when an option is out of range. More than 24 days count as 24 days.
struct SessionOptions
{
    GMainContext* context = nullptr;              ///< null: the default context
    std::chrono::milliseconds settle{20};         ///< delay from an event to its state; 0: one state per event, at once
    std::chrono::milliseconds deadline{5000};     ///< of each request without Within(); at least 1 ms
    std::chrono::milliseconds callbackBudget{5};  ///< slower callbacks are logged by name; at least 0
    std::size_t artworkLimit = 1 << 20;           ///< in bytes; larger images are omitted from state and events
    bool activateService = false;                 ///< ask the bus to start the service while nobody owns its name
};

/// The connection to the service: the members of PlayerState that Field::Connection covers.
struct Connection
{
    Phase phase = Phase::Absent;
    std::uint32_t generation = 0;  ///< number of times the service has appeared
    std::optional<Error> error;    ///< why the session is not Ready, or why fields are missing; the session retries
    Fields missing{};              ///< see PlayerState::missing
};

class FakeSession;

/// A session with the service: its state, its events, and requests to it.
class Session
{
public:
    /// Opens a session in Phase::Absent, without blocking; it connects while the context runs. ErrorKind::BadArgument
    /// if the process has a session already, or an option is out of range.
    static Result<std::unique_ptr<Session>> Open(const SessionOptions& options = {});

    /// Completes the requests that are under way with ErrorKind::Cancelled; a Wait() on another thread continues.
    /// Subscriptions may outlive the session; their callbacks no longer run. A callback may destroy the session.
    ~Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    ipodkit::Connection Connection() const;  ///< of State()
    StatePtr State() const;                  ///< the state published last; never null
    ipodkit::Commands Commands() const;      ///< the requests to the service

    /// Completes with the next state that differs from the present one in any of @p fields. It has no deadline unless
    /// Within() sets one.
    Request<StatePtr> Changed(Fields fields = Fields::All());

    /// Reads @p fields from the service again, and publishes each when its answer arrives; fields that only events
    /// report are ignored. Use it for fields that were refused, or that may have changed without an event. Does nothing
    /// without a service. Any thread.
    void Refresh(Fields fields = Fields::All());

    /// Does the same as Refresh(), and completes with the published state once each of @p fields has been read or timed
    /// out. A field that the service refused, or did not answer within the session's deadline, is unknown in that
    /// state; Why() returns the reason. While the session is Connecting, the request waits for the whole state.
    ///
    /// Fails with Connection::error, or else ErrorKind::NoService, if no service is connected yet, and with
    /// ErrorKind::ServiceLost if the service exits meanwhile. It has no deadline unless Within() sets one.
    Request<StatePtr> Refreshed(Fields fields = Fields::All());

    /// @name Subscriptions. The log refers to a callback by its name. The first call follows soon, in the
    /// context.
    /// @{

    /// Reports every change of the connection, first the present value. Inside the callback State() has the same phase
    /// and error.
    using ConnectionCallback = std::function<void(const ipodkit::Connection&)>;
    Subscription OnConnection(std::string name, ConnectionCallback callback);

    /// Reports every published state that differs in any of @p fields, with all fields that changed; first the present
    /// state, with all fields. A burst of events results in one state.
    using StateCallback = std::function<void(const StatePtr&, Fields changed)>;
    Subscription OnState(std::string name, StateCallback callback, Fields fields = Fields::All());

    /// Reports every event, in the order in which the service sent events and answers. Events of a service that
    /// replaced another follow Phase::Connecting.
    using EventCallback = std::function<void(const Event&)>;
    Subscription OnEvent(std::string name, EventCallback callback);
    /// @}

    /// For the kit's own classes only.
    class __attribute__((visibility("hidden"))) Impl;
    const std::shared_ptr<Impl>& Inside() const { return m_impl; }

private:
    friend class FakeSession;
    __attribute__((visibility("hidden"))) explicit Session(std::shared_ptr<Impl> impl);

    std::shared_ptr<Impl> m_impl;
};
}  // namespace ipodkit

#pragma GCC visibility pop
