#include "control/call_fields.h"

#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>

namespace ipodsim
{
namespace
{
template <class Message>
struct Field
{
    const char* key;
    const char* type;
    void (*set)(Message&, GVariant*, const char* key);
};

[[noreturn]] void Refuse(const char* key, const std::string& expected)
{
    throw std::runtime_error(std::string("field ") + key + ": expected " + expected);
}

template <class Message, void (Message::*setter)(std::uint32_t)>
void SetNumber(Message& message, GVariant* value, const char*)
{
    (message.*setter)(g_variant_get_uint32(value));
}

// A value out of range cannot be put into the message at all.
template <class Message, class Enum, void (Message::*setter)(Enum), Enum last>
void SetEnum(Message& message, GVariant* value, const char* key)
{
    const guint32 number = g_variant_get_uint32(value);
    if (number > static_cast<guint32>(last)) Refuse(key, "a number from 0 to " + std::to_string(last));
    (message.*setter)(static_cast<Enum>(number));
}

using CallMessage = ipod::iPodPhoneCall;
using BatteryMessage = ipod::iPodBattery;

constexpr Field<CallMessage> kCallFields[] = {
    {"remote-id", "s",
     [](CallMessage& call, GVariant* v, const char*) { call.set_remote_id(g_variant_get_string(v, nullptr)); }},
    {"display-name", "s",
     [](CallMessage& call, GVariant* v, const char*) { call.set_display_name(g_variant_get_string(v, nullptr)); }},
    {"status", "u", SetEnum<CallMessage, ipod::PhoneCallStatus, &CallMessage::set_status, ipod::PhoneCallStatus_MAX>},
    {"direction", "u",
     SetEnum<CallMessage, ipod::PhoneCallDirection, &CallMessage::set_direction, ipod::PhoneCallDirection_MAX>},
    {"call-uuid", "s",
     [](CallMessage& call, GVariant* v, const char*) { call.set_calluuid(g_variant_get_string(v, nullptr)); }},
    {"address-book-id", "s",
     [](CallMessage& call, GVariant* v, const char*) { call.set_addressbookid(g_variant_get_string(v, nullptr)); }},
    {"label", "s",
     [](CallMessage& call, GVariant* v, const char*) { call.set_label(g_variant_get_string(v, nullptr)); }},
    {"service", "u",
     SetEnum<CallMessage, ipod::CallStateService, &CallMessage::set_service, ipod::CallStateService_MAX>},
    {"is-conferenced", "b",
     [](CallMessage& call, GVariant* v, const char*) { call.set_is_conferenced(g_variant_get_boolean(v) != FALSE); }},
    {"conference-group", "u", SetNumber<CallMessage, &CallMessage::set_conference_group>},
    {"disconnect-reason", "u",
     SetEnum<CallMessage, ipod::CallStateDisconnectReason, &CallMessage::set_disconnect_reason,
             ipod::CallStateDisconnectReason_MAX>},
    {"start-timestamp", "t",
     [](CallMessage& call, GVariant* v, const char*) { call.set_start_timestamp(g_variant_get_uint64(v)); }},
};

constexpr Field<BatteryMessage> kBatteryFields[] = {
    {"level", "u", SetNumber<BatteryMessage, &BatteryMessage::set_battery_charge_level>},
    {"charging-status", "u",
     SetEnum<BatteryMessage, ipod::BatteryChargingStatus, &BatteryMessage::set_battery_charging_status,
             ipod::BatteryChargingStatus_MAX>},
};

template <class Message, std::size_t count>
void Set(Message& message, const Field<Message> (&fields)[count], const char* key, GVariant* value)
{
    for (const Field<Message>& field : fields)
    {
        if (std::string(key) != field.key) continue;
        if (!g_variant_is_of_type(value, G_VARIANT_TYPE(field.type))) Refuse(key, std::string("type ") + field.type);
        return field.set(message, value, key);
    }
    throw std::runtime_error(std::string("no such field: ") + key);
}

struct UnrefVariant
{
    void operator()(GVariant* value) const { g_variant_unref(value); }
};

template <class Message, std::size_t count>
Message Read(GVariant* dictionary, const Field<Message> (&fields)[count])
{
    Message message;
    GVariantIter iterator;
    g_variant_iter_init(&iterator, dictionary);
    while (GVariant* next = g_variant_iter_next_value(&iterator))
    {
        const std::unique_ptr<GVariant, UnrefVariant> entry(next);
        const std::unique_ptr<GVariant, UnrefVariant> key(g_variant_get_child_value(next, 0));
        const std::unique_ptr<GVariant, UnrefVariant> boxed(g_variant_get_child_value(next, 1));
        const std::unique_ptr<GVariant, UnrefVariant> value(g_variant_get_variant(boxed.get()));
        Set(message, fields, g_variant_get_string(key.get(), nullptr), value.get());
    }
    return message;
}
}  // namespace

ipod::iPodPhoneCall ToPhoneCall(GVariant* fields)
{
    return Read(fields, kCallFields);
}

ipod::iPodBattery ToBattery(GVariant* fields)
{
    return Read(fields, kBatteryFields);
}
}  // namespace ipodsim
