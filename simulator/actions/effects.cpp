#include "actions/effects.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <stdexcept>

#include "faults/faults.h"
#include "music/music_library.h"
#include "service/requests.h"

namespace ipodsim::effects
{
namespace
{
// The digits were validated.
Bytes FromHex(const std::string& hex)
{
    Bytes bytes;
    for (std::size_t i = 0; i < hex.size(); i += 2)
        bytes.push_back(static_cast<unsigned char>(std::stoi(hex.substr(i, 2), nullptr, 16)));
    return bytes;
}

void Require(bool condition, const char* complaint)
{
    if (!condition) throw std::runtime_error(complaint);
}

std::string TextIn(const Json& value, const char* name)
{
    return value.value(name, std::string());
}

// Missing members stay absent from the message.
template <class Message, class Number>
void CopyNumber(const Json& value, const char* name, Message& message, void (Message::*set)(Number))
{
    if (value.contains(name)) (message.*set)(value[name].get<Number>());
}

template <class Message>
void CopyText(const Json& value, const char* name, Message& message, std::string* (Message::*text)())
{
    if (value.contains(name)) *(message.*text)() = value[name].get<std::string>();
}

ipod::iPodPhoneCall CallFrom(const Json& value)
{
    using Call = ipod::iPodPhoneCall;
    Call call;
    CopyNumber(value, "status", call, &Call::set_status);
    CopyText(value, "remote-id", call, &Call::mutable_remote_id);
    CopyText(value, "display-name", call, &Call::mutable_display_name);
    CopyText(value, "call-uuid", call, &Call::mutable_calluuid);
    CopyText(value, "address-book-id", call, &Call::mutable_addressbookid);
    CopyText(value, "label", call, &Call::mutable_label);
    CopyNumber(value, "direction", call, &Call::set_direction);
    CopyNumber(value, "service", call, &Call::set_service);
    CopyNumber(value, "is-conferenced", call, &Call::set_is_conferenced);
    CopyNumber(value, "conference-group", call, &Call::set_conference_group);
    CopyNumber(value, "disconnect-reason", call, &Call::set_disconnect_reason);
    CopyNumber(value, "start-timestamp", call, &Call::set_start_timestamp);
    return call;
}

// @param seconds  delay from now
void EnterState(ipod::iPodPhoneCall& call, ipod::PhoneCallStatus status, double seconds)
{
    call.set_status(status);
    if (status == ipod::PHONE_CALL_STATUS_ACTIVE && !call.has_start_timestamp())
        call.set_start_timestamp(
            static_cast<std::uint64_t>(std::llround(static_cast<double>(g_get_real_time()) / 1e6 + seconds)));
    if (status == ipod::PHONE_CALL_STATUS_DISCONNECTED && !call.has_disconnect_reason())
        call.set_disconnect_reason(ipod::CALL_STATE_DISCONNECT_REASON_ENDED);
}

void PlaySequence(Service& service, ipod::iPodPhoneCall call, const Json& steps)
{
    const std::unique_ptr<char, decltype(&g_free)> uuid(g_uuid_string_random(), &g_free);
    if (!call.has_calluuid()) call.set_calluuid(uuid.get());
    double at = 0;
    for (const Json& step : steps)
    {
        EnterState(call, step["status"].get<ipod::PhoneCallStatus>(), service.RealSeconds(at));
        if (at > 0)
            service.AfterSeconds(at, [&service, call] { service.signals.PhoneCall(call); });
        else
            service.signals.PhoneCall(call);
        at += step.value("seconds", 0.0);
    }
}

std::uint16_t SessionIn(const Service& service, const Json& value)
{
    return value.value("session", service.eap.Last());
}
}  // namespace

Json PhoneCall(Service& service, const Json& value)
{
    const ipod::iPodPhoneCall call = CallFrom(value);
    const Json steps = value.value("sequence", Json::array());
    if (steps.empty())
        service.signals.PhoneCall(call);
    else
        PlaySequence(service, call, steps);
    return nullptr;
}

Json Battery(Service& service, const Json& value)
{
    using Message = ipod::iPodBattery;
    Message battery;
    CopyNumber(value, "level", battery, &Message::set_battery_charge_level);
    CopyNumber(value, "charging-status", battery, &Message::set_battery_charging_status);
    service.signals.Battery(battery);
    return nullptr;
}

Json Carplay(Service& service, const Json& value)
{
    service.unit.carplay = value["status"];
    service.unit.carplaySerial = TextIn(value, "serial");
    service.signals.Carplay(service.unit.carplay, service.unit.carplaySerial);
    return nullptr;
}

Json Carlife(Service& service, const Json& value)
{
    service.unit.carlife = value["status"];
    service.signals.Carlife(service.unit.carlife);
    return nullptr;
}

Json Wireless(Service& service, const Json& value)
{
    service.signals.WirelessCarPlay(value["available"], TextIn(value, "address"));
    return nullptr;
}

Json Pairing(Service& service, const Json& value)
{
    service.signals.PairingInfo(value["address"], FromHex(TextIn(value, "hex")));
    return nullptr;
}

Json Location(Service& service, const Json& value)
{
    service.signals.Location(value["requested"].get<bool>() ? LOCATION_STATUS_REQUESTED : LOCATION_STATUS_STOPPED);
    return nullptr;
}

Json Source(Service& service, const Json& value)
{
    service.signals.SourceValid(value["valid"]);
    return nullptr;
}

Json App(Service& service, const Json& value)
{
    service.unit.foregroundApp = value["bundle"];
    service.signals.AppBundleName(service.unit.foregroundApp);
    return nullptr;
}

Json Attach(Service& service, const Json& value)
{
    const std::vector<std::string> names = service.devices.Names();
    Require(std::find(names.begin(), names.end(), value["name"]) == names.end(),
            "a device of that name is already attached");
    service.devices.Attach(value["name"], BuiltinLibrary());
    service.signals.DeviceStatus(APPLE_DEVICE_DETECTED, false);
    return nullptr;
}

Json Detach(Service& service, const Json& value)
{
    Require(service.DetachDevice(value["name"]), "no device of that name is attached");
    return nullptr;
}

Json Button(Service& service, const Json& value)
{
    static constexpr void (*kEffects[])(Service&) = {
        [](Service& pressed) { requests::Play(pressed, IPOD_PLAY_START); },
        [](Service& pressed) { pressed.player.Pause(); },
        [](Service& pressed) { pressed.player.Stop(); },
        [](Service& pressed) { pressed.player.Next(); },
        [](Service& pressed) { pressed.player.Previous(); },
    };
    kEffects[value["button"].get<std::size_t>()](service);
    return nullptr;
}

Json EapOpen(Service& service, const Json& value)
{
    const std::uint16_t session = service.OpenEapSession(value.value("protocol", 0));
    Require(session != 0, "all session numbers are in use");
    return {{"session", session}};
}

Json EapClose(Service& service, const Json& value)
{
    const std::uint16_t session = SessionIn(service, value);
    Require(service.eap.Close(session), "the session is not open");
    service.signals.StopEapSession(session);
    return nullptr;
}

Json EapData(Service& service, const Json& value)
{
    const std::uint16_t session = SessionIn(service, value);
    const std::string text = TextIn(value, "text");
    const Bytes bytes = value.contains("hex") ? FromHex(value["hex"]) : Bytes(text.begin(), text.end());
    Require(service.eap.IsOpen(session), "the session is not open");
    Require(service.signals.ReceiveEapData(session, bytes), "the data does not fit into shared memory");
    return nullptr;
}

// A restart storm without a method starts at once.
Json ArmFault(Service& service, const Json& value)
{
    const Fault fault = ParseFault(value["fault"]);
    const bool crash = fault.kind == FaultKind::Crash || fault.kind == FaultKind::CrashLocked;
    Require(!crash || service.MayCrash(), "the simulator is embedded in another program, which a crash would end");
    if (fault.kind == FaultKind::RestartStorm && fault.member.empty())
        service.Restart(fault.Number(kRestarts));
    else
        service.faults->Add(fault);
    return nullptr;
}

Json ClearFaults(Service& service, const Json&)
{
    service.faults->Clear();
    service.Restart(0);
    return nullptr;
}
}  // namespace ipodsim::effects
