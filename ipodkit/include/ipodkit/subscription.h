/// @file
/// A registration that ends with the object that stands for it.
#pragma once

#include <memory>

#pragma GCC visibility push(default)

namespace ipodkit
{
namespace detail
{
class __attribute__((visibility("hidden"))) Slot;
}

/// Ends the registration when it is destroyed, reset or assigned over. Move-only.
///
/// Any thread may end it, also from inside the callback itself. When that returns, the callback is not running on
/// another thread and will not run again, and what it held is let go; from inside the callback, when the callback
/// returns. So do not end it while holding a lock that the callback wants. It may outlive the session.
class [[nodiscard]] Subscription
{
public:
    Subscription() = default;
    explicit Subscription(std::shared_ptr<detail::Slot> slot) : m_slot(std::move(slot)) {}
    Subscription(Subscription&& other) noexcept = default;
    Subscription& operator=(Subscription&& other) noexcept;
    ~Subscription();

    void Reset();

private:
    std::shared_ptr<detail::Slot> m_slot;
};
}  // namespace ipodkit

#pragma GCC visibility pop
