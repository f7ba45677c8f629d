/// @file
/// Calls and battery of a phone, as something that can be shown.
#pragma once

#include <QBXIpodTypes.h>

#include "output/output.h"

namespace ctl
{
/// What is known of a call; the rest is left out.
Json CallJson(const iPodPhoneCall_t& call);

/// What is known of the battery; the rest is left out.
Json BatteryJson(const iPodBattery_t& battery);
}  // namespace ctl
