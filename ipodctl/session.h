/// @file
/// The connection to the service: checks the bus first, so that every way of not reaching the service has its
/// own exit code; then the player's life cycle; then calls whose failure is seen.
#pragma once

#include <IQBXIpodPlayer.h>
#include <gio/gio.h>

#include <type_traits>

#include "library_log.h"

namespace ctl
{
class Session
{
public:
    /// Connects to nothing yet: the first use does, so that a wrong argument is told without a service.
    explicit Session(bool verbose) : m_log(verbose) {}
    ~Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    /// Makes one call of the player, `call(player)`, and hands its result over.
    /// @throws Failure  when the call failed: its value would mean nothing
    template <class Call>
    auto Ask(Call call)
    {
        IQBXIpodPlayer& player = Player();
        if constexpr (std::is_void_v<decltype(call(player))>)
        {
            call(player);
            CheckCall();
        }
        else
        {
            auto result = call(player);
            CheckCall();
            return result;
        }
    }

    /// The connected player.
    /// @throws Failure  with the code that says why there is none
    IQBXIpodPlayer& Player();

    /// The session bus that the library uses.
    GDBusConnection* Bus();

    /// Passes on what the library has logged meanwhile.
    void FlushLog() { m_log.TakeFailure(); }

private:
    // Looks at the log after a call, before its value is used.
    void CheckCall();
    bool IsServiceThere();
    void StartService();
    void Connect();

    LibraryLog m_log;
    GDBusConnection* m_bus = nullptr;
    IQBXIpodPlayer* m_player = nullptr;
};
}  // namespace ctl
