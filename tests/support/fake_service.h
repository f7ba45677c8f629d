/// @file
/// The fake service of the tests. It has no behavior of its own, so no simulator logic can hide a defect of the client.
#pragma once

#include <ipodsim_script.h>

namespace test
{
using FakeService = ipodsim::ScriptedService;
}  // namespace test
