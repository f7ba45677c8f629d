/// @file
/// Phone calls and batteries as dictionaries "a{sv}", the form in which the control interface takes them.
#pragma once

#include <glib.h>
#include <ipod.pb.h>

namespace ipodsim
{
/// @throws std::runtime_error  a field that is not known, of another type, or out of its range
ipod::iPodPhoneCall ToPhoneCall(GVariant* fields);
ipod::iPodBattery ToBattery(GVariant* fields);
}  // namespace ipodsim
