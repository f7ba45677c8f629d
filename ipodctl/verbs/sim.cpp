// Controls the simulator: triggers actions, plays scenarios, and lists received calls.
#include <scenario_schema.h>

#include <algorithm>
#include <sstream>

#include "output/fields_json.h"
#include "output/output.h"
#include "output/text.h"
#include "session/session.h"
#include "verbs/usage.h"
#include "verbs/verbs.h"

namespace ctl
{
namespace
{
// A simulator action as described by the scenario schema.
struct SimAction
{
    std::string name;
    std::string summary;
    std::string follows;
    std::string example;
    Json fields;  // schemas by field name; the name of the first field is optional on the command line
    bool needsFields = false;
};

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
    const bool isFile = !text.empty() && text.front() == '@';
    return isFile ? ctl::ToJson(ReadFile(text.substr(1))) : Json(text);
}

Json ToFieldValue(const Json& field, const std::string& text);

// Parses an array element such as "ringing:3", whose parts follow the order of the schema.
Json Element(const Json& properties, std::string text)
{
    Json element = Json::object();
    for (const auto& [name, field] : properties.items())
    {
        const bool last = element.size() + 1 == properties.size();
        const std::size_t colon = last ? std::string::npos : text.find(':');
        element[name] = ToFieldValue(field, text.substr(0, colon));
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

Json ToFieldValue(const Json& field, const std::string& text)
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

// Returns all actions, in the order of the scenario schema.
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

// Returns the size limit of a scenario in bytes.
std::size_t MaxScenarioBytes()
{
    return ScenarioSchema()["x-most-bytes"];
}

// Converts words such as "level=80" to the value of an action; null without words. The simulator validates the values.
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
        value[name] = ToFieldValue(action.fields[name], alone ? word : word.substr(equals + 1));
    }
    if (value.is_null() && action.needsFields) throw Failure(kUsage, "missing argument: field", help);
    return value;
}

// Returns the completions for the fields of an action: "level=", "charging-status=charged", "next".
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

// Returns the result of the action, such as {"session": 1}.
Json DoOnSimulator(Context& context, const std::string& json)
{
    const VariantPtr reply = AskSimulator(context.session, "Do", g_variant_new("(s)", json.c_str()));
    const char* result = nullptr;
    g_variant_get(reply.get(), "(&s)", &result);
    return Json::parse(result);
}

// Strips "value." from the field path in the message: the user typed no such member.
Failure WithoutValue(const Failure& failure)
{
    constexpr char kMember[] = "value.";
    const std::string message = failure.what();
    return {failure.code(), message.rfind(kMember, 0) == 0 ? message.substr(sizeof(kMember) - 1) : message,
            failure.hint()};
}

Answer DoAction(Context& context, const SimAction& action, const std::vector<std::string>& words)
{
    const Json value = ToSimValue(action, words);
    Json step{{"event", action.name}};
    if (!value.is_null()) step["value"] = value;
    Answer answer{{{"verb", "sim " + action.name}}, ""};
    try
    {
        const Json result = DoOnSimulator(context, step.dump());
        for (const auto& [name, returned] : result.items())
        {
            answer.json[name] = returned;
            answer.text += name + " " + returned.dump();
        }
    }
    catch (const Failure& failure)
    {
        throw WithoutValue(failure);
    }
    return answer;
}

std::string DescriptionOf(const Json& field)
{
    std::string values;
    if (field.contains("enum")) values = ": " + Joined(field["enum"], ", ");
    if (field.value("type", "") == "boolean") values = ": on, off";
    if (field.contains("contentEncoding")) values = ": pairs of hexadecimal digits, or @FILE, @- for standard input";
    if (field.value("type", "") == "array") values = ": STATUS:SECONDS,...";
    return field["description"].get<std::string>() + values;
}

std::string Footer(const SimAction& action)
{
    std::vector<cli::HelpRow> rows;
    for (const auto& [name, field] : action.fields.items()) rows.push_back({name, DescriptionOf(field)});
    const std::string fields = cli::HelpSection("Fields, as FIELD=VALUE; for the first, VALUE alone is enough", rows);
    return "Emits: " + action.follows + "\n" + fields + "\nExamples:\n  ipodctl sim " + action.example;
}

struct SimChoice
{
    const CLI::App* app;
    const SimAction* action;
    std::shared_ptr<std::vector<std::string>> words;
};

SimChoice AddAction(CLI::App& app, const SimAction& action)
{
    const auto words = Argument<std::vector<std::string>>();
    CLI::App* const added = app.add_subcommand(action.name, action.summary);
    added->group("Actions");
    added->fallthrough();
    added->footer(Footer(action));
    if (!action.fields.empty())
        added->add_option("field", *words, "Field to set, as FIELD=VALUE; for the first field, VALUE alone is enough");
    return {added, &action, words};
}

const SimAction& ActionOf(const std::string& name)
{
    std::vector<std::string> names;
    for (const SimAction& action : SimActions())
    {
        if (action.name == name) return action;
        names.push_back(action.name);
    }
    throw UnknownWord("action", name, names, "try 'ipodctl sim actions'");
}

// Without an argument, lists the actions and their summaries. With one, lists its completions for shells.
Run BuildActions(CLI::App& app)
{
    const auto name = Argument<std::string>();
    app.add_option("action", *name, "List the words that can follow this action");
    return [name](Context& context) -> Answer
    {
        Json listed = Json::array();
        std::vector<std::vector<std::string>> rows;
        if (name->empty())
            for (const SimAction& action : SimActions()) rows.push_back({action.name, action.summary});
        else
            for (const std::string& word : SimWords(ActionOf(*name))) rows.push_back({word});
        for (const auto& row : rows) listed.push_back(row.front());
        return {{{"verb", "sim actions"}, {"words", listed}}, Table(rows, context.out.width())};
    };
}

// Prefixes errors in the scenario, which have a line or a step, with the file.
void PlayScenario(Context& context, const std::string& file, const std::string& scenario)
{
    try
    {
        DoOnSimulator(context, scenario);
    }
    catch (const Failure& failure)
    {
        if (failure.code() != kUsage) throw;
        throw Failure(kUsage, Printable(file) + ": " + failure.what());
    }
}

Run BuildScenario(CLI::App& app)
{
    const auto file = Argument<std::string>();
    app.add_option("file", *file, "File with the scenario, - for standard input")->required();
    return [file](Context& context) -> Answer
    {
        const auto bytes = ReadFile(*file, MaxScenarioBytes());
        const std::string text(bytes.begin(), bytes.end());
        if (text.find('\0') != std::string::npos ||
            g_utf8_validate(text.data(), static_cast<gssize>(text.size()), nullptr) == FALSE)
            throw Failure(kUsage, Printable(*file) + " is not valid UTF-8");
        PlayScenario(context, *file, text);
        return {{{"verb", "sim scenario"}}, ""};
    };
}

Run BuildSim(CLI::App& app)
{
    std::vector<SimChoice> choices;
    for (const SimAction& action : SimActions()) choices.push_back(AddAction(app, action));
    const Run others =
        AddVerbs(app, {{"scenario", "Play a scenario file", "ipodctl sim scenario drive.json", BuildScenario},
                       SimCallsVerb(),
                       {"actions", "List the actions, or the words that can follow one",
                        "ipodctl sim actions\nipodctl sim actions battery", BuildActions}});
    return [choices, others](Context& context)
    {
        const auto chosen =
            std::find_if(choices.begin(), choices.end(), [](const SimChoice& choice) { return choice.app->parsed(); });
        return chosen == choices.end() ? others(context) : DoAction(context, *chosen->action, *chosen->words);
    };
}
}  // namespace

std::vector<Verb> SimVerbs()
{
    return {{"sim", "Trigger simulator events, inject faults, list calls",
             "ipodctl sim call sequence=ringing:3,active:10,disconnected display-name=\"Li Lei\"\n"
             "ipodctl sim battery 80 charging-status=charging\n"
             "ipodctl sim fault delay=500@GetPlayStatus/3\n"
             "ipodctl sim calls",
             BuildSim}};
}
}  // namespace ctl
