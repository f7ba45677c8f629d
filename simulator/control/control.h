/// @file
/// The control interface com.zarn.linux.ipod.Simulator; its XML describes the methods.
#pragma once

#include <simulator_dbus.h>

#include "service/service.h"

namespace ipodsim
{
constexpr char kControlName[] = "com.zarn.linux.ipod.Simulator";
constexpr char kControlPath[] = "/com/zarn/linux/ipod/simulator";

/// Handles every method of @p skeleton from now on.
void AnswerControl(ComZarnLinuxIpodSimulator* skeleton, Service& service);
}  // namespace ipodsim
