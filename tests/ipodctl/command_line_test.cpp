#include "verbs/command_line.h"

#include <gtest/gtest.h>

using namespace ctl;

namespace
{
Run BuildNothing(CLI::App&)
{
    return [](Context&) { return Answer{}; };
}

std::vector<std::string> Parse(std::vector<std::string> words)
{
    std::vector<char*> argv;
    words.insert(words.begin(), "ipodctl");
    for (std::string& word : words) argv.push_back(word.data());
    return ToParse(static_cast<int>(argv.size()), argv.data(),
                   {{"seek", "", "", BuildNothing}, {"ls", "", "", BuildNothing}});
}

using Words = std::vector<std::string>;
}  // namespace

TEST(CommandLine, GivesTheParserTheLastArgumentFirst)
{
    EXPECT_EQ(Parse({"ls", "--from", "3"}), (Words{"3", "--from", "ls"}));
}

TEST(CommandLine, TellsANegativeTimeFromAnOption)
{
    EXPECT_EQ(Parse({"--json", "seek", "-1:30", "--verbose"}), (Words{"--verbose", "--back=1:30", "seek", "--json"}));
    EXPECT_EQ(Parse({"ls", "-10"}), (Words{"-10", "ls"}));
    EXPECT_EQ(Parse({"seek", "--", "-5"}), (Words{"-5", "--", "seek"}));
    EXPECT_EQ(Parse({"seek", "--back", "-5"}), (Words{"--back=-5", "seek"}));
}

TEST(CommandLine, RefusesAVerbThatItDoesNotKnow)
{
    EXPECT_THROW(Parse({"--json", "dance"}), Failure);
    EXPECT_THROW(Parse({""}), Failure);
    EXPECT_EQ(Parse({}), Words{});
}

TEST(WholeNumber, SaysWhatItWants)
{
    EXPECT_EQ(WholeNumber(1)("5"), "");
    EXPECT_EQ(WholeNumber(1)("0"), "'0' is no whole number from 1 on");
    EXPECT_EQ(WholeNumber(0)("-1"), "'-1' is no whole number from 0 on");
}

TEST(NumberUpTo, KnowsTheWholeRange)
{
    EXPECT_EQ(NumberUpTo(UINT32_MAX)("4294967295"), "");
    EXPECT_EQ(NumberUpTo(UINT64_MAX)("18446744073709551615"), "");
    EXPECT_EQ(NumberUpTo(UINT32_MAX)("4294967296"), "'4294967296' is no whole number from 0 to 4294967295");
    EXPECT_EQ(NumberUpTo(9, 1)("9"), "");
    EXPECT_EQ(NumberUpTo(9, 1)("0"), "'0' is no whole number from 1 to 9");
    for (const char* wrong : {"-1", "", "1x", " 1", "99999999999999999999"})
        EXPECT_NE(NumberUpTo(UINT64_MAX)(wrong), "");
}

TEST(Seconds, AreFiniteAndAboveNothing)
{
    for (const char* right : {"0.001", "1", "2.5", "1e3", "60"}) EXPECT_EQ(Seconds(1000)(right), "");
    for (const char* wrong : {"", "0", "-1", "nan", "inf", "1x", "1001", "0.0001"})
        EXPECT_EQ(Seconds(1000)(wrong), std::string("'") + wrong + "' is no number of seconds from 0.001 to 1000");
}
