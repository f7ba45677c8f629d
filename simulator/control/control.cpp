#include "control/control.h"

#include <stdexcept>
#include <vector>

#include "control/call_fields.h"
#include "faults/fault_table.h"
#include "faults/faults.h"
#include "scenario/scenario.h"
#include "service/answer.h"
#include "service/events.h"

namespace ipodsim
{
namespace control
{
namespace
{
constexpr double kLongestStep = 7 * 24 * 3600.0;

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

VariantPtr Child(GVariant* value, gsize index)
{
    return VariantPtr(g_variant_get_child_value(value, index));
}

std::vector<CallStep> ToSteps(GVariant* steps)
{
    std::vector<CallStep> sequence;
    for (gsize i = 0; i < g_variant_n_children(steps); ++i)
    {
        guint32 status = 0;
        double seconds = 0;
        g_variant_get_child(steps, i, "(ud)", &status, &seconds);
        Require(status <= ipod::PhoneCallStatus_MAX, "steps: expected a status from 0 to 6");
        Require(seconds >= 0 && seconds <= kLongestStep, "steps: expected seconds from 0 to 604800");
        sequence.push_back({static_cast<ipod::PhoneCallStatus>(status), seconds});
    }
    return sequence;
}

void CallSequence(Service& service, GVariant* fields, GVariant* steps)
{
    const auto sequence = ToSteps(steps);
    Require(!sequence.empty(), "steps: expected at least one");
    events::CallSequence(service, ToPhoneCall(fields), sequence);
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

void PressButton(Service& service, const gchar* button)
{
    Require(events::PressButton(service, button), "button: expected play, pause, stop, next or previous");
}

void AttachDevice(Service& service, const gchar* name)
{
    Require(*name != '\0', "name: expected a name that is not empty");
    Require(events::AttachDevice(service, name), "a device of that name is attached already");
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

// One by one: the bus has no empty tuple.
GVariant* ToValues(GVariant* value)
{
    GVariantBuilder builder;
    g_variant_builder_init(&builder, G_VARIANT_TYPE("av"));
    const bool tuple = value != nullptr && g_variant_is_of_type(value, G_VARIANT_TYPE_TUPLE) != FALSE;
    for (gsize i = 0; tuple && i < g_variant_n_children(value); ++i)
        g_variant_builder_add(&builder, "v", Child(value, i).get());
    if (value != nullptr && !tuple) g_variant_builder_add(&builder, "v", value);
    return g_variant_builder_end(&builder);
}

GVariant* ToVariant(const LoggedCall& call)
{
    const char* const outcome = !call.error.empty() ? call.error.c_str() : call.answer == nullptr ? "nothing" : "reply";
    return g_variant_new("(tss@avs@av)", static_cast<guint64>(call.time), call.sender.c_str(), call.method.c_str(),
                         ToValues(call.arguments.get()), outcome, ToValues(call.answer.get()));
}

GVariant* GetCalls(Service& service, const gchar* method)
{
    if (*method != '\0') RequireMethod(method);
    GVariantBuilder builder;
    g_variant_builder_init(&builder, G_VARIANT_TYPE("a(tssavsav)"));
    for (const LoggedCall& call : service.calls.Calls())
        if (*method == '\0' || call.method == method) g_variant_builder_add_value(&builder, ToVariant(call));
    return g_variant_builder_end(&builder);
}

void ClearCalls(Service& service)
{
    service.calls.Clear();
}

void ArmFault(Service& service, const gchar* member, const gchar* kind, const gchar* parameter, guint count)
{
    events::AddFault(service, MakeFault(member, kind, parameter, count));
}

void ClearFaults(Service& service)
{
    events::ClearFaults(service);
}

void RunScenario(Service& service, const gchar* scenario)
{
    StartScenario(service, ParseScenario(scenario));
}

using Interface = ComZarnLinuxIpodSimulatorIface;

// clang-format off
const MethodRow kMethods[] = {
    Method<com_zarn_linux_ipod_simulator_complete_phone_call, &PhoneCall>("handle-phone-call", &Interface::handle_phone_call),
    Method<com_zarn_linux_ipod_simulator_complete_call_sequence, &CallSequence>("handle-call-sequence", &Interface::handle_call_sequence),
    Method<com_zarn_linux_ipod_simulator_complete_battery, &Battery>("handle-battery", &Interface::handle_battery),
    Method<com_zarn_linux_ipod_simulator_complete_carplay, &Carplay>("handle-carplay", &Interface::handle_carplay),
    Method<com_zarn_linux_ipod_simulator_complete_carlife, &Carlife>("handle-carlife", &Interface::handle_carlife),
    Method<com_zarn_linux_ipod_simulator_complete_wireless_car_play, &WirelessCarPlay>("handle-wireless-car-play", &Interface::handle_wireless_car_play),
    Method<com_zarn_linux_ipod_simulator_complete_pairing_info, &PairingInfo>("handle-pairing-info", &Interface::handle_pairing_info),
    Method<com_zarn_linux_ipod_simulator_complete_location, &Location>("handle-location", &Interface::handle_location),
    Method<com_zarn_linux_ipod_simulator_complete_foreground_app, &ForegroundApp>("handle-foreground-app", &Interface::handle_foreground_app),
    Method<com_zarn_linux_ipod_simulator_complete_source_valid, &SourceValid>("handle-source-valid", &Interface::handle_source_valid),
    Method<com_zarn_linux_ipod_simulator_complete_press_button, &PressButton>("handle-press-button", &Interface::handle_press_button),
    Method<com_zarn_linux_ipod_simulator_complete_attach_device, &AttachDevice>("handle-attach-device", &Interface::handle_attach_device),
    Method<com_zarn_linux_ipod_simulator_complete_detach_device, &DetachDevice>("handle-detach-device", &Interface::handle_detach_device),
    Method<com_zarn_linux_ipod_simulator_complete_open_eap_session, &OpenEapSession>("handle-open-eap-session", &Interface::handle_open_eap_session),
    Method<com_zarn_linux_ipod_simulator_complete_close_eap_session, &CloseEapSession>("handle-close-eap-session", &Interface::handle_close_eap_session),
    Method<com_zarn_linux_ipod_simulator_complete_send_eap_data, &SendEapData>("handle-send-eap-data", &Interface::handle_send_eap_data),
    Method<com_zarn_linux_ipod_simulator_complete_get_calls, &GetCalls>("handle-get-calls", &Interface::handle_get_calls),
    Method<com_zarn_linux_ipod_simulator_complete_clear_calls, &ClearCalls>("handle-clear-calls", &Interface::handle_clear_calls),
    Method<com_zarn_linux_ipod_simulator_complete_fault, &ArmFault>("handle-fault", &Interface::handle_fault),
    Method<com_zarn_linux_ipod_simulator_complete_clear_faults, &ClearFaults>("handle-clear-faults", &Interface::handle_clear_faults),
    Method<com_zarn_linux_ipod_simulator_complete_run_scenario, &RunScenario>("handle-run-scenario", &Interface::handle_run_scenario),
};
// clang-format on
}  // namespace
}  // namespace control

void AnswerControl(ComZarnLinuxIpodSimulator* skeleton, Service& service)
{
    Connect(skeleton, control::kMethods, service);
    service.calls.added = [skeleton](const LoggedCall& call)
    { com_zarn_linux_ipod_simulator_emit_called(skeleton, control::ToVariant(call)); };
}
}  // namespace ipodsim
