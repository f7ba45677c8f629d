// Phone calls and battery: protobuf messages inside the signals' byte arrays.
#include <gvariant_data.h>
#include <ipod.pb.h>

#include <string>

#include "QBXIpod_MediaPlayer_Client.h"
#include "internal/log.h"
#include "signal_callbacks.h"

namespace
{
using Bytes = std::vector<unsigned char>;

// An empty payload is ignored, although it would parse as a message without fields.
template <class Message>
bool Parse(GVariant* value, Message& message)
{
    Bytes bytes;
    gvariant_data_extract(bytes, value);
    return !bytes.empty() && message.ParseFromArray(bytes.data(), static_cast<int>(bytes.size()));
}

// Sets a member if the message has its field; narrower members keep the low bits.
#define COPY_FIELD(message, field, target, Member)                                                   \
    do                                                                                               \
    {                                                                                                \
        if ((message).has_##field())                                                                 \
            (target).Member = static_cast<decltype((target).Member)::value_type>((message).field()); \
    } while (false)

iPodPhoneCall_t ToPhoneCall(const ipod::iPodPhoneCall& message)
{
    iPodPhoneCall_t call;
    COPY_FIELD(message, remote_id, call, RemoteID);
    COPY_FIELD(message, display_name, call, DisplayName);
    COPY_FIELD(message, status, call, Status);
    COPY_FIELD(message, direction, call, Direction);
    COPY_FIELD(message, calluuid, call, CallUUID);
    COPY_FIELD(message, addressbookid, call, AddressBookID);
    COPY_FIELD(message, label, call, Label);
    COPY_FIELD(message, service, call, Service);
    COPY_FIELD(message, is_conferenced, call, IsConferenced);
    COPY_FIELD(message, conference_group, call, ConferenceGroup);
    COPY_FIELD(message, disconnect_reason, call, DisconnectReason);
    COPY_FIELD(message, start_timestamp, call, StartTimestamp);
    return call;
}

iPodBattery_t ToBattery(const ipod::iPodBattery& message)
{
    iPodBattery_t battery;
    COPY_FIELD(message, battery_charging_status, battery, BatteryChargingStatus);
    COPY_FIELD(message, battery_charge_level, battery, BatteryChargeLevel);
    return battery;
}

// Text of an optional member for the debug line.
const std::string& Shown(const std::string& text)
{
    return text;
}

std::string Shown(bool value)
{
    return value ? "true" : "false";
}

template <class Number>
std::string Shown(Number value)
{
    return std::to_string(value);
}

template <class T>
std::string Text(const std::optional<T>& member)
{
    return member ? std::string(Shown(*member)) : std::string("null");
}
}  // namespace

namespace qbx
{
gboolean CallBack_OnIpodPhoneCallChange(ComZarnLinuxIpod* proxy, GVariant* value, gpointer client)
{
    if (SubscriberIsGone(proxy)) return FALSE;
    ipod::iPodPhoneCall message;
    if (!Parse(value, message)) return FALSE;
    const iPodPhoneCall_t call = ToPhoneCall(message);
    // The strings are built whenever there is a category: only the log sink knows the level.
    LOG_DEBUG(
        "%s RemoteID:%s, DisplayName:%s, Status:%s, Direction:%s, CallUUID:%s, AddressBookID:%s, Label:%s, "
        "Service:%s, IsConferenced:%s, ConferenceGroup:%s, DisconnectReason:%s, StartTimestamp:%s",
        __func__, Text(call.RemoteID).c_str(), Text(call.DisplayName).c_str(), Text(call.Status).c_str(),
        Text(call.Direction).c_str(), Text(call.CallUUID).c_str(), Text(call.AddressBookID).c_str(),
        Text(call.Label).c_str(), Text(call.Service).c_str(), Text(call.IsConferenced).c_str(),
        Text(call.ConferenceGroup).c_str(), Text(call.DisconnectReason).c_str(), Text(call.StartTimestamp).c_str());
    return Deliver(proxy, client, &QBXIpod_MediaPlayer_Client::OnIpodPhoneCallChange, call);
}

gboolean CallBack_OnIpodBatteryChange(ComZarnLinuxIpod* proxy, GVariant* value, gpointer client)
{
    if (SubscriberIsGone(proxy)) return FALSE;
    ipod::iPodBattery message;
    if (!Parse(value, message)) return FALSE;
    const iPodBattery_t battery = ToBattery(message);
    LOG_DEBUG("%s BatteryChargingStatus:%s, BatteryChargeLevel:%s", __func__,
              Text(battery.BatteryChargingStatus).c_str(), Text(battery.BatteryChargeLevel).c_str());
    return Deliver(proxy, client, &QBXIpod_MediaPlayer_Client::OnIpodBatteryChange, battery);
}
}  // namespace qbx
