#include "events.h"

#include "builtin_library.h"

namespace ipodsim::events
{
void PhoneCall(Service& service, const ipod::iPodPhoneCall& call)
{
    service.signals.PhoneCall(call);
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

void AttachDevice(Service& service, const std::string& name)
{
    service.devices.Attach(name, BuiltinLibrary());
    service.signals.DeviceStatus(APPLE_DEVICE_DETECTED, false);
}

bool DetachDevice(Service& service, const std::string& name)
{
    const Device* const before = service.devices.Current();
    if (!service.devices.Detach(name)) return false;
    if (service.devices.Current() != before) service.player.Clear();
    service.signals.DeviceStatus(APPLE_DEVICE_NOT_DETECTED, false);
    return true;
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
}  // namespace ipodsim::events
