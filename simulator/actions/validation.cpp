// Validates steps against the table of actions, and converts the table to a JSON schema.
#include <algorithm>
#include <cstdlib>
#include <iterator>

#include "actions/action.h"
#include "faults/faults.h"
#include "faults/nearest.h"

namespace ipodsim
{
namespace
{
using Schema = nlohmann::ordered_json;
constexpr std::uint64_t kWeek = std::uint64_t{7} * 24 * 3600;

std::string Listed(const std::vector<std::string>& names)
{
    std::string text;
    for (const std::string& name : names) text += (text.empty() ? "" : ", ") + name;
    return text;
}

template <class Rows>
std::vector<std::string> NamesOf(const Rows& rows)
{
    std::vector<std::string> names;
    for (const auto& row : rows) names.emplace_back(row.name);
    return names;
}

// "one of a, b, c".
std::string OneOf(const std::vector<std::string>& names)
{
    return "one of " + Listed(names);
}

std::size_t PlaceOf(const std::vector<std::string>& words, const Json& value, const JsonPath& path)
{
    const auto found =
        value.is_string() ? std::find(words.begin(), words.end(), value.get_ref<const std::string&>()) : words.end();
    if (found != words.end()) return static_cast<std::size_t>(found - words.begin());
    Reject(path, OneOf(words) + (value.is_string() ? NearestHint(value, words) : std::string()), value);
}

const Json& Required(const Json& value, const char* name, const char* what, const JsonPath& path)
{
    if (!value.contains(name)) throw InvalidInput(path.Member(name), std::string("expected ") + what + ", got nothing");
    return value[name];
}

void CheckText(const Json& value, const char* what, const JsonPath& path)
{
    if (!value.is_string()) Reject(path, what, value);
    if (value.get_ref<const std::string&>().find('\0') != std::string::npos)
        Reject(path, std::string(what) + " without NUL", value);
}

void CheckHex(const Json& value, const JsonPath& path)
{
    constexpr char kExpected[] = "pairs of hexadecimal digits";
    CheckText(value, kExpected, path);
    const auto& digits = value.get_ref<const std::string&>();
    if (digits.size() % 2 != 0 || digits.find_first_not_of("0123456789abcdefABCDEF") != std::string::npos)
        Reject(path, kExpected, value);
}

void CheckFault(const Json& value, const JsonPath& path)
{
    CheckText(value, "a fault, as KIND[=PARAMETER][@MEMBER][/COUNT]", path);
    try
    {
        ParseFault(value.get<std::string>());
    }
    catch (const std::runtime_error& error)
    {
        throw InvalidInput(path, error.what());
    }
}

void CheckInteger(const Field& field, const Json& value, const JsonPath& path)
{
    const bool fits = value.is_number_unsigned() && value.get<std::uint64_t>() >= field.least &&
                      value.get<std::uint64_t>() <= field.most;
    if (!fits)
        Reject(path, "an integer between " + std::to_string(field.least) + " and " + std::to_string(field.most), value);
}

void CheckSeconds(const Json& value, const JsonPath& path)
{
    const bool fits = value.is_number() && value.get<double>() >= 0 && value.get<double>() <= double{kWeek};
    if (!fits) Reject(path, "a number of seconds between 0 and " + std::to_string(kWeek), value);
}

Json CheckedObject(const std::vector<Field>& fields, const Json& value, const JsonPath& path);

Json CheckedList(const Field& field, const Json& value, const JsonPath& path)
{
    if (!value.is_array()) Reject(path, "an array of steps", value);
    Json list = Json::array();
    for (std::size_t i = 0; i < value.size(); ++i)
        list.push_back(CheckedObject(field.items, value[i], path.Element(i)));
    return list;
}

Json Checked(const Field& field, const Json& value, const JsonPath& path)
{
    switch (field.type)
    {
        case FieldType::Text:
        case FieldType::Name:
            CheckText(value, "a string", path);
            if (field.type == FieldType::Name && value == "") Reject(path, "a non-empty name", value);
            return value;
        case FieldType::Word:
            return PlaceOf({field.words.begin(), field.words.end()}, value, path);
        case FieldType::Integer:
            CheckInteger(field, value, path);
            return value;
        case FieldType::Seconds:
            CheckSeconds(value, path);
            return value;
        case FieldType::Switch:
            if (!value.is_boolean()) Reject(path, "true or false", value);
            return value;
        case FieldType::Hex:
            CheckHex(value, path);
            return value;
        case FieldType::Fault:
            CheckFault(value, path);
            return value;
        case FieldType::List:
            return CheckedList(field, value, path);
    }
    std::abort();
}

Json CheckedObject(const std::vector<Field>& fields, const Json& value, const JsonPath& path)
{
    RequireMembers(value, NamesOf(fields), path);
    Json checked = Json::object();
    for (const Field& field : fields)
    {
        if (!field.required && !value.contains(field.name)) continue;
        checked[field.name] = Checked(field, Required(value, field.name, "a value", path), path.Member(field.name));
    }
    return checked;
}

Json CheckedValue(const Action& action, const Json& value, const JsonPath& path)
{
    const bool alone = !value.is_object() && !action.fields.empty();
    if (alone && (value.is_null() || value.is_array())) RequireMembers(value, NamesOf(action.fields), path);
    Json checked;
    if (alone)
        checked = {{action.fields.front().name, Checked(action.fields.front(), value, path)}};
    else
        checked = CheckedObject(action.fields, value, path);
    if (action.value != StepValue::OneOfTheLastTwo) return checked;
    const char* const one = action.fields.rbegin()->name;
    const char* const other = std::next(action.fields.rbegin())->name;
    if (checked.contains(one) == checked.contains(other))
        Reject(path, std::string("either ") + other + " or " + one, value);
    return checked;
}

Schema SchemaOf(const Field& field);

Schema SchemaOf(const std::vector<Field>& fields)
{
    Schema schema{{"type", "object"}, {"properties", Schema::object()}};
    Schema required = Schema::array();
    for (const Field& field : fields)
    {
        schema["properties"][field.name] = SchemaOf(field);
        if (field.required) required.push_back(field.name);
    }
    if (!required.empty()) schema["required"] = required;
    schema["additionalProperties"] = false;
    return schema;
}

Schema TypeOf(const Field& field)
{
    switch (field.type)
    {
        case FieldType::Text:
            return {{"type", "string"}};
        case FieldType::Name:
            return {{"type", "string"}, {"minLength", 1}};
        case FieldType::Word:
            return {{"enum", field.words}};
        case FieldType::Integer:
            return {{"type", "integer"}, {"minimum", field.least}, {"maximum", field.most}};
        case FieldType::Seconds:
            return {{"type", "number"}, {"minimum", 0}, {"maximum", kWeek}};
        case FieldType::Switch:
            return {{"type", "boolean"}};
        case FieldType::Hex:
            return {{"type", "string"}, {"contentEncoding", "base16"}, {"pattern", "^([0-9A-Fa-f]{2})*$"}};
        case FieldType::Fault:
            return {{"type", "string"}, {"pattern", "^[^/]+(/[0-9]+)?$"}, {"examples", FaultKinds()}};
        case FieldType::List:
            return {{"type", "array"}, {"items", SchemaOf(field.items)}};
    }
    std::abort();
}

Schema SchemaOf(const Field& field)
{
    Schema schema = TypeOf(field);
    schema["description"] = field.meaning;
    return schema;
}

// The schema of the value: an object, or the value of its first field.
Schema SchemaOf(const Action& action)
{
    Schema object = SchemaOf(action.fields);
    if (action.value == StepValue::OneOfTheLastTwo)
        for (auto field = action.fields.rbegin(); field != action.fields.rbegin() + 2; ++field)
            object["oneOf"].push_back({{"required", {field->name}}});
    Schema schema{{"title", action.summary}, {"description", action.follows}, {"x-example", action.example}};
    schema["anyOf"].push_back(object);
    const bool alone = std::count_if(action.fields.begin(), action.fields.end(),
                                     [](const Field& field) { return field.required; }) <= 1;
    if (alone && !action.fields.empty() && action.value != StepValue::OneOfTheLastTwo)
        schema["anyOf"].push_back(TypeOf(action.fields.front()));
    return schema;
}

Schema StepSchema(const Action& action)
{
    Schema step{{"type", "object"},
                {"properties",
                 {{"time", {{"$ref", "#/$defs/time"}}},
                  {"event", {{"const", action.name}}},
                  {"value", {{"$ref", std::string("#/$defs/") + action.name}}}}},
                {"required", {"time", "event"}},
                {"additionalProperties", false}};
    if (action.value != StepValue::Optional) step["required"].push_back("value");
    return step;
}
}  // namespace

void RequireMembers(const Json& value, const std::vector<std::string>& known, const JsonPath& path)
{
    if (!value.is_object()) Reject(path, known.empty() ? "an object" : "an object with " + Listed(known), value);
    for (const auto& [name, member] : value.items())
    {
        if (std::find(known.begin(), known.end(), name) != known.end()) continue;
        throw InvalidInput(path.Member(name), "unknown member, expected " + (known.empty() ? "none" : OneOf(known)) +
                                                  NearestHint(name, known));
    }
}

Step ToStep(const Json& step, const JsonPath& path, bool timed)
{
    static const std::vector<std::string> kMembers = {"time", "event", "value"};
    static const std::vector<std::string> kNames = NamesOf(Actions());
    static const Json kNothing = Json::object();
    RequireMembers(step, kMembers, path);
    Step result;
    if (timed || step.contains("time"))
    {
        const Json& time = Required(step, "time", "the seconds since the start", path);
        CheckSeconds(time, path.Member("time"));
        result.seconds = time.get<double>();
    }
    const Json& name = Required(step, "event", "the name of an action", path);
    result.action = &Actions()[PlaceOf(kNames, name, path.Member("event"))];
    const bool optional = result.action->value == StepValue::Optional && !step.contains("value");
    const Json& value = optional ? kNothing : Required(step, "value", "the fields of the action", path);
    result.value = CheckedValue(*result.action, value, path.Member("value"));
    return result;
}

std::string ScenarioSchema()
{
    Schema schema{{"$schema", "https://json-schema.org/draft/2020-12/schema"},
                  {"title", "Scenario of ipod-simulator"},
                  {"description", "Actions, each at its time."},
                  {"type", "object"},
                  {"properties",
                   {{"$schema", {{"type", "string"}}},
                    {"title", {{"type", "string"}}},
                    {"description", {{"type", "string"}}},
                    {"steps", {{"type", "array"}, {"items", {{"oneOf", Schema::array()}}}}}}},
                  {"required", {"steps"}},
                  {"additionalProperties", false},
                  {"x-most-bytes", kMostJson}};
    schema["$defs"]["time"] = {
        {"type", "number"}, {"minimum", 0}, {"maximum", kWeek}, {"description", "Seconds since the start"}};
    for (const Action& action : Actions())
    {
        schema["properties"]["steps"]["items"]["oneOf"].push_back(StepSchema(action));
        schema["$defs"][action.name] = SchemaOf(action);
    }
    return schema.dump(2) + "\n";
}
}  // namespace ipodsim
