/// @file
/// The actions of the simulator: what a test, a user, or a scenario can make happen. The table (table.cpp) is the only
/// vocabulary; scenarios, the control interface, `ipodctl sim`, the JSON schema and the documentation follow it.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "actions/json.h"
#include "service/service.h"

namespace ipodsim
{
enum class FieldType
{
    Text,     ///< without NUL
    Name,     ///< a text that is not empty
    Word,     ///< one of a few; the effect receives its place in the list
    Integer,  ///< between least and most
    Seconds,  ///< between 0 and a week
    Switch,   ///< true or false
    Hex,      ///< bytes, as pairs of hexadecimal digits
    Fault,    ///< KIND[=PARAMETER][@MEMBER][/COUNT]
    List,     ///< of objects with the fields in items
};

struct Field
{
    const char* name;
    FieldType type;
    const char* meaning;
    bool required = false;
    std::uint64_t least = 0;
    std::uint64_t most = 0;
    std::vector<const char*> words = {};
    std::vector<Field> items = {};
};

/// Whether a step needs a value at all.
enum class StepValue
{
    Optional,
    Required,
    OneOfTheLastTwo,  ///< and of the last two fields exactly one
};

struct Action
{
    const char* name;
    const char* summary;        ///< begins with an imperative verb
    const char* follows;        ///< the signal of the service, or what else happens
    const char* example;        ///< the arguments of ipodctl sim
    std::vector<Field> fields;  ///< a value that is not an object is that of the first field
    StepValue value;
    /// @param value  validated: an object, words replaced by their numbers
    /// @return       what the caller learns; null for nothing
    /// @throws std::runtime_error  it is not possible now
    Json (*effect)(Service& service, const Json& value);
};

const std::vector<Action>& Actions();

/// An action with the value that it is to be done with.
struct Step
{
    double seconds = 0;  ///< since the start of the scenario
    const Action* action = nullptr;
    Json value;
};

/// @throws InvalidInput  it is not an object, or has other members than these
void RequireMembers(const Json& value, const std::vector<std::string>& known, const JsonPath& path);

/// @param timed  whether the step must have a "time"
/// @throws InvalidInput
Step ToStep(const Json& step, const JsonPath& path, bool timed);

/// The JSON schema of scenario files.
std::string ScenarioSchema();
}  // namespace ipodsim
