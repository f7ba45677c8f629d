/// @file
/// Scenarios: timed sequences of actions.
#pragma once

#include <string>
#include <vector>

#include "actions/action.h"

namespace ipodsim
{
struct ScenarioStep : Step
{
    std::size_t index = 0;  ///< position among the steps of the text
};

struct Scenario
{
    std::string title;
    std::vector<ScenarioStep> steps;  ///< sorted by time
};

/// @throws InvalidInput
Scenario ParseScenario(const std::string& json);

/// Runs each step at its time on the track's clock. A step that fails logs a warning.
void StartScenario(Service& service, Scenario scenario);

/// Runs a step at once (an object with "event") or starts a scenario (an object with "steps").
/// @return  the action's result; an empty object for most actions
/// @throws InvalidInput        @p json is neither a step nor a scenario, or a value is invalid
/// @throws std::runtime_error  the action is not possible now
Json Do(Service& service, const std::string& json);
}  // namespace ipodsim
