/// @file
/// The core's one player, as far as sessions need it: it attaches the segments.
#pragma once

#include <IQBXIpodPlayer.h>
#include <ipodkit/error.h>

#include <atomic>
#include <mutex>
#include <optional>

namespace ipodkit
{
/// The core's player, which stays from one session to the next. Any thread.
class CoreLink
{
public:
    static CoreLink& Instance();

    /// Makes the caller the one session of the process; an error when there is one.
    std::optional<Error> Claim();
    void Release();

    /// Null until Attach() has succeeded.
    IQBXIpodPlayer* Player() const { return m_player; }

    /// Obtains the player, which attaches the segments. The caller has probed them: it does not block then.
    std::optional<Error> Attach();

private:
    std::mutex m_mutex;  // guards attaching
    std::atomic<IQBXIpodPlayer*> m_player{nullptr};
    std::optional<Error> m_failure;
    std::atomic<bool> m_claimed{false};
};
}  // namespace ipodkit
