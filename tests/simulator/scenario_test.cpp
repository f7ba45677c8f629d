#include "actions/scenario.h"

#include <gtest/gtest.h>

#include <ctime>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>
#include <stdexcept>

using ipodsim::ParseScenario;

namespace
{
// Sanitizers and emulators are several times slower; without them the parser needs a third of this.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__) || !defined(__x86_64__)
constexpr std::clock_t kSecond = 20 * CLOCKS_PER_SEC;
#else
constexpr std::clock_t kSecond = CLOCKS_PER_SEC;
#endif

std::string ScenarioError(const std::string& json)
{
    try
    {
        ParseScenario(json);
        return "none";
    }
    catch (const std::runtime_error& error)
    {
        return error.what();
    }
}

std::string Step(const std::string& rest)
{
    return R"({"steps": [{"time": 0, )" + rest + "}]}";
}

std::string ContentsOf(const std::filesystem::path& file)
{
    std::ifstream in(file);
    return {std::istreambuf_iterator<char>(in), {}};
}
}  // namespace

TEST(Scenario, SortsItsStepsByTime)
{
    const auto scenario = ParseScenario(R"({"title": "Two", "steps": [
        {"time": 2, "event": "button", "value": "next"},
        {"time": 0.5, "event": "eap-open"}]})");

    EXPECT_EQ(scenario.title, "Two");
    ASSERT_EQ(scenario.steps.size(), 2U);
    EXPECT_STREQ(scenario.steps[0].action->name, "eap-open");
    EXPECT_EQ(scenario.steps[0].index, 1U);
    EXPECT_EQ(scenario.steps[1].index, 0U);
}

TEST(Scenario, ReportsLineAndColumnOfSyntaxErrors)
{
    EXPECT_EQ(ScenarioError("{\n  \"steps\": [\n    {\"time\" 5}\n]}").rfind("line 3, column ", 0), 0U);
    EXPECT_NE(ScenarioError("{\"steps\": [").find("expected"), std::string::npos);
    EXPECT_NE(ScenarioError("{\"steps\": nul}").find("expected"), std::string::npos);
    EXPECT_EQ(ScenarioError("").rfind("line 1, column 1: ", 0), 0U);
    EXPECT_EQ(ScenarioError("{\"title\": \"\xFF\"}").rfind("line 1, column 12: ", 0), 0U);
}

TEST(Scenario, ReportsPathAndExpectationOfInvalidValues)
{
    const std::string deep(100000, '[');
    const std::pair<std::string, const char*> cases[] = {
        {"[]", "expected an object with $schema, title, description, steps, got an array"},
        {"{}", "steps: expected an array of steps, got nothing"},
        {R"({"steps": 5})", "steps: expected an array of steps, got 5"},
        {R"({"steps": [], "stesp": []})",
         "stesp: unknown member, expected one of $schema, title, description, steps (did you mean 'steps'?)"},
        {R"({"steps": [5]})", "steps[0]: expected an object with time, event, value, got 5"},
        {R"({"steps": [{"event": "eap-open"}]})", "steps[0].time: expected the seconds since the start, got nothing"},
        {R"({"steps": [{"time": -1, "event": "button"}]})",
         "steps[0].time: expected a number of seconds between 0 and 604800, got -1"},
        {R"({"steps": [{"time": 0, "event": "eap-open"}, {"time": 0, "event": "button", "value": "eject"}]})",
         "steps[1].value: expected one of play, pause, stop, next, previous, got \"eject\""},
        {Step(R"("event": "battery", "value": {"level": "full"})"),
         "steps[0].value.level: expected an integer between 0 and 4294967295, got \"full\""},
        {Step(R"("event": "call", "value": {"sequence": [{"status": "active"}, {"seconds": 1}]})"),
         "steps[0].value.sequence[1].status: expected a value, got nothing"},
        {Step(R"("event": "clear-faults", "value": {"all": true})"),
         "steps[0].value.all: unknown member, expected none"},
        {R"({"steps": [], "title": "", "steps": []})", "steps: expected this member once, got it twice"},
        {Step(R"("event": "battery", "value": {"level": 1, "l\u0065vel": 2})"),
         "steps[0].value.level: expected this member once, got it twice"},
        {R"({"steps": [], "title": [[], {}, [1, 1e999]]})", "title[2][1]: expected a number within range, got 1e999"},
        {R"({"steps": [{"time": 1e999}]})", "steps[0].time: expected a number within range, got 1e999"},
        {"{\"steps\": " + deep + std::string(deep.size(), ']') + "}",
         "steps[0]: expected an object with time, event, value, got an array"},
    };
    for (const auto& [json, complaint] : cases) EXPECT_EQ(ScenarioError(json), complaint) << json.substr(0, 200);
}

TEST(Scenario, ParsesEightMiBWithinASecondOfCpuTime)
{
    const std::string step = R"(,{"time": 1.5, "event": "battery", "value": {"level": 80}})";
    std::string json = R"({"steps": [{"time": 0, "event": "clear-faults"})";
    while (json.size() + step.size() + 2 <= ipodsim::kMostJson) json += step;

    const std::clock_t begin = std::clock();
    EXPECT_GT(ParseScenario(json + "]}").steps.size(), 100000U);
    EXPECT_LT(std::clock() - begin, kSecond);
}

TEST(Scenario, RejectsMoreThanEightMiB)
{
    const std::string json = R"({"steps": []})";
    const std::size_t most = std::size_t{8} << 20U;

    EXPECT_EQ(ScenarioError(json + std::string(most - json.size(), ' ')), "none");
    EXPECT_EQ(ScenarioError(json + std::string(most - json.size() + 1, ' ')), "expected a scenario of at most 8 MiB");
}

TEST(Scenario, ChecksEveryValue)
{
    for (const char* step : {R"("event": "call")",
                             R"("event": "call", "value": {"status": 9})",
                             R"("event": "call", "value": {"nmae": ""})",
                             R"("event": "call", "value": {"sequence": [{"seconds": 1}]})",
                             R"("event": "battery", "value": {"level": -1})",
                             R"("event": "battery", "value": {"charging-status": "full"})",
                             R"("event": "carplay", "value": {})",
                             R"("event": "carlife", "value": "maybe")",
                             R"("event": "wireless", "value": {"available": 1})",
                             R"("event": "pairing", "value": {"address": "", "hex": "0"})",
                             R"("event": "location", "value": "on")",
                             R"("event": "source", "value": null)",
                             R"("event": "app", "value": 5)",
                             R"("event": "attach", "value": "")",
                             R"("event": "attach", "value": "a\u0000b")",
                             R"("event": "detach", "value": [])",
                             R"("event": "eap-open", "value": {"protocol": 256})",
                             R"("event": "eap-close", "value": {"session": 0})",
                             R"("event": "eap-data", "value": {})",
                             R"("event": "eap-data", "value": {"text": "a", "hex": "00"})",
                             R"("event": "fault", "value": "dely")",
                             R"("event": "clear-faults", "value": {"all": true})"})
    {
        SCOPED_TRACE(step);
        EXPECT_NE(ScenarioError(Step(step)).find("expected"), std::string::npos) << ScenarioError(Step(step));
    }
}

TEST(Scenario, IsWellFormedIfShipped)
{
    int count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(IPOD_SCENARIOS))
    {
        SCOPED_TRACE(entry.path());
        EXPECT_EQ(ScenarioError(ContentsOf(entry.path())), "none");
        ++count;
    }
    EXPECT_EQ(count, 3);
}

TEST(Scenario, SuggestsTheNearestName)
{
    EXPECT_NE(ScenarioError(Step(R"("event": "buton")")).find("got \"buton\""), std::string::npos);
    EXPECT_NE(ScenarioError(Step(R"("event": "buton")")).find("(did you mean 'button'?)"), std::string::npos);
    EXPECT_EQ(ScenarioError(Step(R"("event": "battery", "value": {"levle": 4})")),
              "steps[0].value.levle: unknown member, expected one of level, charging-status (did you mean 'level'?)");
    EXPECT_NE(ScenarioError(Step(R"("event": "carlife", "value": "detcted")")).find("(did you mean 'detected'?)"),
              std::string::npos);
}

TEST(Scenario, AcceptsAValueForTheFirstFieldInsteadOfAnObject)
{
    EXPECT_EQ(ParseScenario(Step(R"("event": "battery", "value": 80)")).steps[0].value,
              ParseScenario(Step(R"("event": "battery", "value": {"level": 80})")).steps[0].value);
    EXPECT_EQ(ParseScenario(Step(R"("event": "carplay", "value": "unsupported")")).steps[0].value["status"], 2);
}

TEST(ScenarioSchema, DescribesEachAction)
{
    const auto schema = nlohmann::json::parse(ipodsim::ScenarioSchema());

    for (const ipodsim::Action& action : ipodsim::Actions())
    {
        SCOPED_TRACE(action.name);
        const auto& fields = schema["$defs"][action.name]["anyOf"][0]["properties"];
        ASSERT_EQ(fields.size(), action.fields.size());
        for (const ipodsim::Field& field : action.fields) EXPECT_EQ(fields[field.name]["description"], field.meaning);
    }
}
