/// @file
/// A serial queue for a resource of the service that one request at a time may use, such as a list.
#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <memory>

#include "loop/slot.h"

namespace ipodkit
{
/// Context thread only.
class SerialQueue : public std::enable_shared_from_this<SerialQueue>
{
public:
    /// Ends the turn; must be called once.
    using Release = std::function<void()>;
    using Turn = std::function<void(Release)>;

    /// Runs @p turn when all earlier ones have ended.
    void Wait(Turn turn);

    /// Incremented whenever the list changes.
    std::uint64_t Epoch() const { return m_epoch; }

    /// Marks the list as changed, and notifies the watchers.
    void Outdate(const Guard& guard);

    Registry<std::function<void()>>& Watchers() { return m_watchers; }

private:
    void Next();
    void RunFirst();

    std::deque<Turn> m_waiting;
    Registry<std::function<void()>> m_watchers;
    std::uint64_t m_epoch = 0;
    bool m_taken = false;
    bool m_running = false;
};
}  // namespace ipodkit
