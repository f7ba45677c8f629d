/// @file
/// Scenarios: events at times, from a JSON text. Their form is described by scenario.schema.json.
#pragma once

#include <cstddef>
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
    std::size_t index = 0;                 ///< within the steps of the text
    std::function<void(Service&)> happen;  ///< throws std::runtime_error when it cannot
};

struct Scenario
{
    std::string title;
    std::vector<ScenarioStep> steps;  ///< in the order of time
};

constexpr std::size_t kLargestScenario = std::size_t{8} << 20U;  // bytes of its text

/// @throws std::runtime_error  it is larger, is not JSON ("line 3, column 14: ..."), or has a value that is not valid
///         ("steps[3].time: expected ..., got ...")
Scenario ParseScenario(const std::string& json);

/// Lets the steps happen, each at its time on the clock of the track. One that cannot is a warning.
void StartScenario(Service& service, Scenario scenario);
}  // namespace ipodsim
