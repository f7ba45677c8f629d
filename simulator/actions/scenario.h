/// @file
/// Scenarios: actions, each at its time.
#pragma once

#include <string>
#include <vector>

#include "actions/action.h"

namespace ipodsim
{
struct ScenarioStep : Step
{
    std::size_t index = 0;  ///< within the steps of the text
};

struct Scenario
{
    std::string title;
    std::vector<ScenarioStep> steps;  ///< in the order of time
};

/// @throws InvalidInput
Scenario ParseScenario(const std::string& json);

/// Does the steps, each at its time on the clock of the track. One that fails is a warning.
void StartScenario(Service& service, Scenario scenario);

/// Does a step at once, or starts a scenario: the object has an "event", or "steps".
/// @return  what the action returns; an empty object for most
/// @throws InvalidInput        it is neither, or has a value that is not valid
/// @throws std::runtime_error  the action is not possible now
Json Do(Service& service, const std::string& json);
}  // namespace ipodsim
