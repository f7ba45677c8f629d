#include "events/event_fields.h"

#include <algorithm>
#include <map>

#include "output/moment.h"

namespace ctl
{
namespace
{
// From the name of an event's field to the name that the player's fields have for it.
using Renaming = std::map<std::string, std::string>;

const std::map<std::string, Renaming>& Renamings()
{
    static const std::map<std::string, Renaming> all = {
        {"track", {{"index", "index"}}},
        {"progress", {{"position_ms", "position"}, {"length_ms", "length"}}},
        {"play-status", {{"state", "state"}}},
        {"shuffle", {{"mode", "shuffle"}}},
        {"repeat", {{"mode", "repeat"}}},
        {"queue-size", {{"count", "count"}}},
        {"battery", {{"percent", "battery"}, {"status", "charging"}}},
        {"phone-call", {{"status", "call"}, {"name", "caller"}}},
        {"foreground-app", {{"bundle", "app"}}},
    };
    return all;
}

void TakeTrack(Json& player, const Json& track)
{
    for (const char* name : {"title", "artist", "album", "genre", "number"}) player[name] = track[name];
    player["length"] = track["length_ms"];
    player["position"] = 0;
}

// As if each part had been reported by an event.
std::vector<ipodkit::Event> AsEvents(const ipodkit::PlayerState& state)
{
    std::vector<ipodkit::Event> events;
    if (state.track) events.emplace_back(ipodkit::TrackChanged{state.trackIndex.value_or(-1), *state.track});
    if (state.status) events.emplace_back(ipodkit::PlayStatusChanged{*state.status});
    if (state.position)
        events.emplace_back(ipodkit::ProgressChanged{state.position->position, state.position->duration});
    if (state.shuffle) events.emplace_back(ipodkit::ShuffleChanged{*state.shuffle});
    if (state.repeat) events.emplace_back(ipodkit::RepeatChanged{*state.repeat});
    if (state.queueSize) events.emplace_back(ipodkit::QueueSizeChanged{*state.queueSize});
    if (state.foregroundApp) events.emplace_back(ipodkit::ForegroundAppChanged{*state.foregroundApp});
    if (state.battery) events.emplace_back(ipodkit::BatteryChanged{*state.battery});
    for (const auto& [uuid, call] : state.calls) events.emplace_back(ipodkit::CallChanged{call});
    return events;
}
}  // namespace

const std::vector<std::string>& EventFieldNames()
{
    static const std::vector<std::string> names = []
    {
        std::vector<std::string> all = {"title",    "artist",  "album",    "genre", "number",  "length",
                                        "position", "state",   "index",    "count", "shuffle", "repeat",
                                        "device",   "battery", "charging", "call",  "caller",  "app",
                                        "event",    "time",    "clock",    "text"};
        for (std::string& name : NamesOfEventFields())
            if (std::find(all.begin(), all.end(), name) == all.end()) all.push_back(std::move(name));
        return all;
    }();
    return names;
}

void EventFields::Reset(const ipodkit::PlayerState& state)
{
    m_player = Json::object();
    for (const ipodkit::Event& event : AsEvents(state)) With(ToEvent(event));
    if (state.deviceName) m_player["device"] = *state.deviceName;
}

Json EventFields::With(const Event& event)
{
    if (event.fields.contains("track")) TakeTrack(m_player, event.fields["track"]);
    const auto renaming = Renamings().find(event.name);
    if (renaming != Renamings().end())
        for (const auto& [own, players] : renaming->second)
            if (event.fields.contains(own)) m_player[players] = event.fields[own];
    Json fields = m_player;
    fields.update(event.fields);
    fields.erase("track");
    const Moment now = Moment::Now();
    fields.update(Json{{"event", event.name}, {"time", now.full}, {"clock", now.clock}, {"text", event.text}});
    return fields;
}
}  // namespace ctl
