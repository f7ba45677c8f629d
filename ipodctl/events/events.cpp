#include "events/events.h"

#include <algorithm>
#include <map>

#include "events/format.h"
#include "output/fields_json.h"
#include "output/output.h"
#include "output/text.h"
#include "player/player.h"

namespace ctl
{
namespace
{
constexpr int kNameWidth = 14;

// Formats fields as "status ringing, name Anna".
std::string Listed(const Json& fields)
{
    std::string text;
    for (const auto& [name, value] : fields.items()) text += (text.empty() ? "" : ", ") + name + " " + Shown(value);
    return text;
}

std::string Size(const std::vector<unsigned char>& bytes)
{
    return Count(static_cast<int>(bytes.size()), "byte", "bytes");
}

std::string SessionText(std::uint16_t number)
{
    return "session " + std::to_string(number);
}

/// Formats an event as one line.
struct Text
{
    // Formats events that have a single field.
    template <class E>
    std::string operator()(const E& event) const
    {
        return Shown(ToJson(event).front());
    }

    std::string operator()(const ipodkit::DeviceChanged& event) const
    {
        return ToString(event.status) + (event.mediaRestart ? ", media restarts" : "");
    }
    std::string operator()(const ipodkit::ProgressChanged& event) const
    {
        return Clock(event.position) + " / " + Clock(event.duration);
    }
    std::string operator()(const ipodkit::TrackChanged& event) const
    {
        const auto length = event.track.duration;
        return "#" + std::to_string(event.index) + " " + TrackLine(event.track) +
               (length.count() > 0 ? " (" + Clock(length) + ")" : "");
    }
    std::string operator()(const ipodkit::QueueSizeChanged& event) const
    {
        return Count(event.size, "entry", "entries");
    }
    std::string operator()(const ipodkit::SourceValidChanged& event) const { return event.valid ? "valid" : "invalid"; }
    std::string operator()(const ipodkit::ArtworkChanged& event) const { return ArtworkLine(event); }
    std::string operator()(const ipodkit::CarPlayChanged& event) const
    {
        const std::string serial = Printable(event.serialNumber);
        return ToString(event.status) + (serial.empty() ? "" : ", serial number " + serial);
    }
    std::string operator()(const ipodkit::CallChanged& event) const { return Listed(ToJson(event)); }
    std::string operator()(const ipodkit::BatteryChanged& event) const { return Listed(ToJson(event)); }
    std::string operator()(const ipodkit::ForegroundAppChanged& event) const
    {
        return event.bundleId.empty() ? "none" : Printable(event.bundleId);
    }
    std::string operator()(const ipodkit::AccessoryOpened& event) const
    {
        return SessionText(event.session) + ", protocol " + std::to_string(event.protocol);
    }
    std::string operator()(const ipodkit::AccessoryClosed& event) const { return SessionText(event.session); }
    std::string operator()(const ipodkit::AccessoryData& event) const
    {
        constexpr int kShown = 60;
        const std::string data(event.bytes.begin(), event.bytes.end());
        return SessionText(event.sessionLowByte) + ", " + Size(event.bytes) + ": " + Cut(Printable(data), kShown);
    }
    std::string operator()(const ipodkit::WirelessCarPlayChanged& event) const
    {
        return (event.available ? "available, " : "unavailable, ") + Printable(event.deviceAddress);
    }
    std::string operator()(const ipodkit::PairingReceived& event) const
    {
        return Printable(event.bluetoothAddress) + ", " + Size(event.bytes) + ": " +
               ToJson(event.bytes).get<std::string>();
    }
};

template <class T>
void AddNames(std::vector<std::string>& names)
{
    ipodkit::ForEachRow<T>(
        [&names](const auto& row)
        {
            using Field = ipodkit::FieldType<T, std::decay_t<decltype(row)>>;
            if constexpr (ipodkit::kHasRows<Field>)
                AddNames<Field>(names);
            else
                names.push_back(JsonName(row));
        });
}

// Calls @p use with a null pointer of each event type.
template <class Use, class... Events>
void ForEachKind(const Use& use, const std::variant<Events...>*)
{
    (use(static_cast<Events*>(nullptr)), ...);
}
}  // namespace

Event ToEvent(const ipodkit::Event& event)
{
    return {EventName(event), std::visit([](const auto& each) { return ToJson(each); }, event),
            std::visit(Text(), event)};
}

const std::vector<std::string>& EventNames()
{
    static const std::vector<std::string> names = []
    {
        std::vector<std::string> all;
        const auto add = [&all](auto* kind) { all.emplace_back(ipodkit::Rows<std::decay_t<decltype(*kind)>>::name); };
        ForEachKind(add, static_cast<const ipodkit::Event*>(nullptr));
        return all;
    }();
    return names;
}

std::vector<std::string> NamesOfEventFields()
{
    std::vector<std::string> names;
    ForEachKind([&names](auto* kind) { AddNames<std::decay_t<decltype(*kind)>>(names); },
                static_cast<const ipodkit::Event*>(nullptr));
    return names;
}

Answer ToAnswer(const Event& event)
{
    const Moment now = Moment::Now();
    Json json{{"time", now.full}, {"event", event.name}};
    json.update(event.fields);
    return {json, now.clock + "  " + Pad(event.name, kNameWidth) + "  " + event.text};
}

namespace
{
// Maps the name of an event field to the name of the player field.
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

// Converts the state to the events that would have reported it.
std::vector<ipodkit::Event> AsEvents(const ipodkit::PlayerState& state)
{
    std::vector<ipodkit::Event> events;
    if (state.track) events.emplace_back(ipodkit::TrackChanged{state.trackIndex.value_or(-1), *state.track});
    if (state.status) events.emplace_back(ipodkit::PlayStatusChanged{*state.status});
    if (state.position) events.emplace_back(ipodkit::ProgressChanged{state.position->Now(), state.position->duration});
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
    Json fields = OfPlayer();
    fields.update(event.fields);
    fields.erase("track");
    fields.update(Json{{"event", event.name}, {"text", event.text}});
    return fields;
}

Json EventFields::OfPlayer() const
{
    const Moment now = Moment::Now();
    Json fields = m_player;
    fields.update(Json{{"time", now.full}, {"clock", now.clock}});
    return fields;
}
}  // namespace ctl
