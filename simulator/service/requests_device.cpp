#include "service/requests.h"

namespace ipodsim::requests
{
// The simulated device has no audio path and no hub: the three notifications below have no effect, but --verbose logs
// them.
void SetTransmissionState(Service&, guchar) {}

void SetHubTestMode(Service&, guchar) {}

void CarplayConnectStatusNotify(Service&, gboolean, gboolean) {}

std::tuple<guchar, std::string> GetCarplayDeviceDetectStatus(Service& service)
{
    return {static_cast<guchar>(service.unit.carplay), service.unit.carplaySerial};
}

gint GetCarlifeDeviceDetectStatus(Service& service)
{
    return service.unit.carlife;
}

std::string GetIpodName(Service& service)
{
    const Device* const device = service.devices.Current();
    return device == nullptr ? std::string() : device->name;
}

std::string GetIpodAppBundleName(Service& service)
{
    return service.unit.foregroundApp;
}

// A launched app opens a session on the first protocol at once.
bool EapLaunchApp(Service& service, const gchar* bundle)
{
    if (!service.eap.Announced() || *bundle == '\0') return false;
    return service.OpenEapSession(0) != 0;
}

// The app at the other end echoes what it receives.
bool EapWrite(Service& service, guint16 session)
{
    if (!service.eap.IsOpen(session)) return false;
    return service.signals.ReceiveEapData(session, service.segments.TakeEapWrite());
}

void EapInit(Service& service, GVariant* info)
{
    AccessoryRecord record{};
    if (Unpack(info, record)) service.eap.Announce();
}
}  // namespace ipodsim::requests
