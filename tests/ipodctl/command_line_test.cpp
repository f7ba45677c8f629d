#include "verbs/verbs.h"

#include <cli/help.h>
#include <gtest/gtest.h>

#include "verbs/usage.h"

using namespace ctl;

namespace
{
std::vector<std::string> Parse(std::vector<std::string> words)
{
    std::vector<char*> argv;
    words.insert(words.begin(), "ipodctl");
    for (std::string& word : words) argv.push_back(word.data());
    CLI::App app;
    Options options;
    BuildProgram(app, options);
    return ToParse(static_cast<int>(argv.size()), argv.data(), app);
}

bool BuildsArgumentsOfSim(const std::vector<std::string>& arguments)
{
    CLI::App app;
    Options options;
    BuildProgram(app, options, arguments);
    return !cli::CommandsOf(*app.get_subcommand("sim")).empty();
}

using Words = std::vector<std::string>;
}  // namespace

TEST(CommandLine, GivesTheParserTheLastArgumentFirst)
{
    EXPECT_EQ(Parse({"ls", "--from", "3"}), (Words{"3", "--from", "ls"}));
}

TEST(CommandLine, DistinguishesANegativeTimeFromAnOption)
{
    EXPECT_EQ(Parse({"--json", "seek", "-1:30", "--verbose"}), (Words{"--verbose", "--back=1:30", "seek", "--json"}));
    EXPECT_EQ(Parse({"ls", "-10"}), (Words{"-10", "ls"}));
    EXPECT_EQ(Parse({"seek", "--", "-5"}), (Words{"-5", "--", "seek"}));
    EXPECT_EQ(Parse({"seek", "--back", "-5"}), (Words{"--back=-5", "seek"}));
}

TEST(CommandLine, RejectsAnUnknownCommand)
{
    EXPECT_THROW(Parse({"--json", "dance"}), Failure);
    EXPECT_THROW(Parse({"--color", "never", "dance", "seek"}), Failure);
    EXPECT_THROW(Parse({"--color=never", "dance"}), Failure);
    EXPECT_EQ(Parse({"--colour", "dance"}), (Words{"dance", "--colour"}));
    EXPECT_EQ(Parse({}), Words{});
}

TEST(CommandLine, BuildsOnlyTheArgumentsOfTheChosenVerb)
{
    EXPECT_FALSE(BuildsArgumentsOfSim({"--json", "--deadline", "5", "status", "--help"}));
    EXPECT_TRUE(BuildsArgumentsOfSim({"--color=never", "sim", "battery"}));
}

TEST(CommandLine, BuildsTheArgumentsOfAllVerbsForTheirDocuments)
{
    EXPECT_TRUE(BuildsArgumentsOfSim({}));
    EXPECT_TRUE(BuildsArgumentsOfSim({"--help"}));
    EXPECT_TRUE(BuildsArgumentsOfSim({"help", "sim"}));
}

TEST(OneOf, ListsTheAcceptedWords)
{
    EXPECT_EQ(OneOf({"off", "on"})("on"), "");
    EXPECT_EQ(OneOf({"off", "on"})("maybe"), "expected one of off, on, got 'maybe'");
}

TEST(UnknownWord, SuggestsTheMostSimilarWord)
{
    const Words words{"status", "stop", "seek"};
    EXPECT_EQ(UnknownWord("command", "staus", words, "try it").hint(), "did you mean 'status'?");
    EXPECT_EQ(UnknownWord("command", "STOP", words, "try it").hint(), "did you mean 'stop'?");
    EXPECT_STREQ(UnknownWord("command", "dance\033", words, "try it").what(), "unknown command 'dance\uFFFD'");
    for (const char* different : {"dance", "", "x", "it"})
        EXPECT_EQ(UnknownWord("command", different, words, "try it").hint(), "try it");
}

TEST(Help, IsWrappedAndNamesValuesInPlainWords)
{
    CLI::App app("Does what it does, at such length that the line has to be broken.", "test");
    cli::FormatHelp(app, 40);
    int number = 3;
    app.add_option("--from", number, "First index")->check(WholeNumber(0))->capture_default_str();
    app.add_option("time", number, "When")->required();
    app.add_subcommand("status", "Print the status")->group("Commands");
    EXPECT_EQ(app.help(),
              "Does what it does, at such length that\nthe line has to be broken.\n\n"
              "Usage: test [OPTIONS] TIME COMMAND\n\n"
              "Arguments:\n  TIME       When\n\n"
              "Options:\n  -h, --help\n             Print this help message and\n             exit\n"
              "  --from N   First index (default: 3)\n\n"
              "Commands:\n  status     Print the status\n\n\n");
}

TEST(WholeNumber, ReportsTheAcceptedRange)
{
    EXPECT_EQ(WholeNumber(1)("5"), "");
    EXPECT_EQ(WholeNumber(1)("0"), "expected an integer between 1 and 999999999, got '0'");
    EXPECT_EQ(WholeNumber(0)("-1"), "expected an integer between 0 and 999999999, got '-1'");
    EXPECT_EQ(WholeNumber(0)("4294967296"), "expected an integer between 0 and 999999999, got '4294967296'");
    EXPECT_EQ(WholeNumber(1)("0x10"), "expected an integer between 1 and 999999999, got '0x10'");
}

TEST(WholeNumber, IsDecimalDespiteLeadingZeros)
{
    CLI::App app;
    int number = 0;
    app.add_option("--number", number)->transform(WholeNumber(0));
    app.parse("--number 010");
    EXPECT_EQ(number, 10);
}

TEST(NumberUpTo, AcceptsTheWholeRange)
{
    EXPECT_EQ(cli::NumberUpTo(UINT32_MAX)("4294967295"), "");
    EXPECT_EQ(cli::NumberUpTo(UINT64_MAX)("18446744073709551615"), "");
    EXPECT_EQ(cli::NumberUpTo(UINT32_MAX)("4294967296"),
              "expected an integer between 0 and 4294967295, got '4294967296'");
    EXPECT_EQ(cli::NumberUpTo(9, 1)("9"), "");
    EXPECT_EQ(cli::NumberUpTo(9, 1)("0"), "expected an integer between 1 and 9, got '0'");
    for (const char* wrong : {"-1", "", "1x", " 1", "99999999999999999999"})
        EXPECT_NE(cli::NumberUpTo(UINT64_MAX)(wrong), "");
}

TEST(Seconds, AreFiniteAndPositive)
{
    for (const char* right : {"0.001", "1", "2.5", "1e3", "60"}) EXPECT_EQ(Seconds(1000)(right), "");
    for (const char* wrong : {"", "0", "-1", "nan", "inf", "1x", "0x10", " 1", "1001", "0.0001"})
        EXPECT_EQ(Seconds(1000)(wrong),
                  std::string("expected a number of seconds between 0.001 and 1000, got '") + wrong + "'");
}
