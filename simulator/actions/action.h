/// @file
/// The actions of the simulator: the events that a test, a user, or a scenario can trigger. table.cpp defines each
/// action once; scenarios, the control interface, `ipodctl sim`, the JSON schema, and the documentation are derived
/// from it.
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
    Text,     ///< text without NUL
    Name,     ///< non-empty text
    Word,     ///< one of Field::words; the effect receives its index
    Integer,  ///< between Field::least and Field::most
    Seconds,  ///< between 0 and a week
    Switch,   ///< true or false
    Hex,      ///< bytes, as pairs of hexadecimal digits
    Fault,    ///< KIND[=PARAMETER][@MEMBER][/COUNT]
    List,     ///< objects with the fields in Field::items
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
    OneOfTheLastTwo,  ///< required, with exactly one of the last two fields
};

struct Action
{
    const char* name;
    const char* summary;        ///< starts with an imperative verb
    const char* follows;        ///< the signal that the service emits, or another effect
    const char* example;        ///< arguments of `ipodctl sim`
    std::vector<Field> fields;  ///< a value that is not an object sets the first field
    StepValue value;
    /// @param value  the validated object, with words replaced by their indices
    /// @return       the result for the caller; null if there is none
    /// @throws std::runtime_error  the action is not possible now
    Json (*effect)(Service& service, const Json& value);
};

const std::vector<Action>& Actions();

/// An action and its value.
struct Step
{
    double seconds = 0;  ///< since the start of the scenario
    const Action* action = nullptr;
    Json value;
};

/// @throws InvalidInput  @p value is not an object or has an unknown member
void RequireMembers(const Json& value, const std::vector<std::string>& known, const JsonPath& path);

/// @param timed  whether the step must have a "time"
/// @throws InvalidInput
Step ToStep(const Json& step, const JsonPath& path, bool timed);

/// The JSON schema of scenario files.
std::string ScenarioSchema();
}  // namespace ipodsim
