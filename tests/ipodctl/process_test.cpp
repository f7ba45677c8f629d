// Tests the commands that are run for events.
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "events/command_queue.h"

namespace ctl
{
namespace
{
class CommandsOf : public testing::Test
{
protected:
    CommandsOf() : folder(std::filesystem::temp_directory_path() / ("ipodctl-test-" + std::to_string(getpid())))
    {
        std::filesystem::create_directory(folder);
    }
    ~CommandsOf() override { std::filesystem::remove_all(folder); }

    std::string Run(const std::string& command, const std::vector<CommandQueue::Job>& jobs)
    {
        GMainLoop* const loop = g_main_loop_new(nullptr, FALSE);
        CommandQueue queue(
            "exec >>" + (folder / "out").string() + "; " + command, [loop] { g_main_loop_quit(loop); },
            [this](const std::string& what) { complaints.push_back(what); });
        for (const CommandQueue::Job& job : jobs) queue.Add(job);
        g_main_loop_run(loop);
        g_main_loop_unref(loop);
        std::ostringstream out;
        out << std::ifstream(folder / "out").rdbuf();
        return out.str();
    }

    const std::filesystem::path folder;
    std::vector<std::string> complaints;
};

TEST_F(CommandsOf, EventsGetFieldsAsVariablesAndTheEventAsInput)
{
    EXPECT_EQ(
        Run("echo \"$IPOD_EVENT $IPOD_POSITION_MS\"; cat", {{{{"event", "progress"}, {"position_ms", 7}}, "{}\n"}}),
        "progress 7\n{}\n");
    EXPECT_TRUE(complaints.empty());
}

TEST_F(CommandsOf, EventsRunOneAfterTheOther)
{
    EXPECT_EQ(Run("echo begin $IPOD_N; sleep 0.05; echo end $IPOD_N", {{{{"n", 1}}, ""}, {{{"n", 2}}, ""}}),
              "begin 1\nend 1\nbegin 2\nend 2\n");
}

TEST_F(CommandsOf, EventsMayIgnoreAnInputLongerThanAPipe)
{
    EXPECT_EQ(Run("head -c 3", {{Json::object(), std::string(1 << 20, 'x')}}), "xxx");
    EXPECT_EQ(Run("true", {{{{"hex", std::string(1 << 20, '0')}}, ""}}), "xxx");
    EXPECT_TRUE(complaints.empty());
}

TEST_F(CommandsOf, FailuresAreReported)
{
    Run("exit 3", {{Json::object(), ""}, {Json::object(), ""}});
    EXPECT_EQ(complaints, (std::vector<std::string>(2, "the command failed with exit code 3")));
}
}  // namespace
}  // namespace ctl
