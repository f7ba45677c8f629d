/// @file
/// Declarations shared by the parts of "ipodctl sim".
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "output/output.h"
#include "verbs/verb.h"

namespace ctl
{
/// A simulator action as described by the scenario schema.
struct SimAction
{
    std::string name;
    std::string summary;
    std::string follows;
    std::string example;
    Json fields;  ///< schemas by field name; the name of the first field is optional on the command line
    bool needsFields = false;
};

/// Returns all actions, in the order of the scenario schema.
const std::vector<SimAction>& SimActions();

/// Returns the size limit of a scenario in bytes.
std::size_t MostOfScenario();

/// Converts words such as "level=80" to the value of an action; null without words.
/// @throws Failure  kUsage for an unknown, duplicate, or missing field, invalid UTF-8, or an unreadable file
Json ToSimValue(const SimAction& action, const std::vector<std::string>& words);

/// Returns the completions for the fields of an action: "level=", "charging-status=charged", "next".
std::vector<std::string> SimWords(const SimAction& action);

/// Returns the verb "sim calls".
Verb SimCallsVerb();
}  // namespace ctl
