/// @file
/// Scenarios: events at times, from a JSON text. Their form is described by scenario.schema.json.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "service/service.h"

namespace ipodsim
{
struct ScenarioStep
{
    double seconds = 0;  ///< since the start
    std::string event;
    unsigned line = 0;                     ///< of the text
    std::function<void(Service&)> happen;  ///< throws std::runtime_error when it cannot
};

struct Scenario
{
    std::string title;
    std::vector<ScenarioStep> steps;  ///< in the order of time
};

/// @throws std::runtime_error  malformed: "line 3, column 14: expected ..., not ..."
Scenario ParseScenario(const std::string& json);

/// Lets the steps happen, each at its time on the clock of the track. One that cannot is a warning.
void StartScenario(Service& service, const Scenario& scenario);
}  // namespace ipodsim
