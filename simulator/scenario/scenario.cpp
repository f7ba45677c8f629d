#include "scenario/scenario.h"

#include <glib.h>

#include <algorithm>
#include <memory>
#include <stdexcept>
#include <utility>

#include "scenario/json_text.h"
#include "scenario/json_value.h"
#include "scenario/scenario_events.h"

namespace ipodsim
{
namespace
{
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

Scenario ToScenario(const JsonValue& root)
{
    root.RequireMembers({"$schema", "title", "description", "steps"});
    Scenario scenario;
    if (root.Has("title")) scenario.title = root.Member("title", "").Text("a text");
    if (root.Has("description")) root.Member("description", "").Text("a text");
    for (const JsonValue& step : root.Member("steps", "an array of steps").Elements("steps"))
    {
        const std::size_t index = scenario.steps.size();
        scenario.steps.push_back(ToStep(step));
        scenario.steps.back().index = index;
    }
    std::stable_sort(scenario.steps.begin(), scenario.steps.end(),
                     [](const ScenarioStep& a, const ScenarioStep& b) { return a.seconds < b.seconds; });
    return scenario;
}

// A scenario on its way. Only its next step waits in the agenda, whose length is felt by everything else.
class Course : public std::enable_shared_from_this<Course>
{
public:
    Course(Service& service, Scenario scenario) : m_service(service), m_scenario(std::move(scenario)) {}

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
            step.happen(m_service);
        }
        catch (const std::exception& error)
        {
            m_service.Warn("scenario: " + ElementPath("steps", step.index) + ", " + step.event + ": " + error.what());
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
    if (json.size() > kLargestScenario) throw std::runtime_error("expected a scenario of at most 8 MiB");
    const nlohmann::json parsed = ParseJson(json);
    return ToScenario(JsonValue(parsed));
}

void StartScenario(Service& service, Scenario scenario)
{
    std::make_shared<Course>(service, std::move(scenario))->WaitForNext();
}
}  // namespace ipodsim
