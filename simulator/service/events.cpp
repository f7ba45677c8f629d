#include "service/events.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <stdexcept>

#include "music/builtin_library.h"
#include "service/requests.h"

namespace ipodsim::events
{
namespace
{
std::string NewUuid()
{
    const std::unique_ptr<char, decltype(&g_free)> uuid(g_uuid_string_random(), &g_free);
    return uuid.get();
}

// @param seconds  from now, when it happens
void EnterState(ipod::iPodPhoneCall& call, ipod::PhoneCallStatus status, double seconds)
{
    call.set_status(status);
    if (status == ipod::PHONE_CALL_STATUS_ACTIVE && !call.has_start_timestamp())
        call.set_start_timestamp(
            static_cast<std::uint64_t>(std::llround(static_cast<double>(g_get_real_time()) / 1e6 + seconds)));
    if (status == ipod::PHONE_CALL_STATUS_DISCONNECTED && !call.has_disconnect_reason())
        call.set_disconnect_reason(ipod::CALL_STATE_DISCONNECT_REASON_ENDED);
}

template <class Take>
bool Detach(Service& service, Take take)
{
    const Device* const before = service.devices.Current();
    if (!take(service.devices)) return false;
    if (service.devices.Current() != before) service.player.Clear();
    service.signals.DeviceStatus(APPLE_DEVICE_NOT_DETECTED, false);
    return true;
}
}  // namespace

void PhoneCall(Service& service, const ipod::iPodPhoneCall& call)
{
    service.signals.PhoneCall(call);
}

void CallSequence(Service& service, const ipod::iPodPhoneCall& call, const std::vector<CallStep>& steps)
{
    ipod::iPodPhoneCall known = call;
    if (!known.has_calluuid()) known.set_calluuid(NewUuid());
    double at = 0;
    for (const CallStep& step : steps)
    {
        EnterState(known, step.status, service.RealSeconds(at));
        if (at > 0)
            service.AfterSeconds(at, [&service, known] { PhoneCall(service, known); });
        else
            PhoneCall(service, known);
        at += step.seconds;
    }
}

void Battery(Service& service, const ipod::iPodBattery& battery)
{
    service.signals.Battery(battery);
}

void Carplay(Service& service, int status, const std::string& serialNumber)
{
    service.unit.carplay = status;
    service.unit.carplaySerial = serialNumber;
    service.signals.Carplay(status, serialNumber);
}

void Carlife(Service& service, int status)
{
    service.unit.carlife = status;
    service.signals.Carlife(status);
}

void WirelessCarPlay(Service& service, bool available, const std::string& deviceAddress)
{
    service.signals.WirelessCarPlay(available, deviceAddress);
}

void PairingInfo(Service& service, const std::string& btAddress, const Bytes& bytes)
{
    service.signals.PairingInfo(btAddress, bytes);
}

void Location(Service& service, int status)
{
    service.signals.Location(status);
}

void ForegroundApp(Service& service, const std::string& bundleName)
{
    service.unit.foregroundApp = bundleName;
    service.signals.AppBundleName(bundleName);
}

void SourceValid(Service& service, bool valid)
{
    service.signals.SourceValid(valid);
}

bool PressButton(Service& service, const std::string& button)
{
    Player& player = service.player;
    if (button == "play")
        requests::Play(service, IPOD_PLAY_START);
    else if (button == "pause")
        player.Pause();
    else if (button == "stop")
        player.Stop();
    else if (button == "next")
        player.Next();
    else if (button == "previous")
        player.Previous();
    else
        return false;
    return true;
}

bool AttachDevice(Service& service, const std::string& name)
{
    const std::vector<std::string> names = service.devices.Names();
    if (std::find(names.begin(), names.end(), name) != names.end()) return false;
    service.devices.Attach(name, BuiltinLibrary());
    service.signals.DeviceStatus(APPLE_DEVICE_DETECTED, false);
    return true;
}

bool DetachDevice(Service& service, const std::string& name)
{
    return Detach(service, [&](DeviceList& devices) { return devices.Detach(name); });
}

bool DetachFolder(Service& service, const std::string& folder)
{
    return Detach(service, [&](DeviceList& devices) { return devices.DetachFolder(folder); });
}

std::uint16_t OpenEapSession(Service& service, int protocol)
{
    const std::uint16_t session = service.eap.Open();
    if (session != 0) service.signals.StartEapSession(protocol, session);
    return session;
}

bool CloseEapSession(Service& service, std::uint16_t session)
{
    if (!service.eap.Close(session)) return false;
    service.signals.StopEapSession(session);
    return true;
}

bool SendEapData(Service& service, std::uint16_t session, const Bytes& data)
{
    return service.eap.IsOpen(session) && service.signals.ReceiveEapData(session, data);
}

void AddFault(Service& service, const Fault& fault)
{
    const bool crash = fault.kind == FaultKind::Crash || fault.kind == FaultKind::CrashLocked;
    if (crash && !service.MayCrash())
        throw std::runtime_error("the service lives inside another program, which a crash would end");
    if (fault.kind == FaultKind::RestartStorm && fault.member.empty())
        service.Restart(fault.Number(kRestarts));
    else
        service.faults->Add(fault);
}

void ClearFaults(Service& service)
{
    service.faults->Clear();
    service.Restart(0);
}
}  // namespace ipodsim::events
