#include "control.h"

#include <stdexcept>

#include "answer.h"
#include "call_fields.h"
#include "events.h"

namespace ipodsim
{
namespace control
{
namespace
{
// The message of the exception becomes that of the error reply.
void Require(bool condition, const char* complaint)
{
    if (!condition) throw std::runtime_error(complaint);
}

void RequireDetection(guchar status)
{
    Require(status <= APPLE_DEVICE_UNSUPPORTED, "status: expected 0 detected, 1 not detected or 2 not supported");
}

Bytes ToBytes(GVariant* array)
{
    gsize count = 0;
    const auto* const bytes = static_cast<const unsigned char*>(g_variant_get_fixed_array(array, &count, 1));
    return {bytes, bytes + count};
}

void PhoneCall(Service& service, GVariant* fields)
{
    events::PhoneCall(service, ToPhoneCall(fields));
}

void Battery(Service& service, GVariant* fields)
{
    events::Battery(service, ToBattery(fields));
}

void Carplay(Service& service, guchar status, const gchar* serialNumber)
{
    RequireDetection(status);
    events::Carplay(service, status, serialNumber);
}

void Carlife(Service& service, guchar status)
{
    RequireDetection(status);
    events::Carlife(service, status);
}

void WirelessCarPlay(Service& service, gboolean available, const gchar* deviceAddress)
{
    events::WirelessCarPlay(service, available != FALSE, deviceAddress);
}

void PairingInfo(Service& service, const gchar* btAddress, GVariant* bytes)
{
    events::PairingInfo(service, btAddress, ToBytes(bytes));
}

void Location(Service& service, guchar status)
{
    Require(status <= LOCATION_STATUS_REQUESTED, "status: expected 0 stopped or 1 requested");
    events::Location(service, status);
}

void ForegroundApp(Service& service, const gchar* bundleName)
{
    events::ForegroundApp(service, bundleName);
}

void SourceValid(Service& service, gboolean valid)
{
    events::SourceValid(service, valid != FALSE);
}

void AttachDevice(Service& service, const gchar* name)
{
    Require(*name != '\0', "name: expected a name that is not empty");
    events::AttachDevice(service, name);
}

void DetachDevice(Service& service, const gchar* name)
{
    Require(events::DetachDevice(service, name), "no device of that name is attached");
}

guint16 OpenEapSession(Service& service, guchar protocol)
{
    const std::uint16_t session = events::OpenEapSession(service, protocol);
    Require(session != 0, "all session numbers are in use");
    return session;
}

void CloseEapSession(Service& service, guint16 session)
{
    Require(events::CloseEapSession(service, session), "no session of that number is open");
}

void SendEapData(Service& service, guint16 session, GVariant* bytes)
{
    Require(service.eap.IsOpen(session), "no session of that number is open");
    Require(events::SendEapData(service, session, ToBytes(bytes)), "the bytes do not fit into shared memory");
}
using Interface = ComZarnLinuxIpodSimulatorIface;

// clang-format off
const MethodRow kMethods[] = {
    Method<com_zarn_linux_ipod_simulator_complete_phone_call, &PhoneCall>("handle-phone-call", &Interface::handle_phone_call),
    Method<com_zarn_linux_ipod_simulator_complete_battery, &Battery>("handle-battery", &Interface::handle_battery),
    Method<com_zarn_linux_ipod_simulator_complete_carplay, &Carplay>("handle-carplay", &Interface::handle_carplay),
    Method<com_zarn_linux_ipod_simulator_complete_carlife, &Carlife>("handle-carlife", &Interface::handle_carlife),
    Method<com_zarn_linux_ipod_simulator_complete_wireless_car_play, &WirelessCarPlay>("handle-wireless-car-play", &Interface::handle_wireless_car_play),
    Method<com_zarn_linux_ipod_simulator_complete_pairing_info, &PairingInfo>("handle-pairing-info", &Interface::handle_pairing_info),
    Method<com_zarn_linux_ipod_simulator_complete_location, &Location>("handle-location", &Interface::handle_location),
    Method<com_zarn_linux_ipod_simulator_complete_foreground_app, &ForegroundApp>("handle-foreground-app", &Interface::handle_foreground_app),
    Method<com_zarn_linux_ipod_simulator_complete_source_valid, &SourceValid>("handle-source-valid", &Interface::handle_source_valid),
    Method<com_zarn_linux_ipod_simulator_complete_attach_device, &AttachDevice>("handle-attach-device", &Interface::handle_attach_device),
    Method<com_zarn_linux_ipod_simulator_complete_detach_device, &DetachDevice>("handle-detach-device", &Interface::handle_detach_device),
    Method<com_zarn_linux_ipod_simulator_complete_open_eap_session, &OpenEapSession>("handle-open-eap-session", &Interface::handle_open_eap_session),
    Method<com_zarn_linux_ipod_simulator_complete_close_eap_session, &CloseEapSession>("handle-close-eap-session", &Interface::handle_close_eap_session),
    Method<com_zarn_linux_ipod_simulator_complete_send_eap_data, &SendEapData>("handle-send-eap-data", &Interface::handle_send_eap_data),
};
// clang-format on
}  // namespace
}  // namespace control

void AnswerControl(ComZarnLinuxIpodSimulator* skeleton, Service& service)
{
    Connect(skeleton, control::kMethods, service);
}
}  // namespace ipodsim
