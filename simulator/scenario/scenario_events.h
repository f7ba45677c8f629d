/// @file
/// The events of a scenario, by name.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "scenario/json_value.h"
#include "service/service.h"

namespace ipodsim
{
/// What a step lets happen: checks everything now, does it later.
/// @param name  the name of the event
/// @param step  the object with its "value", which may be missing where the event needs none
/// @throws ValidationError  there is no such event, or the value does not fit it
std::function<void(Service&)> EventFrom(const JsonValue& name, const JsonValue& step);

/// The names of all events.
std::vector<std::string> EventNames();
}  // namespace ipodsim
