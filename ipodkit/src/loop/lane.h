/// @file
/// Turns at a list: whatever the service keeps one of is used by one request at a time.
#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <memory>

#include "loop/slot.h"

namespace ipodkit
{
/// Context thread only.
class Lane : public std::enable_shared_from_this<Lane>
{
public:
    /// Gives the turn back; must be called once.
    using Release = std::function<void()>;
    using Turn = std::function<void(Release)>;

    /// Runs @p turn when all earlier ones have given theirs back.
    void Wait(Turn turn);

    /// Grows whenever the list becomes another one.
    std::uint64_t Epoch() const { return m_epoch; }

    /// Says that it did. Those who registered are told.
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
