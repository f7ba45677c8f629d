/// @file
/// The core's player, which sessions need only to attach the segments.
#pragma once

#include <IQBXIpodPlayer.h>
#include <ipodkit/error.h>

#include <atomic>
#include <mutex>
#include <optional>

namespace ipodkit
{
/// The core's player, which outlives a session and serves the next one. Any thread.
class CoreLink
{
public:
    static CoreLink& Instance();

    /// Makes the caller the only session of the process. Returns an error if there is one already.
    std::optional<Error> Claim();
    void Release();

    /// Returns the player; null until Attach() has succeeded.
    IQBXIpodPlayer* Player() const { return m_player; }

    /// Obtains the player, which attaches the segments. Does not block if the caller has probed them.
    std::optional<Error> Attach();

private:
    std::mutex m_mutex;  // guards attaching
    std::atomic<IQBXIpodPlayer*> m_player{nullptr};
    std::optional<Error> m_failure;
    std::atomic<bool> m_claimed{false};
};
}  // namespace ipodkit
