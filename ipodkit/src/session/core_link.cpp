#include "session/core_link.h"

namespace ipodkit
{
CoreLink& CoreLink::Instance()
{
    static CoreLink link;
    return link;
}

std::optional<Error> CoreLink::Claim()
{
    if (!m_claimed.exchange(true)) return std::nullopt;
    return Error{ErrorKind::BadArgument, "this process already has a session"};
}

void CoreLink::Release()
{
    m_claimed = false;
}

// After a failure the core must not be called again: the lock of its player stays held, and a player that it returns is
// unusable.
std::optional<Error> CoreLink::Attach()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (m_failure || m_player != nullptr) return m_failure;
    try
    {
        m_player = QBX_GetIpodPlayer();
    }
    catch (const std::exception& thrown)
    {
        m_failure =
            Error{ErrorKind::NoSharedMemory,
                  std::string(thrown.what()) + "; fix this and restart the application: the core attaches once only"};
    }
    return m_failure;
}
}  // namespace ipodkit
