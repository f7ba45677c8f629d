#include "events/events.h"

#include "output/fields_json.h"
#include "output/moment.h"
#include "output/text.h"
#include "player/track.h"

namespace ctl
{
namespace
{
constexpr int kNameWidth = 14;

std::string TextOf(const Json& value)
{
    return Printable(value.is_string() ? value.get<std::string>() : value.dump());
}

// "status ringing, name Anna"
std::string Listed(const Json& fields)
{
    std::string text;
    for (const auto& [name, value] : fields.items()) text += (text.empty() ? "" : ", ") + name + " " + TextOf(value);
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

/// How an event reads on one line.
struct Text
{
    // Events with one field.
    template <class E>
    std::string operator()(const E& event) const
    {
        return TextOf(ToJson(event).front());
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

// Calls @p use with a null pointer to each kind of event.
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
}  // namespace ctl
