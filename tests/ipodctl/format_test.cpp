#include "events/format.h"

#include <gtest/gtest.h>

#include "output/failure.h"

namespace ctl
{
namespace
{
const std::vector<std::string> kFields = {"title", "artist", "length", "state", "loud", "count"};

Json Values()
{
    return {{"title", "Blue Lanterns"}, {"artist", ""}, {"length", 337000}, {"state", "playing"}, {"loud", true}};
}

std::string Rendered(const std::string& text, const Json& values = Values())
{
    return Format::Parse(text, kFields).Render(values);
}

Failure FailureOf(const std::string& text)
{
    try
    {
        Format::Parse(text, kFields);
    }
    catch (const Failure& failure)
    {
        EXPECT_EQ(failure.code(), kUsage);
        return failure;
    }
    return {kDone, "none"};
}

std::string ErrorOf(const std::string& text)
{
    return FailureOf(text).what();
}

TEST(Format, PutsFieldsIntoText)
{
    EXPECT_EQ(Rendered("{{ title }} {{duration(length)}}"), "Blue Lanterns 5:37");
    EXPECT_EQ(Rendered("plain {text} 100 %"), "plain {text} 100 %");
    EXPECT_EQ(Rendered(""), "");
}

TEST(Format, AcceptsADefaultInBothSpellings)
{
    EXPECT_EQ(Rendered("{{ artist | default: \"?\" }}"), "?");
    EXPECT_EQ(Rendered("{{ default(artist, '?') }}"), "?");
    EXPECT_EQ(Rendered("{{ count | default: title }}"), "Blue Lanterns");
    EXPECT_EQ(Rendered("{{ title | default: \"?\" }}"), "Blue Lanterns");
}

TEST(Format, PrintsNothingForUnknownFields)
{
    EXPECT_EQ(Rendered("[{{ count }}]"), "[]");
    EXPECT_EQ(Rendered("[{{ duration(count) }}]"), "[]");
}

TEST(Format, ChainsFunctions)
{
    EXPECT_EQ(Rendered("{{ title | upper | cut: 6 }}|"), "BLUE …|");
    EXPECT_EQ(Rendered("{{ pad(lower(title), 15) }}|"), "blue lanterns  |");
    EXPECT_EQ(Rendered("{{ json(title) }}"), "\"Blue Lanterns\"");
}

TEST(Format, SupportsThreeEscapes)
{
    EXPECT_EQ(Rendered("a\\tb\\nc\\\\d\\e"), "a\tb\nc\\d\\e");
    EXPECT_EQ(Rendered("{{ 'a\\nb' }}"), "a\uFFFDb");
}

TEST(Format, MakesValuesSafeForTheTerminal)
{
    EXPECT_EQ(Rendered("{{ title }}", {{"title", "a\033[2Jb\u202e"}}), "a\uFFFD[2Jb\uFFFD");
    EXPECT_EQ(Rendered("{{ title | upper }}", {{"title", "\xFFz"}}), "\uFFFDZ");
}

TEST(Format, ReportsTheColumnAndTheExpectation)
{
    EXPECT_EQ(ErrorOf("{{ title"), "--format: column 9: expected }}, got the end of the template");
    EXPECT_EQ(ErrorOf("周明轩 {{ }}"),
              "--format: column 8: expected a field, a function, a number, or quoted text, "
              "got '}}'");
    EXPECT_EQ(ErrorOf("{{ titel }}"),
              "--format: column 4: expected a field such as title, artist, or state, got 'titel'");
    EXPECT_NE(ErrorOf("{{ shout(title) }}").find("column 4: expected a function (cut, default"), std::string::npos);
    EXPECT_NE(ErrorOf("{{ title | cut }}").find("column 12: expected cut with 2 arguments"), std::string::npos);
    EXPECT_NE(ErrorOf("{{ duration() }}").find("column 4: expected duration with 1 argument"), std::string::npos);
    EXPECT_NE(ErrorOf("{{ 'open }}").find("column 4: expected a closing '"), std::string::npos);
    EXPECT_NE(ErrorOf("{{ 99999999999 }}").find("column 4: expected a number of at most 9 digits"), std::string::npos);
}

TEST(Format, SuggestsTheMostSimilarName)
{
    EXPECT_EQ(FailureOf("{{ titel }}").hint(), "did you mean 'title'?");
    EXPECT_EQ(FailureOf("{{ title | upr }}").hint(), "did you mean 'upper'?");
    EXPECT_EQ(FailureOf("{{ xxxxxxxx }}").hint(), "ipodctl(1) describes fields and functions under TEMPLATES");
}

TEST(Format, LeavesPercentSignsInBracesAlone)
{
    EXPECT_EQ(Rendered("{% if title %}"), "{% if title %}");
}

TEST(Format, LimitsTheNestingDepth)
{
    std::string calls;
    for (int i = 0; i < 100000; ++i) calls += "upper(";
    EXPECT_NE(ErrorOf("{{ " + calls + " }}").find("nested functions"), std::string::npos);
    EXPECT_EQ(Rendered("{{ upper(lower(title)) }}"), "BLUE LANTERNS");
}
}  // namespace
}  // namespace ctl
