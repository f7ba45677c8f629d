/// @file
/// Converts the twenty events of the service to text and JSON.
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

/// Returns all possible values of Event::name.
const std::vector<std::string>& EventNames();

/// Returns the field names of all events.
std::vector<std::string> NamesOfEventFields();

/// Returns the event as text and JSON, with the current local time.
Answer ToAnswer(const Event& event);

/// Returns all names that templates may use, player fields first.
const std::vector<std::string>& EventFieldNames();

class EventFields
{
public:
    /// Replaces all player fields with those of @p state.
    void Reset(const ipodkit::PlayerState& state);

    /// Updates the player fields from an event.
    ///
    /// @return  a flat object: the player fields, overridden by the event's own fields
    Json With(const Event& event);

    /// Returns the player fields and the current local time.
    Json OfPlayer() const;

private:
    Json m_player = Json::object();
};
}  // namespace ctl
