// Controls the simulator: triggers actions, plays scenarios, and lists received calls.
#include "verbs/sim.h"

#include <algorithm>

#include "output/file.h"
#include "output/text.h"
#include "session/bus.h"
#include "verbs/command_line.h"
#include "verbs/help.h"
#include "verbs/usage.h"
#include "verbs/verbs.h"

namespace ctl
{
namespace
{
constexpr int kWidth = 80;

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
    for (const std::string value : field.value("enum", Json::array())) values += (values.empty() ? ": " : ", ") + value;
    if (field.value("type", "") == "boolean") values = ": on, off";
    if (field.contains("contentEncoding")) values = ": pairs of hexadecimal digits, or @FILE, @- for standard input";
    if (field.value("type", "") == "array") values = ": STATUS:SECONDS,...";
    return field["description"].get<std::string>() + values;
}

std::string Footer(const SimAction& action)
{
    std::vector<HelpRow> rows;
    for (const auto& [name, field] : action.fields.items()) rows.push_back({name, DescriptionOf(field)});
    const std::string fields = HelpSection("Fields, as FIELD=VALUE; of the first the value alone", rows, kWidth);
    return "Emits: " + action.follows + "\n" + fields + "\nExamples:\n  ipodctl sim " + action.example;
}

struct Given
{
    std::vector<std::string> words;
};

struct SimChoice
{
    const CLI::App* app;
    const SimAction* action;
    std::shared_ptr<Given> given;
};

SimChoice AddAction(CLI::App& app, const SimAction& action)
{
    const auto given = Argument<Given>();
    CLI::App* const added = app.add_subcommand(action.name, action.summary);
    added->group("Actions");
    added->fallthrough();
    added->footer(Footer(action));
    if (!action.fields.empty())
        added->add_option("field", given->words,
                          "Value of a field, as FIELD=VALUE; of the first field the value alone");
    return {added, &action, given};
}

const SimAction& ActionOf(const std::string& name)
{
    std::vector<std::string> names;
    for (const SimAction& action : SimActions())
    {
        if (action.name == name) return action;
        names.push_back(action.name);
    }
    throw UnknownWord("action", name, names, "ipodctl sim actions lists all actions");
}

// Without an argument, lists the actions and their summaries. With one, lists its completions for shells.
Run BuildActions(CLI::App& app)
{
    const auto name = Argument<std::string>();
    app.add_option("action", *name, "List what can be typed behind this action");
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

Run BuildScenario(CLI::App& app)
{
    const auto file = Argument<std::string>();
    app.add_option("file", *file, "File with the scenario, - for standard input")->required();
    return [file](Context& context) -> Answer
    {
        const auto bytes = ReadFile(*file, MostOfScenario());
        const std::string text(bytes.begin(), bytes.end());
        if (text.find('\0') != std::string::npos ||
            g_utf8_validate(text.data(), static_cast<gssize>(text.size()), nullptr) == FALSE)
            throw Failure(kUsage, Printable(*file) + " is not valid UTF-8");
        DoOnSimulator(context, text);
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
                       {"actions", "List the actions, or what can be typed behind one",
                        "ipodctl sim actions\nipodctl sim actions battery", BuildActions}});
    return [choices, others](Context& context)
    {
        const auto chosen =
            std::find_if(choices.begin(), choices.end(), [](const SimChoice& choice) { return choice.app->parsed(); });
        return chosen == choices.end() ? others(context) : DoAction(context, *chosen->action, chosen->given->words);
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
