// The table of actions: names, fields, and effects.
#include <limits>
#include <utility>

#include "actions/action.h"
#include "actions/effects.h"

namespace ipodsim
{
namespace
{
constexpr std::uint64_t kMostNumber = std::numeric_limits<std::uint32_t>::max();
constexpr std::uint64_t kMostTime = std::uint64_t{1} << 53U;  // the integers that every JSON parser represents exactly
constexpr std::uint64_t kMostSession = 65535;

Field Plain(const char* name, FieldType type, const char* meaning)
{
    return {name, type, meaning};
}

Field Text(const char* name, const char* meaning)
{
    return Plain(name, FieldType::Text, meaning);
}

Field Word(const char* name, std::vector<const char*> words, const char* meaning)
{
    return {name, FieldType::Word, meaning, false, 0, 0, std::move(words)};
}

Field Number(const char* name, std::uint64_t least, std::uint64_t most, const char* meaning)
{
    return {name, FieldType::Integer, meaning, false, least, most};
}

Field Required(Field field)
{
    field.required = true;
    return field;
}

Field Session()
{
    return Number("session", 1, kMostSession, "Session number (default: the session opened last)");
}

std::vector<const char*> CallStates()
{
    return {"disconnected", "sending", "ringing", "connecting", "active", "held", "disconnecting"};
}

Field Sequence()
{
    Field sequence{"sequence", FieldType::List,
                   "Successive states; the identifier, the start, and the disconnect reason are filled in"};
    sequence.items = {Required(Word("status", CallStates(), "State of the call")),
                      {"seconds", FieldType::Seconds, "Time until the next state"}};
    return sequence;
}

std::vector<Field> CallFields()
{
    return {Word("status", CallStates(), "State of the call"),
            Text("remote-id", "Number or address of the other party"),
            Text("display-name", "Name of the other party"),
            Text("call-uuid", "Identifier of the call"),
            Text("address-book-id", "Address book entry"),
            Text("label", "Type of number, such as home or mobile"),
            Word("direction", {"unknown", "incoming", "outgoing"}, "Direction of the call"),
            Word("service", {"unknown", "telephony", "video", "audio"}, "Type of call"),
            {"is-conferenced", FieldType::Switch, "Whether the call is part of a conference"},
            Number("conference-group", 0, kMostNumber, "Conference group"),
            Word("disconnect-reason", {"ended", "declined", "failed"}, "Why the call ended"),
            Number("start-timestamp", 0, kMostTime, "Start, in seconds since 1970-01-01 UTC"),
            Sequence()};
}

Field Detection()
{
    return Required(Word("status", {"detected", "not-detected", "unsupported"}, "Detection status"));
}

Field NameOfDevice()
{
    return {"name", FieldType::Name, "Name of the device", true};
}

template <class... All>
std::vector<Field> Fields(All... fields)
{
    return {fields...};
}

std::vector<Action> PhoneActions()
{
    return {
        {"call", "Report a phone call, once or as a sequence of states",
         "OnIpodPhoneCallChange, once or for each state",
         "call sequence=ringing:3,active:10,disconnected display-name=\"Li Lei\"", CallFields(), StepValue::Required,
         effects::PhoneCall},
        {"battery", "Report the battery state", "OnIpodBatteryChange", "battery level=80 charging-status=charging",
         Fields(Number("level", 0, kMostNumber, "Percent; values above 100 are passed on"),
                Word("charging-status", {"disabled", "charging", "charged", "discharging"}, "Charging state")),
         StepValue::Required, effects::Battery},
        {"carplay", "Detect or lose a CarPlay device", "OnCarplayDeviceDetectStatusChange; the getter returns the same",
         "carplay detected serial=F17XK0PASS", Fields(Detection(), Text("serial", "Serial number of the device")),
         StepValue::Required, effects::Carplay},
        {"carlife", "Detect or lose a CarLife device", "OnCarlifeDeviceDetectStatusChange; the getter returns the same",
         "carlife not-detected", Fields(Detection()), StepValue::Required, effects::Carlife},
    };
}

std::vector<Action> WirelessActions()
{
    return {
        {"wireless", "Make wireless CarPlay available or unavailable", "OnWirelessCarPlayUpdate",
         "wireless on address=00:11:22:33:44:55",
         Fields(Required(Plain("available", FieldType::Switch, "Whether wireless CarPlay can be started")),
                Text("address", "Bluetooth address of the device")),
         StepValue::Required, effects::Wireless},
        {"pairing", "Send out-of-band pairing information", "OnOOBPairingInfo", "pairing 00:11:22:33:44:55 hex=0a1b2c",
         Fields(Required(Text("address", "Bluetooth address of the device")),
                Plain("hex", FieldType::Hex, "The information")),
         StepValue::Required, effects::Pairing},
    };
}

std::vector<Action> UnitActions()
{
    return {
        {"location", "Request location information, or stop requesting it", "OnIpodLocationStatusChange", "location on",
         Fields(Required(Plain("requested", FieldType::Switch, "Whether the device requests location information"))),
         StepValue::Required, effects::Location},
        {"source", "Make the audio source of the device valid or invalid", "OnIpodSourceValidStatusChange",
         "source off", Fields(Required(Plain("valid", FieldType::Switch, "Whether the audio source can be used"))),
         StepValue::Required, effects::Source},
        {"app", "Bring another app to the foreground", "OnIpodAppBundleNameChange; the getter returns the same",
         "app com.example.maps", Fields(Required(Text("bundle", "Bundle identifier of the app; empty for none"))),
         StepValue::Required, effects::App},
    };
}

std::vector<Action> DeviceActions()
{
    return {
        {"attach", "Attach a device with the built-in library", "OnIpodDeviceStatusChange", "attach Second",
         Fields(NameOfDevice()), StepValue::Required, effects::Attach},
        {"detach", "Detach a device", "OnIpodDeviceStatusChange; playback ends if the device is browsed",
         "detach Second", Fields(NameOfDevice()), StepValue::Required, effects::Detach},
        {"button", "Press a button on the device", "the playback signals", "button next",
         Fields(Required(Word("button", {"play", "pause", "stop", "next", "previous"}, "The button"))),
         StepValue::Required, effects::Button},
    };
}

std::vector<Action> EapActions()
{
    return {
        {"eap-open", "Open an accessory session and return its number", "OnIpodStartEapSession", "eap-open protocol=1",
         Fields(Number("protocol", 0, 255, "Index of the accessory protocol (default: 0)")), StepValue::Optional,
         effects::EapOpen},
        {"eap-close", "Close an accessory session", "OnIpodStopEapSession", "eap-close 1", Fields(Session()),
         StepValue::Optional, effects::EapClose},
        {"eap-data", "Send bytes from the device on a session", "OnIpodReceiveEapData", "eap-data 1 text=hello",
         Fields(Session(), Text("text", "The bytes as text"), Plain("hex", FieldType::Hex, "The bytes")),
         StepValue::OneOfTheLastTwo, effects::EapData},
    };
}

std::vector<Action> FaultActions()
{
    return {
        {"fault", "Inject a fault", "no signal; replies or signals are delayed, dropped, or corrupted",
         "fault delay=500@GetPlayStatus/3",
         Fields(Required(Plain("fault", FieldType::Fault, "The fault, as KIND[=PARAMETER][@MEMBER][/COUNT]"))),
         StepValue::Required, effects::ArmFault},
        {"clear-faults", "Remove all injected faults", "no signal; also ends a restart storm", "clear-faults", Fields(),
         StepValue::Optional, effects::ClearFaults},
    };
}
}  // namespace

const std::vector<Action>& Actions()
{
    static const std::vector<Action> actions = []
    {
        std::vector<Action> all;
        for (const auto rows : {PhoneActions, WirelessActions, UnitActions, DeviceActions, EapActions, FaultActions})
            for (const Action& action : rows()) all.push_back(action);
        return all;
    }();
    return actions;
}
}  // namespace ipodsim
