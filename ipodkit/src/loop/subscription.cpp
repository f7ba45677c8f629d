#include <ipodkit/subscription.h>

#include "loop/slot.h"

namespace ipodkit
{
namespace detail
{
void Slot::End()
{
    std::shared_ptr<void> ended;
    const std::lock_guard<std::recursive_mutex> lock(m_mutex);
    m_live = false;
    ended = TakeEnded();
}

// Empty while the callback is registered or runs.
std::shared_ptr<void> Slot::TakeEnded()
{
    return m_live || m_running > 0 ? nullptr : std::move(m_target);
}
}  // namespace detail

Subscription& Subscription::operator=(Subscription&& other) noexcept
{
    const Subscription ended(std::exchange(m_slot, std::move(other.m_slot)));
    return *this;
}

Subscription::~Subscription()
{
    Reset();
}

// The callback may have held the last reference to this subscription.
void Subscription::Reset()
{
    const std::shared_ptr<detail::Slot> slot = std::move(m_slot);
    if (slot != nullptr) slot->End();
}
}  // namespace ipodkit
