// Converts FIELD=VALUE words to JSON according to the scenario schema. The simulator validates the values.
#include <scenario_schema.h>

#include <algorithm>
#include <sstream>

#include "output/file.h"
#include "output/text.h"
#include "verbs/sim.h"
#include "verbs/usage.h"

namespace ctl
{
namespace
{
const Json& ScenarioSchema()
{
    static const Json schema = Json::parse(kScenarioSchema);
    return schema;
}

SimAction ToAction(const Json& step)
{
    const std::string name = step["properties"]["event"]["const"];
    const Json& value = ScenarioSchema()["$defs"][name];
    const Json& required = step["required"];
    return {name,
            value["title"],
            value["description"],
            value["x-example"],
            value["anyOf"][0]["properties"],
            std::find(required.begin(), required.end(), "value") != required.end()};
}

std::vector<std::string> NamesOf(const Json& object)
{
    std::vector<std::string> names;
    for (const auto& [name, value] : object.items()) names.push_back(name);
    return names;
}

Json Number(const std::string& text)
{
    const Json number = Json::parse(text, nullptr, false);
    return number.is_number() ? number : Json(text);
}

Json Switch(const std::string& text)
{
    if (text == "on" || text == "true") return true;
    if (text == "off" || text == "false") return false;
    return text;
}

// Returns digits unchanged and expands "@FILE" to the contents of the file.
Json HexDigits(const std::string& text)
{
    if (text.empty() || text.front() != '@') return text;
    constexpr char kDigits[] = "0123456789abcdef";
    std::string digits;
    for (const unsigned char byte : ReadFile(text.substr(1)))
    {
        digits += kDigits[byte >> 4U];
        digits += kDigits[byte & 15U];
    }
    return digits;
}

Json ToJson(const Json& field, const std::string& text);

// Parses an array element such as "ringing:3", whose parts follow the order of the schema.
Json Element(const Json& properties, std::string text)
{
    Json element = Json::object();
    for (const auto& [name, field] : properties.items())
    {
        const bool last = element.size() + 1 == properties.size();
        const std::size_t colon = last ? std::string::npos : text.find(':');
        element[name] = ToJson(field, text.substr(0, colon));
        if (colon == std::string::npos) break;
        text.erase(0, colon + 1);
    }
    return element;
}

Json List(const Json& properties, const std::string& text)
{
    Json list = Json::array();
    std::istringstream elements(text);
    for (std::string element; std::getline(elements, element, ',');) list.push_back(Element(properties, element));
    return list;
}

Json ToJson(const Json& field, const std::string& text)
{
    const std::string type = field.value("type", "");
    if (type == "integer" || type == "number") return Number(text);
    if (type == "boolean") return Switch(text);
    if (type == "array") return List(field["items"]["properties"], text);
    return field.contains("contentEncoding") ? HexDigits(text) : Json(text);
}

void RequireUtf8(const std::string& word)
{
    if (g_utf8_validate(word.data(), static_cast<gssize>(word.size()), nullptr) == FALSE)
        throw Failure(kUsage, "'" + Printable(word) + "' is not valid UTF-8");
}

// Returns the completions for a field's value.
Json ValuesOf(const Json& field)
{
    if (field.value("type", "") == "boolean") return {"on", "off"};
    return field.value("enum", field.value("examples", Json::array()));
}

// Detects a value without a field name. The schema has examples for first fields whose value may contain "=", such as
// that of a fault.
bool IsAlone(const SimAction& action, const std::string& name)
{
    if (action.fields.empty() || action.fields.contains(name)) return false;
    return name.empty() || action.fields.begin()->contains("examples");
}
}  // namespace

const std::vector<SimAction>& SimActions()
{
    static const std::vector<SimAction> actions = []
    {
        std::vector<SimAction> all;
        for (const Json& step : ScenarioSchema()["properties"]["steps"]["items"]["oneOf"])
            all.push_back(ToAction(step));
        return all;
    }();
    return actions;
}

std::size_t MostOfScenario()
{
    return ScenarioSchema()["x-most-bytes"];
}

Json ToSimValue(const SimAction& action, const std::vector<std::string>& words)
{
    Json value;
    const std::string help = "try 'ipodctl sim " + action.name + " --help'";
    for (const std::string& word : words)
    {
        RequireUtf8(word);
        const std::size_t equals = word.find('=');
        std::string name = equals == std::string::npos ? "" : word.substr(0, equals);
        const bool alone = IsAlone(action, name);
        if (!alone && name.empty()) throw Failure(kUsage, "unexpected argument '" + Printable(word) + "'", help);
        if (!alone && !action.fields.contains(name)) throw UnknownWord("field", name, NamesOf(action.fields), help);
        if (alone) name = action.fields.begin().key();
        if (value.contains(name)) throw Failure(kUsage, name + ": can be given only once", help);
        value[name] = ToJson(action.fields[name], alone ? word : word.substr(equals + 1));
    }
    if (value.is_null() && action.needsFields) throw Failure(kUsage, "missing field", help);
    return value;
}

std::vector<std::string> SimWords(const SimAction& action)
{
    std::vector<std::string> words;
    for (const auto& [name, field] : action.fields.items())
    {
        const bool first = name == action.fields.begin().key();
        const Json values = ValuesOf(field);
        if (values.empty()) words.push_back(name + "=");
        for (const std::string value : values) words.push_back((first ? "" : name + "=") + value);
    }
    return words;
}
}  // namespace ctl
