/// @file
/// The lists of a session, and the events and commands that change them.
#pragma once

#include <ipodkit/list_kind.h>

#include <array>
#include <cstddef>
#include <memory>
#include <string_view>

#include "loop/serial_queue.h"

namespace ipodkit
{
/// A member of the bus contract that changes lists: an event, or a command that the service executes.
struct ListChange
{
    std::string_view member;
    bool playing;   ///< the playing list: its entries or their order
    bool database;  ///< the level of the database, and the update list, which may be a part of it
    bool devices;
};

/// All changes that the contract reports. If another application starts a list of the same size, or changes the level,
/// there is no event.
inline constexpr ListChange kListChanges[] = {
    {"OnIpodPlayingListAmountChange", true, false, false},
    {"OnIpodShuffleModeChange", true, false, false},
    {"OnIpodDeviceStatusChange", true, true, true},
    {"SetShuffleMode", true, false, false},
    {"PlayDbList", true, false, false},
    {"PlayPlayingList", true, false, false},
    {"EnterDbRoot", false, true, false},
    {"EnterDbParentList", false, true, false},
    {"EnterDbChildList", false, true, false},
    {"EnterDeviceChildList", true, true, true},
};

/// One serial queue for each list with separate state in the service; names and pinyin of a level share one.
class ListQueues
{
public:
    explicit ListQueues(const Guard& guard) : m_guard(guard)
    {
        for (auto& queue : m_queues) queue = std::make_shared<SerialQueue>();
    }

    const std::shared_ptr<SerialQueue>& Of(ListKind kind) const { return m_queues.at(Index(kind)); }

    /// Outdates all lists: the service restarted, or the device changed.
    void OutdateAll()
    {
        for (const auto& queue : m_queues) queue->Outdate(m_guard);
    }

    /// Outdates the lists that a member changes: an event, or a command that the service may have executed.
    void OutdateBy(std::string_view member)
    {
        for (const ListChange& change : kListChanges)
        {
            if (change.member != member) continue;
            if (change.playing) Of(ListKind::Playing)->Outdate(m_guard);
            if (change.database) Of(ListKind::Database)->Outdate(m_guard);
            if (change.database) Of(ListKind::Update)->Outdate(m_guard);
            if (change.devices) Of(ListKind::Devices)->Outdate(m_guard);
        }
    }

    /// Ends all watchers: their callbacks run no more.
    void End()
    {
        for (const auto& queue : m_queues) queue->Watchers().End();
    }

private:
    static std::size_t Index(ListKind kind)
    {
        static constexpr std::size_t indices[] = {0, 1, 1, 2, 2, 3};
        return indices[static_cast<std::size_t>(kind)];
    }

    const Guard m_guard;
    std::array<std::shared_ptr<SerialQueue>, 4> m_queues;
};
}  // namespace ipodkit
