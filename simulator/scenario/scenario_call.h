/// @file
/// Phone calls and batteries of a scenario.
#pragma once

#include <ipod.pb.h>

#include <utility>
#include <vector>

#include "scenario/json_value.h"
#include "service/events.h"

namespace ipodsim
{
/// The call, and its steps where it is a sequence.
/// @throws ValidationError
std::pair<ipod::iPodPhoneCall, std::vector<CallStep>> CallFrom(const JsonValue& value);

/// @throws ValidationError
ipod::iPodBattery BatteryFrom(const JsonValue& value);
}  // namespace ipodsim
