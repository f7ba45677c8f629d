#include "output/output.h"

#include <gtest/gtest.h>

using ctl::Dump;
using ctl::Json;

TEST(Dump, WritesOneLineOfReadableJson)
{
    EXPECT_EQ(Dump(Json{{"name", "周明轩"}, {"n", 1}}), R"({"name":"周明轩","n":1})");
}

TEST(Dump, EscapesControlCharactersSoThatItReadsBackTheSame)
{
    const Json json{{"name", "a\033b\u009Bc\x7F\u202E\n"}};
    EXPECT_EQ(Dump(json), R"({"name":"a\u001bb\u009bc\u007f\u202e\n"})");
    EXPECT_EQ(Json::parse(Dump(json)), json);
}

TEST(Dump, ReplacesBrokenUtf8)
{
    EXPECT_EQ(Dump(Json{{"name", "a\xFF"}}), "{\"name\":\"a\uFFFD\"}");
}

TEST(Output, HasNoColorWithoutATerminal)
{
    testing::internal::CaptureStdout();
    const ctl::Output out(false);
    EXPECT_EQ(out.Paint(ctl::Color::Bold, "x"), "x");
    testing::internal::GetCapturedStdout();
}

TEST(Output, SendsOnlyAnswersToStandardOutput)
{
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    ctl::ReserveStandardOutput();

    std::printf("printed by a library\n");
    ctl::Output(true).Line(Json{{"a", 1}}, "text");
    std::fflush(stdout);

    EXPECT_EQ(testing::internal::GetCapturedStdout(), "{\"a\":1}\n");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "printed by a library\n");
}

TEST(Output, UsesTheRequestedFormat)
{
    testing::internal::CaptureStdout();
    ctl::Output(false).Line(Json{{"a", 1}}, "text");
    ctl::Output(true).Line(Json{{"a", 1}}, "text");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "text\n{\"a\":1}\n");
}
