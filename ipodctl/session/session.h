/// @file
/// The connection to the service: checks the bus first, so that every way of not reaching the service has its own exit
/// code; then the companion's session, and calls whose failure ends the run.
#pragma once

#include <gio/gio.h>
#include <ipodkit/session.h>

#include <algorithm>
#include <memory>
#include <optional>
#include <type_traits>

#include "output/failure.h"
#include "output/output.h"
#include "session/loop.h"

namespace ctl
{
struct Settings
{
    bool verbose = false;
    double deadline = 10;  ///< seconds that the service may take for an answer
};

class Session
{
public:
    /// Connects to nothing yet: the first use does, so that wrong arguments are reported without a service.
    explicit Session(const Settings& settings);
    ~Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    /// Makes a request and hands its result over.
    ///
    /// @param refusal  what to say when the service answers "false"; null: its own words
    /// @throws Failure  when it failed
    template <class T>
    T Ask(ipodkit::Request<T> request, const char* refusal = nullptr)
    {
        return Taken(std::move(request).Wait(), refusal);
    }

    /// Starts a request that the companion completes in the main loop, and waits for it.
    /// @throws Interrupted
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

    /// The value of a result.
    /// @throws Failure  when there is none
    template <class T>
    T Taken(ipodkit::Result<T> result, const char* refusal = nullptr)
    {
        if (!result) throw ToFailure(AsLost(result.error()), refusal);
        if constexpr (!std::is_void_v<T>) return std::move(*result);
    }

    /// What can be asked before the session is ready.
    /// @throws Failure  when there is no bus or no service
    ipodkit::Commands Commands() { return Kit().Commands(); }

    /// The companion's session, whatever the service is doing.
    /// @throws Failure  when there is no bus or no service
    ipodkit::Session& Kit();

    /// The same when the service may come later.
    ipodkit::Session& KitWithoutService();

    /// The same, once it knows the state of the player and has the shared memory.
    /// @throws Failure  when it does not come to that
    ipodkit::Session& Ready();

    /// How long an answer may take, in milliseconds.
    int Deadline() const { return std::max(1, static_cast<int>(m_settings.deadline * 1000)); }

    /// The session bus that the library uses.
    GDBusConnection* Bus();

private:
    bool IsServiceThere();
    void StartService();
    void AwaitReady();
    ipodkit::Error AsLost(const ipodkit::Error& error) const;

    Settings m_settings;
    GDBusConnection* m_bus = nullptr;
    std::unique_ptr<ipodkit::Session> m_kit;
    bool m_ready = false;
};

struct Context
{
    Session& session;
    Output& out;
};
}  // namespace ctl
