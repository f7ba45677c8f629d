#include <ipodkit/subscription.h>

#include "loop/slot.h"

namespace ipodkit
{
namespace detail
{
void Slot::End()
{
    const std::lock_guard<std::recursive_mutex> lock(m_mutex);
    m_live = false;
}
}  // namespace detail

Subscription& Subscription::operator=(Subscription&& other) noexcept
{
    Reset();
    m_slot = std::move(other.m_slot);
    return *this;
}

Subscription::~Subscription()
{
    Reset();
}

void Subscription::Reset()
{
    if (m_slot != nullptr) m_slot->End();
    m_slot.reset();
}
}  // namespace ipodkit
