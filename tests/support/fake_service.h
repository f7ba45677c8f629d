/// @file
/// The service of the tests. It does nothing by itself: no logic of the simulator can hide a fault of the client.
#pragma once

#include <ipodsim_script.h>

namespace test
{
using FakeService = ipodsim::ScriptedService;
}  // namespace test
