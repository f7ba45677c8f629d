#include "scenario/scenario.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>
#include <set>
#include <stdexcept>

#include "scenario/json_place.h"
#include "scenario/scenario_events.h"

using ipodsim::ParseScenario;
using ipodsim::PlaceOf;

namespace
{
std::string ComplaintAboutScenario(const std::string& json)
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

TEST(JsonPlace, IsThatOfTheValue)
{
    const std::string json = "{\n  \"a\": [1, \"]\",\n    {\"b\\u0063\": true}]\n}\n";

    const auto place = PlaceOf(json, {"a", "2", "bc"});

    EXPECT_EQ(place.line, 3U);
    EXPECT_EQ(place.column, 17U);
}

TEST(JsonPlace, OfWhatIsMissingIsThatOfItsObject)
{
    const auto place = PlaceOf("[\n [{}]]", {"0", "0", "b"});

    EXPECT_EQ(place.line, 2U);
    EXPECT_EQ(place.column, 3U);
}

TEST(Scenario, HasItsStepsInTheOrderOfTime)
{
    const auto scenario = ParseScenario(R"({"title": "Two", "steps": [
        {"time": 2, "event": "button", "value": "next"},
        {"time": 0.5, "event": "eap-open"}]})");

    EXPECT_EQ(scenario.title, "Two");
    ASSERT_EQ(scenario.steps.size(), 2U);
    EXPECT_EQ(scenario.steps[0].event, "eap-open");
    EXPECT_EQ(scenario.steps[0].line, 3U);
    EXPECT_EQ(scenario.steps[1].line, 2U);
}

TEST(Scenario, ThatIsNoJsonIsToldWithItsPlace)
{
    EXPECT_EQ(ComplaintAboutScenario("{\n  \"steps\": [\n    {\"time\" 5}\n]}").rfind("line 3, column ", 0), 0U);
    EXPECT_NE(ComplaintAboutScenario("{\"steps\": [").find("expected"), std::string::npos);
    EXPECT_NE(ComplaintAboutScenario("{\"steps\": nul}").find("expected"), std::string::npos);
    EXPECT_EQ(ComplaintAboutScenario("").rfind("line 1, column 1: ", 0), 0U);
    EXPECT_EQ(ComplaintAboutScenario("{\"title\": \"\xFF\"}").rfind("line 1, column 12: ", 0), 0U);
}

TEST(Scenario, WithANumberThatIsTooLargeIsToldWithItsPlace)
{
    EXPECT_EQ(ComplaintAboutScenario("{\"steps\": [\n  {\"time\": 1e999}]}"),
              "line 2, column 12: expected a number that can be stored, not 1e999");
}

TEST(Scenario, ThatIsNestedDeeplyIsToldWithItsPlace)
{
    const std::string deep(100000, '[');

    EXPECT_EQ(ComplaintAboutScenario("{\"steps\": " + deep + std::string(deep.size(), ']') + "}")
                  .rfind("line 1, column 12: expected an object with time", 0),
              0U);
}

TEST(Scenario, ThatDoesNotFitIsToldWithPlaceAndWhatWasExpected)
{
    EXPECT_EQ(ComplaintAboutScenario("[]"),
              "line 1, column 1: expected an object with $schema, title, description, steps, "
              "not an array");
    EXPECT_EQ(ComplaintAboutScenario("{}"), "line 1, column 1: expected a member \"steps\", an array of steps");
    EXPECT_EQ(ComplaintAboutScenario("{\"steps\": 5}"), "line 1, column 11: expected an array of steps, not 5");
    EXPECT_EQ(ComplaintAboutScenario("{\"steps\": [],\n\"stesp\": []}"),
              "line 2, column 10: expected one of $schema, title, description, steps, not \"stesp\"");
    EXPECT_EQ(ComplaintAboutScenario("{\"steps\": [\n  {\"time\": -1, \"event\": \"button\"}]}"),
              "line 2, column 12: expected a number of seconds, from 0 to 604800, not -1");
    EXPECT_EQ(
        ComplaintAboutScenario("{\"steps\": [\n  {\"time\": 0, \"event\": \"button\",\n    \"value\": \"eject\"}]}"),
        "line 3, column 14: expected one of next, pause, play, previous, stop, not \"eject\"");
    EXPECT_EQ(ComplaintAboutScenario(Step(R"("event": "phone")")).rfind("line 1, column 33: expected one of app, ", 0),
              0U);
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
        EXPECT_NE(ComplaintAboutScenario(Step(step)).find("expected"), std::string::npos)
            << ComplaintAboutScenario(Step(step));
    }
}

TEST(Scenario, OfEachThatIsShippedIsWellFormed)
{
    int count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(IPOD_SCENARIOS))
    {
        SCOPED_TRACE(entry.path());
        EXPECT_EQ(ComplaintAboutScenario(ContentsOf(entry.path())), "none");
        ++count;
    }
    EXPECT_EQ(count, 3);
}

TEST(ScenarioSchema, KnowsTheSameEvents)
{
    const auto schema = nlohmann::json::parse(ContentsOf(IPOD_SCENARIO_SCHEMA));
    std::set<std::string> known;
    for (const auto& step : schema["properties"]["steps"]["items"]["oneOf"])
        known.insert(step["properties"]["event"]["const"].get<std::string>());

    const auto names = ipodsim::EventNames();

    EXPECT_EQ(known, (std::set<std::string>(names.begin(), names.end())));
}
