#include "session/core_link.h"

#include <mutex>

#include "loop/context.h"
#include "memory/segment_probe.h"

namespace ipodkit
{
namespace
{
std::mutex claims;
}

CoreLink& CoreLink::Instance()
{
    static CoreLink link;
    return link;
}

std::optional<Error> CoreLink::Claim(GMainContext* context)
{
    const std::lock_guard<std::mutex> lock(claims);
    if (m_claimed) return Error{ErrorKind::BadArgument, "this process has a session already"};
    if (m_context != nullptr && m_context != context)
        return Error{ErrorKind::BadArgument, "the first session of this process lived in another context"};
    if (m_context == nullptr) m_context = g_main_context_ref(context);
    m_claimed = true;
    return std::nullopt;
}

void CoreLink::Release()
{
    const std::lock_guard<std::mutex> lock(claims);
    m_claimed = false;
}

// After a failure the core must not be asked again: its player's lock is held, and what it would give is no use.
std::optional<Error> CoreLink::Attach()
{
    if (m_failure || m_player != nullptr) return m_failure;
    try
    {
        m_player = QBX_GetIpodPlayer();
    }
    catch (const std::exception& thrown)
    {
        m_failure = AttachFailure(thrown.what());
    }
    return m_failure;
}

bool CoreLink::Connect()
{
    const DefaultContext delivered(m_context);
    if (!m_connected) m_connected = m_player->InitInstance();
    return m_connected;
}

void CoreLink::Add(IQBXIpodPlayerListener* listener)
{
    m_player->LockListener();
    m_player->AddListener(listener);
    m_player->UnlockListener();
}

void CoreLink::Remove(IQBXIpodPlayerListener* listener)
{
    if (m_player == nullptr) return;
    m_player->LockListener();
    m_player->RemoveListener(listener);
    m_player->UnlockListener();
}
}  // namespace ipodkit
