#include "verbs/complete.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "verbs/verbs.h"

using namespace ctl;

namespace
{
using Words = std::vector<std::string>;

Run BuildPlay(CLI::App& app)
{
    static std::string entry;
    app.add_option("entry", entry, "Index or name");
    return {};
}

Run BuildQueue(CLI::App& app)
{
    static std::string index;
    app.add_option("index", index, "Entry");
    return {};
}

Run BuildEvents(CLI::App& app)
{
    static Words names;
    static std::string until;
    static std::string command;
    static bool wait = false;
    app.add_option("event", names, "Only these")->check(OneOf({"track", "device"}));
    app.add_option("--until", until, "The last")->check(OneOf({"track", "device"}))->type_name("EVENT");
    app.add_option("--exec", command, "Run")->type_name("COMMAND");
    app.add_flag("--wait", wait, "Wait");
    return {};
}

class Completion : public testing::Test
{
protected:
    Completion() : m_app("", "ipodctl")
    {
        m_app.add_option("--deadline", m_deadline, "Time");
        AddVerbs(m_app, {{"play", "Play", "", BuildPlay},
                         {"queue", "Jump", "", BuildQueue},
                         {"events", "Follow", "", BuildEvents}});
    }

    std::string After(const Words& words)
    {
        return ToText(Candidates(m_app, words,
                                 [this](const Words& command)
                                 {
                                     if (!m_reachable) throw std::runtime_error("no service");
                                     m_asked = command;
                                     return m_answer;
                                 }));
    }

    CLI::App m_app;
    std::string m_deadline;
    bool m_reachable = true;
    Words m_asked;
    Json m_answer{{"verb", "ls"},
                  {"entries", {{{"index", 0}, {"name", "22"}}, {{"index", 1}, {"name", "Blue\tLantern"}}}}};
};
}  // namespace

TEST_F(Completion, OffersCommandsWithTheirSummaries)
{
    const std::string commands = "play\tPlay\nqueue\tJump\nevents\tFollow\n";
    EXPECT_EQ(After({}), commands);
    EXPECT_EQ(After({"e"}), commands);
    EXPECT_EQ(After({"--deadline", "3", "e"}), commands);
    EXPECT_EQ(After({"--deadline", "e"}), "");
}

TEST_F(Completion, OffersCommandsAfterHelp)
{
    m_app.add_subcommand("help", "Help");
    EXPECT_EQ(After({"help", "q"}), "play\tPlay\nqueue\tJump\nevents\tFollow\nhelp\tHelp\n");
    EXPECT_EQ(After({"help", "queue", ""}), After({"queue", ""}));
}

TEST_F(Completion, OffersOptionsOfTheCommandAndThoseOfAll)
{
    EXPECT_EQ(
        After({"events", "-"}),
        "--help\tPrint this help message and exit\n--until\tThe last\n--exec\tRun\n--wait\tWait\n--deadline\tTime\n");
}

TEST_F(Completion, OffersTheWordsThatAreAccepted)
{
    EXPECT_EQ(After({"events", ""}), "track\ndevice\n");
    EXPECT_EQ(After({"events", "--wait", "track", "t"}), "track\ndevice\n");
    EXPECT_EQ(After({"events", "--until", ""}), "track\ndevice\n");
    EXPECT_EQ(After({"events", "--until=t"}), "--until=track\n--until=device\n");
    EXPECT_EQ(After({"events", "--until=track", ""}), "track\ndevice\n");
    EXPECT_EQ(After({"events", "--wait=t"}), "");
    EXPECT_EQ(After({"events", "--exec", ""}), "\tcommands\n");
}

TEST_F(Completion, OffersNamesThatAreNotIndices)
{
    EXPECT_EQ(After({"play", "B"}), "./22\nBlue\uFFFDLantern\n");
    EXPECT_EQ(m_asked, (Words{"ls", "--all", "--no-pinyin"}));
    EXPECT_EQ(After({"play", "22", ""}), "");
}

TEST_F(Completion, OffersIndicesWithTheirNames)
{
    EXPECT_EQ(After({"queue", ""}), "0\t22\n1\tBlue\uFFFDLantern\n");
}

TEST_F(Completion, OffersNothingWithoutAService)
{
    m_reachable = false;
    EXPECT_EQ(After({"play", ""}), "");
}
