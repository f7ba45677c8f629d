#include "scenario/scenario_call.h"

#include <cstdint>
#include <limits>

#include "scenario/words.h"

namespace ipodsim
{
namespace
{
constexpr std::uint64_t kLastNumber = std::numeric_limits<std::uint32_t>::max();
// What JSON holds exactly everywhere.
constexpr std::uint64_t kLastTime = std::uint64_t{1} << 53U;

// Calls @p set with a member when it is there.
template <class Read, class Set>
void IfThere(const JsonValue& value, const char* name, Read read, Set set)
{
    if (value.Has(name)) set(read(value.Member(name, "")));
}

std::string Text(const JsonValue& value)
{
    return value.Text("a text");
}

template <class Enum>
auto WordOf(const Words& words)
{
    return [&words](const JsonValue& value) { return static_cast<Enum>(value.Word(words)); };
}

void ReadTexts(const JsonValue& value, ipod::iPodPhoneCall& call)
{
    IfThere(value, "remote-id", Text, [&](const std::string& text) { call.set_remote_id(text); });
    IfThere(value, "display-name", Text, [&](const std::string& text) { call.set_display_name(text); });
    IfThere(value, "call-uuid", Text, [&](const std::string& text) { call.set_calluuid(text); });
    IfThere(value, "address-book-id", Text, [&](const std::string& text) { call.set_addressbookid(text); });
    IfThere(value, "label", Text, [&](const std::string& text) { call.set_label(text); });
}

void ReadNumbers(const JsonValue& value, ipod::iPodPhoneCall& call)
{
    IfThere(value, "status", WordOf<ipod::PhoneCallStatus>(words::kCallStatus), [&](auto n) { call.set_status(n); });
    IfThere(value, "direction", WordOf<ipod::PhoneCallDirection>(words::kCallDirection),
            [&](auto n) { call.set_direction(n); });
    IfThere(value, "service", WordOf<ipod::CallStateService>(words::kCallService),
            [&](auto n) { call.set_service(n); });
    IfThere(value, "disconnect-reason", WordOf<ipod::CallStateDisconnectReason>(words::kCallReason),
            [&](auto n) { call.set_disconnect_reason(n); });
    IfThere(
        value, "is-conferenced", [](const JsonValue& is) { return is.Switch(); },
        [&](bool is) { call.set_is_conferenced(is); });
    IfThere(
        value, "conference-group", [](const JsonValue& group) { return group.Number(0, kLastNumber); },
        [&](std::uint64_t group) { call.set_conference_group(static_cast<std::uint32_t>(group)); });
    IfThere(
        value, "start-timestamp", [](const JsonValue& start) { return start.Number(0, kLastTime); },
        [&](std::uint64_t start) { call.set_start_timestamp(start); });
}

CallStep StepFrom(const JsonValue& value)
{
    value.RequireMembers({"status", "seconds"});
    CallStep step;
    step.status = WordOf<ipod::PhoneCallStatus>(words::kCallStatus)(value.Member("status", "the state of the call"));
    if (value.Has("seconds")) step.seconds = value.Member("seconds", "").Seconds();
    return step;
}
}  // namespace

std::pair<ipod::iPodPhoneCall, std::vector<CallStep>> CallFrom(const JsonValue& value)
{
    value.RequireMembers({"remote-id", "display-name", "status", "direction", "call-uuid", "address-book-id", "label",
                          "service", "is-conferenced", "conference-group", "disconnect-reason", "start-timestamp",
                          "sequence"});
    ipod::iPodPhoneCall call;
    ReadTexts(value, call);
    ReadNumbers(value, call);
    std::vector<CallStep> steps;
    if (value.Has("sequence"))
        for (const JsonValue& step : value.Member("sequence", "").Elements("steps")) steps.push_back(StepFrom(step));
    return {call, steps};
}

ipod::iPodBattery BatteryFrom(const JsonValue& value)
{
    value.RequireMembers({"level", "charging-status"});
    ipod::iPodBattery battery;
    IfThere(
        value, "level", [](const JsonValue& level) { return level.Number(0, kLastNumber); },
        [&](std::uint64_t level) { battery.set_battery_charge_level(static_cast<std::uint32_t>(level)); });
    IfThere(value, "charging-status", WordOf<ipod::BatteryChargingStatus>(words::kCharging),
            [&](auto status) { battery.set_battery_charging_status(status); });
    return battery;
}
}  // namespace ipodsim
