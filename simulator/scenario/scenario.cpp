#include "scenario/scenario.h"

#include <algorithm>
#include <stdexcept>

#include "scenario/json_place.h"
#include "scenario/json_value.h"
#include "scenario/scenario_events.h"

namespace ipodsim
{
namespace
{
// "[json.exception...] parse error at line 2, column 5: what is wrong" without what people need not know.
std::string ForPeople(const std::string& message)
{
    const std::size_t line = message.find("line ");
    std::string text = line == std::string::npos ? message : message.substr(line);
    if (text.find("expected") == std::string::npos) text += "; expected valid JSON in UTF-8";
    return text;
}

std::string InWords(const Place& place)
{
    return "line " + std::to_string(place.line) + ", column " + std::to_string(place.column) + ": ";
}

// Its message quotes the number, and does not say where it stands.
std::string NumberTooLarge(const std::string& text, const std::string& message)
{
    const std::size_t begin = message.find('\'') + 1;
    const std::string number = message.substr(begin, message.rfind('\'') - begin);
    return InWords(PlaceAt(text, text.find(number))) + "expected a number that can be stored, not " + number;
}

nlohmann::json Parse(const std::string& text)
{
    try
    {
        return nlohmann::json::parse(text);
    }
    catch (const nlohmann::json::parse_error& error)
    {
        throw std::runtime_error(ForPeople(error.what()));
    }
    catch (const nlohmann::json::out_of_range& error)
    {
        throw std::runtime_error(NumberTooLarge(text, error.what()));
    }
}

ScenarioStep ToStep(const JsonValue& value)
{
    value.RequireMembers({"time", "event", "value"});
    ScenarioStep step;
    step.seconds = value.Member("time", "the seconds since the start").Seconds();
    const JsonValue event = value.Member("event", "the name of what happens");
    step.happen = EventFrom(event, value);
    step.event = event.Text("a name");
    return step;
}

Scenario ToScenario(const JsonValue& root, const std::string& text)
{
    root.RequireMembers({"$schema", "title", "description", "steps"});
    Scenario scenario;
    if (root.Has("title")) scenario.title = root.Member("title", "").Text("a text");
    if (root.Has("description")) root.Member("description", "").Text("a text");
    unsigned number = 0;
    for (const JsonValue& step : root.Member("steps", "an array of steps").Elements("steps"))
    {
        scenario.steps.push_back(ToStep(step));
        scenario.steps.back().line = PlaceOf(text, {"steps", std::to_string(number++)}).line;
    }
    std::stable_sort(scenario.steps.begin(), scenario.steps.end(),
                     [](const ScenarioStep& a, const ScenarioStep& b) { return a.seconds < b.seconds; });
    return scenario;
}

void Happen(Service& service, const ScenarioStep& step)
{
    try
    {
        step.happen(service);
    }
    catch (const std::exception& error)
    {
        service.Warn("scenario, line " + std::to_string(step.line) + ", " + step.event + ": " + error.what());
    }
}
}  // namespace

Scenario ParseScenario(const std::string& json)
{
    const nlohmann::json parsed = Parse(json);
    try
    {
        return ToScenario(JsonValue(parsed), json);
    }
    catch (const Misfit& misfit)
    {
        throw std::runtime_error(InWords(PlaceOf(json, misfit.path())) + misfit.what());
    }
}

void StartScenario(Service& service, const Scenario& scenario)
{
    double last = 0;
    for (const ScenarioStep& step : scenario.steps)
    {
        service.AfterSeconds(step.seconds, [&service, step] { Happen(service, step); });
        last = step.seconds;
    }
    service.AfterSeconds(last,
                         [&service, title = scenario.title]
                         {
                             if (service.scenarioEnded) service.scenarioEnded(title);
                         });
}
}  // namespace ipodsim
