/// @file
/// The lists of a session, and the events that make them other lists.
#pragma once

#include <ipodkit/event.h>
#include <ipodkit/list_kind.h>

#include <array>
#include <cstddef>
#include <memory>

#include "loop/lane.h"

namespace ipodkit
{
/// One lane for each list that has a state of its own in the service; names and pinyin of a level share it.
class Lanes
{
public:
    explicit Lanes(const Guard& guard) : m_guard(guard)
    {
        for (auto& lane : m_lanes) lane = std::make_shared<Lane>();
    }

    const std::shared_ptr<Lane>& Of(ListKind kind) const { return m_lanes.at(Index(kind)); }

    /// The service restarted, or the device is another one.
    void OutdateAll()
    {
        for (const auto& lane : m_lanes) lane->Outdate(m_guard);
    }

    void Apply(const Event& event)
    {
        if (std::holds_alternative<QueueSizeChanged>(event)) Of(ListKind::Playing)->Outdate(m_guard);
        if (std::holds_alternative<DeviceChanged>(event)) OutdateAll();
    }

private:
    static std::size_t Index(ListKind kind)
    {
        static constexpr std::size_t indices[] = {0, 1, 1, 2, 2, 3};
        return indices[static_cast<std::size_t>(kind)];
    }

    const Guard m_guard;
    std::array<std::shared_ptr<Lane>, 4> m_lanes;
};
}  // namespace ipodkit
