#include "scenario/scenario_events.h"

#include <algorithm>
#include <iterator>

#include "music/hex.h"
#include "scenario/scenario_call.h"
#include "scenario/words.h"
#include "service/events.h"

namespace ipodsim
{
namespace
{
using Happening = std::function<void(Service&)>;
constexpr std::uint64_t kLastSession = 65535;

void Require(bool condition, const char* complaint)
{
    if (!condition) throw std::runtime_error(complaint);
}

Happening PhoneCall(const JsonValue& value)
{
    const auto [call, steps] = CallFrom(value);
    if (steps.empty()) return [call = call](Service& service) { events::PhoneCall(service, call); };
    return [call = call, steps = steps](Service& service) { events::CallSequence(service, call, steps); };
}

Happening Battery(const JsonValue& value)
{
    const ipod::iPodBattery battery = BatteryFrom(value);
    return [battery](Service& service) { events::Battery(service, battery); };
}

std::string OptionalText(const JsonValue& value, const char* name)
{
    return value.Has(name) ? value.Member(name, "").Text("a text") : std::string();
}

Happening Carplay(const JsonValue& value)
{
    value.RequireMembers({"status", "serial"});
    const auto status = static_cast<int>(value.Member("status", "what was detected").Word(words::kDetection));
    const std::string serial = OptionalText(value, "serial");
    return [status, serial](Service& service) { events::Carplay(service, status, serial); };
}

Happening Carlife(const JsonValue& value)
{
    const auto status = static_cast<int>(value.Word(words::kDetection));
    return [status](Service& service) { events::Carlife(service, status); };
}

Happening Wireless(const JsonValue& value)
{
    value.RequireMembers({"available", "address"});
    const bool available = value.Member("available", "true or false").Switch();
    const std::string address = OptionalText(value, "address");
    return [available, address](Service& service) { events::WirelessCarPlay(service, available, address); };
}

Bytes HexOf(const JsonValue& value)
{
    const auto bytes = FromHex(value.Text("pairs of hexadecimal digits"));
    if (!bytes) value.Refuse("pairs of hexadecimal digits");
    return *bytes;
}

Happening Pairing(const JsonValue& value)
{
    value.RequireMembers({"address", "hex"});
    const std::string address = value.Member("address", "the device's Bluetooth address").Text("a text");
    const Bytes bytes = value.Has("hex") ? HexOf(value.Member("hex", "")) : Bytes();
    return [address, bytes](Service& service) { events::PairingInfo(service, address, bytes); };
}

Happening Location(const JsonValue& value)
{
    const int status = value.Switch() ? LOCATION_STATUS_REQUESTED : LOCATION_STATUS_STOPPED;
    return [status](Service& service) { events::Location(service, status); };
}

Happening Source(const JsonValue& value)
{
    const bool valid = value.Switch();
    return [valid](Service& service) { events::SourceValid(service, valid); };
}

Happening App(const JsonValue& value)
{
    const std::string name = value.Text("a bundle identifier, or an empty text");
    return [name](Service& service) { events::ForegroundApp(service, name); };
}

std::string NameOfDevice(const JsonValue& value)
{
    std::string name = value.Text("the name of a device");
    if (name.empty()) value.Refuse("a name that is not empty");
    return name;
}

Happening Attach(const JsonValue& value)
{
    const std::string name = NameOfDevice(value);
    return [name](Service& service)
    { Require(events::AttachDevice(service, name), "a device of that name is attached already"); };
}

Happening Detach(const JsonValue& value)
{
    const std::string name = NameOfDevice(value);
    return [name](Service& service)
    { Require(events::DetachDevice(service, name), "no device of that name is attached"); };
}

Happening Button(const JsonValue& value)
{
    static const Words kButtons = {{"play", 0}, {"pause", 1}, {"stop", 2}, {"next", 3}, {"previous", 4}};
    value.Word(kButtons);
    const std::string button = value.Text("");
    return [button](Service& service) { events::PressButton(service, button); };
}

Happening EapOpen(const JsonValue& value)
{
    value.RequireMembers({"protocol"});
    const auto protocol = value.Has("protocol") ? value.Member("protocol", "").Number(0, 255) : 0;
    return [protocol](Service& service)
    { Require(events::OpenEapSession(service, static_cast<int>(protocol)) != 0, "all session numbers are in use"); };
}

// Without a number it is the session that was opened last.
using Session = std::optional<std::uint16_t>;

Session SessionOf(const JsonValue& value)
{
    if (!value.Has("session")) return {};
    return static_cast<std::uint16_t>(value.Member("session", "").Number(1, kLastSession));
}

std::uint16_t Find(const Service& service, Session session)
{
    return session.value_or(service.eap.Last());
}

Happening EapClose(const JsonValue& value)
{
    value.RequireMembers({"session"});
    return [session = SessionOf(value)](Service& service)
    { Require(events::CloseEapSession(service, Find(service, session)), "the session is not open"); };
}

Bytes DataOf(const JsonValue& value)
{
    if (value.Has("hex") == value.Has("text")) value.Refuse("either a text or hex, what is sent");
    if (value.Has("hex")) return HexOf(value.Member("hex", ""));
    const std::string text = value.Member("text", "").Text("a text");
    return {text.begin(), text.end()};
}

Happening EapData(const JsonValue& value)
{
    value.RequireMembers({"session", "text", "hex"});
    return [session = SessionOf(value), data = DataOf(value)](Service& service)
    {
        Require(events::SendEapData(service, Find(service, session), data),
                "the session is not open, or the bytes do not fit into shared memory");
    };
}

Happening FaultEvent(const JsonValue& value)
{
    const std::string text = value.Text("a fault, as KIND[=PARAMETER][@MEMBER][/COUNT]");
    try
    {
        const Fault fault = ParseFault(text);
        return [fault](Service& service) { events::AddFault(service, fault); };
    }
    catch (const std::runtime_error& error)
    {
        value.Refuse(std::string("a fault (") + error.what() + ")");
    }
}

Happening ClearFaults(const JsonValue& value)
{
    value.RequireMembers({});
    return [](Service& service) { events::ClearFaults(service); };
}

struct Row
{
    const char* name;
    Happening (*from)(const JsonValue& value);
    bool needsValue;
};

constexpr Row kEvents[] = {
    {"call", PhoneCall, true},
    {"battery", Battery, true},
    {"carplay", Carplay, true},
    {"carlife", Carlife, true},
    {"wireless", Wireless, true},
    {"pairing", Pairing, true},
    {"location", Location, true},
    {"source", Source, true},
    {"app", App, true},
    {"attach", Attach, true},
    {"detach", Detach, true},
    {"button", Button, true},
    {"eap-open", EapOpen, false},
    {"eap-close", EapClose, false},
    {"eap-data", EapData, true},
    {"fault", FaultEvent, true},
    {"clear-faults", ClearFaults, false},
};

Words NumbersOfEvents()
{
    Words names;
    for (std::uint32_t i = 0; i < std::size(kEvents); ++i) names[kEvents[i].name] = i;
    return names;
}
}  // namespace

std::function<void(Service&)> EventFrom(const JsonValue& name, const JsonValue& step)
{
    static const Words names = NumbersOfEvents();
    const Row& row = kEvents[name.Word(names)];
    static const nlohmann::json kNothing = nlohmann::json::object();
    if (!row.needsValue && !step.Has("value")) return row.from(JsonValue(kNothing));
    return row.from(step.Member("value", "what the event carries"));
}

std::vector<std::string> EventNames()
{
    std::vector<std::string> names;
    for (const Row& row : kEvents) names.emplace_back(row.name);
    return names;
}
}  // namespace ipodsim
