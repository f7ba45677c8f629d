/// @file
/// What the parts of "ipodctl sim" share.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "output/output.h"
#include "verbs/verb.h"

namespace ctl
{
/// An action of the simulator, as the schema of scenarios describes it.
struct SimAction
{
    std::string name;
    std::string summary;
    std::string follows;
    std::string example;
    Json fields;  ///< schemas by name; the first may be given without its name
    bool needsFields = false;
};

/// All actions, in the order of the simulator's table.
const std::vector<SimAction>& SimActions();

/// The largest scenario that the simulator accepts, in bytes.
std::size_t MostOfScenario();

/// The value of an action, from words such as "level=80"; null when there are none.
/// @throws Failure  kUsage: a field that the action does not have or that was given before, or a file that cannot be
/// read
Json ToSimValue(const SimAction& action, const std::vector<std::string>& words);

/// What can be typed behind an action: "level=", "charging-status=charged", "next".
std::vector<std::string> SimWords(const SimAction& action);

/// "sim calls".
Verb SimCallsVerb();
}  // namespace ctl
