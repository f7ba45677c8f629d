#include "events/event_fields.h"

#include <iterator>
#include <map>

#include "output/moment.h"
#include "output/names.h"
#include "player/phone.h"

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

// As if each part had been told by an event.
std::vector<Event> AsEvents(const ipodkit::PlayerState& state)
{
    std::vector<Event> events;
    EventListener listener([&](const Event& event) { events.push_back(event); });
    if (state.track) listener.OnIpodPlayingTrackChange(state.trackIndex.value_or(-1), *state.track);
    if (state.status) listener.OnPlayStatusChanged(*state.status);
    if (state.position)
        listener.OnPlayProgressChange(static_cast<int>(state.position->position.count()),
                                      static_cast<int>(state.position->duration.count()));
    if (state.shuffle) listener.OnIpodShuffleModeChange(*state.shuffle);
    if (state.repeat) listener.OnIpodRepeatModeChange(*state.repeat);
    if (state.queueSize) listener.OnIpodPlayingListAmountChange(*state.queueSize);
    if (state.foregroundApp) listener.OnIpodAPPBundleNameChange(*state.foregroundApp);
    listener.OnIpodBatteryChange(state.battery);
    for (const auto& [uuid, call] : state.calls) listener.OnIpodPhoneCallChange(call);
    return events;
}
}  // namespace

const std::vector<std::string>& EventFieldNames()
{
    static const std::vector<std::string> names = {
        // the player
        "title", "artist", "album", "genre", "number", "length", "position", "state", "index", "count", "shuffle",
        "repeat", "device", "battery", "charging", "call", "caller", "app",
        // every event
        "event", "time", "clock", "text",
        // single events
        "status", "media_restart", "position_ms", "length_ms", "mode", "valid", "type", "bytes", "reported_bytes",
        "width", "height", "serial", "percent", "direction", "name", "remote", "label", "service", "uuid",
        "address_book_id", "conferenced", "conference_group", "end", "start", "bundle", "session", "protocol",
        "session_low_byte", "hex", "available", "address"};
    return names;
}

void EventFields::Reset(const ipodkit::PlayerState& state)
{
    m_player = Json::object();
    for (const Event& event : AsEvents(state)) With(event);
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
