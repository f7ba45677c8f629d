#include "player/phone.h"

#include <optional>

#include "output/names.h"

namespace ctl
{
namespace
{
// Fields that the service did not send are left out.
template <class T>
void AddField(Json& fields, const char* name, const std::optional<T>& value)
{
    if (value) fields[name] = *value;
}

template <class T>
void AddName(Json& fields, const char* name, const std::optional<T>& value, std::string (*nameOf)(int))
{
    if (value) fields[name] = nameOf(*value);
}
}  // namespace

Json CallJson(const iPodPhoneCall_t& call)
{
    Json fields = Json::object();
    AddName(fields, "status", call.Status, CallStatusName);
    AddName(fields, "direction", call.Direction, CallDirectionName);
    AddField(fields, "name", call.DisplayName);
    AddField(fields, "remote", call.RemoteID);
    AddField(fields, "label", call.Label);
    AddName(fields, "service", call.Service, CallServiceName);
    if (!call.CallUUID.value_or("").empty()) fields["uuid"] = *call.CallUUID;
    AddField(fields, "address_book_id", call.AddressBookID);
    AddField(fields, "conferenced", call.IsConferenced);
    AddField(fields, "conference_group", call.ConferenceGroup);
    AddName(fields, "end", call.DisconnectReason, CallEndName);
    AddField(fields, "start", call.StartTimestamp);
    return fields;
}

Json BatteryJson(const iPodBattery_t& battery)
{
    Json fields = Json::object();
    AddField(fields, "percent", battery.BatteryChargeLevel);
    AddName(fields, "status", battery.BatteryChargingStatus, ChargingName);
    return fields;
}
}  // namespace ctl
