/// @file
/// The fake service of the tests. Tests define all of its behavior, so no simulator logic can hide a defect of the
/// client.
#pragma once

#include <ipodsim_script.h>

namespace test
{
using FakeService = ipodsim::ScriptedService;
using ipodsim::Reply;
}  // namespace test
