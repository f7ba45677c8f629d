/// @file
/// Connects to the service through an ipodkit session. Checks the bus and the service first, so that each connection
/// error has its own exit code. Failed requests throw Failure.
#pragma once

#include <gio/gio.h>
#include <ipodkit/session.h>
#include <ipodkit/sharing.h>

#include <algorithm>
#include <memory>
#include <optional>
#include <type_traits>

#include "output/failure.h"
#include "output/output.h"
#include "session/loop.h"

namespace ctl
{
class Session;

/// Well-known bus name of the service.
inline constexpr char kServiceName[] = "com.zarn.linux.ipod";

struct VariantUnref
{
    void operator()(GVariant* value) const { g_variant_unref(value); }
};
using VariantPtr = std::unique_ptr<GVariant, VariantUnref>;

/// Calls a method of the bus daemon. Blocks for at most ten seconds.
/// @param arguments  a floating tuple, consumed by the call; null for none
/// @return  the reply tuple; null if the call failed
VariantPtr AskBus(GDBusConnection* bus, const char* method, GVariant* arguments);

/// Calls a method of the simulator's control interface. Blocks for at most the session's deadline.
/// @param arguments  a floating tuple, consumed by the call; null for none
/// @return  the reply tuple
/// @throws Failure  kNoBus, kNoService, kUsage for invalid arguments, kNothingDone for any other error reply,
/// kServiceLost without a reply
VariantPtr AskSimulator(Session& session, const char* method, GVariant* arguments);

struct Settings
{
    bool verbose = false;
    double deadline = 10;  ///< reply timeout in seconds
};

class Session
{
public:
    /// Does not connect yet: the first use does, so that usage errors are reported even without a service.
    explicit Session(const Settings& settings);
    ~Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    /// Sends a request, blocks until it completes, and returns its value.
    ///
    /// @param refusal  the message if the service answers "false"; by default the error's own
    /// @throws Failure  if the request fails
    template <class T>
    T Ask(ipodkit::Request<T> request, const Refusal& refusal = {})
    {
        return ValueOf(std::move(request).Wait(), refusal);
    }

    /// Starts a request that ipodkit completes in the main loop, and runs the loop until it does.
    /// @throws Interrupted  on SIGINT, SIGTERM, or SIGHUP
    template <class T>
    ipodkit::Result<T> Await(ipodkit::Request<T> request)
    {
        const auto result = std::make_shared<std::optional<ipodkit::Result<T>>>();
        Loop loop;
        const std::weak_ptr<std::optional<ipodkit::Result<T>>> place = result;
        std::move(request).Start(
            [place, &loop](ipodkit::Result<T> completed)
            {
                const auto waiting = place.lock();
                if (waiting == nullptr) return;
                *waiting = std::move(completed);
                loop.Finish();
            });
        if (!*result && loop.Run(0) == Ending::Interrupted) throw Interrupted{};
        return **result;
    }

    /// Returns the value of a result.
    /// @throws Failure  if the result is an error
    template <class T>
    T ValueOf(ipodkit::Result<T> result, const Refusal& refusal = {})
    {
        if (!result) throw FailureFor(result.error(), refusal);
        if constexpr (!std::is_void_v<T>) return std::move(*result);
    }

    /// Converts an error of a request. If the service has exited, that is the reason.
    Failure FailureFor(const ipodkit::Error& error, const Refusal& refusal = {}) const;

    /// Returns the requests, usable before the session is ready.
    /// @throws Failure  if the bus or the service is missing
    ipodkit::Commands Commands() { return Kit().Commands(); }

    /// Returns the ipodkit session in any phase; opens it on first use.
    /// @throws Failure  if the bus or the service is missing
    ipodkit::Session& Kit();

    /// Same as Kit(), but does not require a running service: it may start later.
    ipodkit::Session& KitWithoutService();

    /// Same as Kit(), but blocks until the session has the player state and the shared memory.
    /// @throws Failure  if the session does not become ready in time
    /// @throws Interrupted  on SIGINT, SIGTERM, or SIGHUP
    ipodkit::Session& Ready();

    /// Obtains the lease to read or change the level of the database, and holds it until this object is destroyed:
    /// other applications cannot change the level meanwhile. Only the first call counts.
    /// @throws Failure  kNothingDone if another process holds the level
    /// @throws Interrupted  on SIGINT, SIGTERM, or SIGHUP
    void HoldLevel(ipodkit::Browsing how);

    /// Returns the reply timeout in milliseconds, at least 1.
    int Deadline() const { return std::max(1, static_cast<int>(m_settings.deadline * 1000)); }

    /// Returns the session bus connection, shared with the library; connects on first use. This object holds the
    /// reference.
    /// @throws Failure  kNoBus if no session bus is running
    GDBusConnection* Bus();

private:
    bool IsServiceThere();
    void StartService();
    void AwaitReady();

    Settings m_settings;
    GDBusConnection* m_bus = nullptr;
    std::unique_ptr<ipodkit::Session> m_kit;
    std::optional<ipodkit::BrowseLease> m_level;
    bool m_ready = false;
};

struct Context
{
    Session& session;
    Output& out;
};
}  // namespace ctl
