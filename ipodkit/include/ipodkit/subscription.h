/// @file
/// The registration of a callback.
#pragma once

#include <memory>

#pragma GCC visibility push(default)

namespace ipodkit
{
namespace detail
{
class __attribute__((visibility("hidden"))) Slot;
}

/// Keeps a callback registered until this object is destroyed, reset, or assigned to. Move-only. It may outlive the
/// session.
///
/// Any thread may end it, and so may the callback itself. Ending it blocks while the callback runs on another thread;
/// afterwards the callback does not run again, and is destroyed. So do not end it while holding a lock that the
/// callback needs. A callback that ends itself is destroyed when it returns.
///
/// Exceptions from callbacks are logged at level WARN with the callback's name; other callbacks still run.
class [[nodiscard]] Subscription
{
public:
    Subscription() = default;
    explicit Subscription(std::shared_ptr<detail::Slot> slot) : m_slot(std::move(slot)) {}
    Subscription(Subscription&& other) noexcept = default;
    Subscription& operator=(Subscription&& other) noexcept;
    ~Subscription();

    /// Ends the registration. Does nothing if it has already ended.
    void Reset();

private:
    std::shared_ptr<detail::Slot> m_slot;
};
}  // namespace ipodkit

#pragma GCC visibility pop
