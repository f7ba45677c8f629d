#include "actions/scenario.h"

#include <glib.h>

#include <algorithm>
#include <memory>
#include <utility>

namespace ipodsim
{
namespace
{
std::string OptionalText(const Json& document, const char* name)
{
    if (!document.contains(name)) return {};
    if (!document[name].is_string()) Reject(JsonPath().Member(name), "a string", document[name]);
    return document[name];
}

Scenario ToScenario(const Json& document)
{
    static const std::vector<std::string> kMembers = {"$schema", "title", "description", "steps"};
    const JsonPath root;
    const JsonPath steps = root.Member("steps");
    RequireMembers(document, kMembers, root);
    if (!document.contains("steps")) throw InvalidInput(steps, "expected an array of steps, got nothing");
    const Json& array = document["steps"];
    if (!array.is_array()) Reject(steps, "an array of steps", array);
    Scenario scenario{OptionalText(document, "title"), {}};
    OptionalText(document, "description");
    scenario.steps.reserve(array.size());
    for (std::size_t i = 0; i < array.size(); ++i)
        scenario.steps.push_back({ToStep(array[i], steps.Element(i), true), i});
    std::stable_sort(scenario.steps.begin(), scenario.steps.end(),
                     [](const ScenarioStep& a, const ScenarioStep& b) { return a.seconds < b.seconds; });
    return scenario;
}

// A running scenario. Only its next step is in the agenda: a long agenda slows everything else down.
class ScenarioRun : public std::enable_shared_from_this<ScenarioRun>
{
public:
    ScenarioRun(Service& service, Scenario scenario) : m_service(service), m_scenario(std::move(scenario)) {}

    void WaitForNext()
    {
        const double due = Over() ? 0 : m_scenario.steps[m_next].seconds;
        const double passed = m_service.TrackSeconds(static_cast<double>(g_get_monotonic_time() - m_start) / 1e6);
        m_service.AfterSeconds(due - passed, [self = shared_from_this()] { self->Next(); });
    }

private:
    bool Over() const { return m_next == m_scenario.steps.size(); }

    void Next()
    {
        if (!Over())
        {
            Run(m_scenario.steps[m_next++]);
            WaitForNext();
        }
        else if (m_service.scenarioEnded)
        {
            m_service.scenarioEnded(m_scenario.title);
        }
    }

    void Run(const ScenarioStep& step)
    {
        try
        {
            step.action->effect(m_service, step.value);
        }
        catch (const std::exception& error)
        {
            const JsonPath root;
            const JsonPath steps = root.Member("steps");
            m_service.Warn("scenario: " + steps.Element(step.index).Text() + ", " + step.action->name + ": " +
                           error.what());
        }
    }

    Service& m_service;
    Scenario m_scenario;
    std::size_t m_next = 0;
    gint64 m_start = g_get_monotonic_time();
};
}  // namespace

Scenario ParseScenario(const std::string& json)
{
    return ToScenario(ParseJson(json));
}

void StartScenario(Service& service, Scenario scenario)
{
    std::make_shared<ScenarioRun>(service, std::move(scenario))->WaitForNext();
}

Json Do(Service& service, const std::string& json)
{
    const Json document = ParseJson(json);
    Json result;
    if (document.is_object() && document.contains("steps"))
    {
        StartScenario(service, ToScenario(document));
    }
    else
    {
        const Step step = ToStep(document, JsonPath(), false);
        result = step.action->effect(service, step.value);
    }
    return result.is_null() ? Json::object() : result;
}
}  // namespace ipodsim
