/// @file
/// The connection of an application to the service, through any number of its restarts. Start reading here.
///
///     auto session = ipodkit::Session::Open();
///     auto shown = (*session)->OnState("now playing", [](const StatePtr& state, Fields changed) { … });
///     (*session)->Commands().Next().Start([](Result<void> done) { … });
///     g_main_loop_run(loop);
///
/// **Context.** A session lives in one GMainContext: everything it calls is called there, outside of all locks, and
/// nothing it does blocks there. Create and destroy it on the thread that runs the context, or before that runs. All
/// other operations may be called on any thread.
///
/// **Process.** There is one session at a time, because the lists in shared memory belong to the process. The session
/// obtains the core's player, which attaches the shared memory, but does not call its InitInstance(): it receives the
/// service's events itself. An application that uses the core beside the session calls InitInstance() on its own.
///
/// **End of the bus.** GLib ends a process whose session bus goes away, unless `g_dbus_connection_set_exit_on_close()`
/// says otherwise. In a process that survives it requests fail with ErrorKind::NoBus until there is a bus again, at the
/// same address; the session looks for it once a second.
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
struct SessionOptions
{
    GMainContext* context = nullptr;              ///< null: the default one
    std::chrono::milliseconds settle{20};         ///< a change is published so long after its first event
    std::chrono::milliseconds deadline{5000};     ///< of each request, unless it says otherwise
    std::chrono::milliseconds callbackBudget{5};  ///< a callback that takes longer is named in the log
    std::size_t artworkLimit = 1 << 20;           ///< larger pictures are left out, in bytes
    bool activateService = false;                 ///< ask the bus to start the service while nobody owns its name
};

/// How far the session is with the service: the part of the PlayerState that Field::Connection stands for.
struct Connection
{
    Phase phase = Phase::Absent;
    std::uint32_t generation = 0;  ///< how often the service has appeared
    std::optional<Error> error;    ///< why the session is not Ready, or why fields are missing; it keeps trying
    Fields missing{};              ///< see PlayerState::missing
};

class FakeSession;

class Session
{
public:
    /// Returns at once, in Phase::Absent; everything else happens while the context runs.
    /// ErrorKind::BadArgument when there is a session already, or was one in another context.
    static Result<std::unique_ptr<Session>> Open(const SessionOptions& options = {});

    /// Completes the requests that are under way with ErrorKind::Cancelled; a Wait() on another thread goes on.
    /// Subscriptions may outlive it; none of their callbacks runs any more, also when it is a callback that ends the
    /// session.
    ~Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    ipodkit::Connection Connection() const;
    StatePtr State() const;  ///< the last that was published, never null
    ipodkit::Commands Commands() const;

    /// The next state that is published after the start of the request and differs in one of @p fields. No deadline
    /// unless Within() sets one.
    Request<StatePtr> Changed(Fields fields = Fields::All());

    /// Reads fields from the service again, those that can be read; each is published when its answer arrives. For
    /// fields that were refused, or that may have changed without an event.
    void Refresh(Fields fields = Fields::All());

    /// @name Subscriptions. The name is what the log calls the callback.
    /// @{

    /// Every step of the connection, first the present one. Inside the callback State() has the same phase and error.
    using ConnectionCallback = std::function<void(const ipodkit::Connection&)>;
    Subscription OnConnection(std::string name, ConnectionCallback callback);

    /// Every published state that differs in one of @p fields, with all that changed; first the present state, with
    /// all fields. A burst of events makes one change.
    using StateCallback = std::function<void(const StatePtr&, Fields changed)>;
    Subscription OnState(std::string name, StateCallback callback, Fields fields = Fields::All());

    /// Every single event of the service, in the order in which the service emitted them, also in relation to its
    /// answers. Events of a service that has just replaced another come after Phase::Connecting.
    using EventCallback = std::function<void(const Event&)>;
    Subscription OnEvent(std::string name, EventCallback callback);
    /// @}

    /// What the parts of the companion share; for them only.
    class __attribute__((visibility("hidden"))) Impl;
    const std::shared_ptr<Impl>& Inside() const { return m_impl; }

private:
    friend class FakeSession;
    __attribute__((visibility("hidden"))) explicit Session(std::shared_ptr<Impl> impl);

    std::shared_ptr<Impl> m_impl;
};
}  // namespace ipodkit

#pragma GCC visibility pop
