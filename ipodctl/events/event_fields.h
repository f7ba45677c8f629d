/// @file
/// The fields that templates and commands get with an event: its own, and what is known of the player.
#pragma once

#include <ipodkit/player_state.h>

#include <string>
#include <vector>

#include "events/events.h"

namespace ctl
{
/// All names there may be, those of the player first.
const std::vector<std::string>& EventFieldNames();

class EventFields
{
public:
    /// Takes what is known from a state of the player, in place of everything that was known before.
    void Reset(const ipodkit::PlayerState& state);

    /// Takes over what an event tells of the player.
    ///
    /// @return  an object without inner objects: what is known of the player, then the event's own fields
    Json With(const Event& event);

private:
    Json m_player = Json::object();
};
}  // namespace ctl
