/// @file
/// The twenty events of the service, as something that can be shown.
#pragma once

#include <ipodkit/event.h>
#include <ipodkit/player_state.h>

#include <string>
#include <vector>

#include "output/output.h"

namespace ctl
{
struct Event
{
    const char* name;
    Json fields;
    std::string text;  ///< printable
};

Event ToEvent(const ipodkit::Event& event);

/// What Event::name may be.
const std::vector<std::string>& EventNames();

/// The names of all fields that events have.
std::vector<std::string> NamesOfEventFields();

/// The event with the local time of now, in both forms.
Answer ToAnswer(const Event& event);

/// All names that templates may use, those of the player first.
const std::vector<std::string>& EventFieldNames();

class EventFields
{
public:
    /// Takes what is known from a state of the player, in place of everything that was known before.
    void Reset(const ipodkit::PlayerState& state);

    /// Updates what is known of the player from an event.
    ///
    /// @return  an object without inner objects: what is known of the player, then the event's own fields
    Json With(const Event& event);

    /// What is known of the player, with the time of now.
    Json OfPlayer() const;

private:
    Json m_player = Json::object();
};
}  // namespace ctl
