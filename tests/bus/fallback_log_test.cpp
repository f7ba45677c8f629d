// Without logging, one line on standard output replaces every record; nothing else changes.
#include <unistd.h>

#include <sstream>

#include "bus/bus_test.h"
#include "bus/command_table.h"

namespace test
{
namespace
{
using FallbackLogTest = ServiceTest;
using FallbackLogWithoutBusTest = ClientTest;

// Captures what the function prints on standard output.
template <class Function>
std::vector<std::string> Printed(Function function)
{
    std::fflush(stdout);
    testing::internal::CaptureStdout();
    function();
    std::istringstream output(testing::internal::GetCapturedStdout());
    std::vector<std::string> lines;
    for (std::string line; std::getline(output, line);) lines.push_back(line);
    return lines;
}

auto IsFallbackOf(const std::string& function)
{
    return testing::MatchesRegex(R"(\[)" + std::to_string(getpid()) +
                                 R"(\]\[file:libipod/QBXIpod_MediaPlayer_Client\]\[func:)" + function +
                                 R"(\]\[line:[0-9]+\]Warn:Log system not init\.)");
}

TEST_F(FallbackLogTest, ReplacesEveryRecordOfTheLifeCycle)
{
    SwitchLoggingOff();
    bool connected = false;

    const auto lines = Printed(
        [&connected]
        {
            connected = QBX_GetIpodPlayer()->InitInstance();
            QBX_GetIpodPlayer()->ExitInstance();
            QBX_DestroyIpodPlayer();
        });

    EXPECT_TRUE(connected);
    EXPECT_THAT(lines, ElementsAre(IsFallbackOf("QBX_GetIpodPlayer"), IsFallbackOf("InitShareMemory"),
                                   IsFallbackOf("InitInstance"), IsFallbackOf("InitShareMemory"),
                                   IsFallbackOf("InitDBusConnect"), IsFallbackOf("ExitInstance"),
                                   IsFallbackOf("~QBXIpod_MediaPlayer_Client")));
    EXPECT_THAT(LogLines(), IsEmpty());
}

TEST_F(FallbackLogWithoutBusTest, ReplacesTheSevenFailedAttempts)
{
    const NoBus bus;
    IQBXIpodPlayer* const player = QBX_GetIpodPlayer();
    SwitchLoggingOff();

    const auto lines = Printed([player] { EXPECT_FALSE(player->InitInstance()); });

    EXPECT_EQ(lines.size(), 9U);
    EXPECT_THAT(lines.back(), IsFallbackOf("InitDBusConnect"));
}

TEST_F(FallbackLogTest, ReplacesAFailureLineAndNamesTheCommand)
{
    IQBXIpodPlayer& player = Connected();
    service.Fail("GetShuffleMode", "out of order");
    SwitchLoggingOff();
    int mode = 0;

    const auto lines = Printed([&] { mode = player.GetShuffleMode(); });

    EXPECT_EQ(mode, 255);
    EXPECT_THAT(lines, ElementsAre(IsFallbackOf("GetShuffleMode")));
}

TEST_F(FallbackLogTest, ReplacesTheDebugLineAndTheHandlersLine)
{
    Connected().AddListener(&app);
    SwitchLoggingOff();

    const auto lines = Printed(
        [this]
        {
            Deliver("OnIpodPhoneCallChange", "(<[byte 10, 1, 49]>,)");
            Deliver("OnIpodBatteryChange", "(<[byte 8, 1]>,)");
        });

    EXPECT_THAT(lines,
                ElementsAre(IsFallbackOf("CallBack_OnIpodPhoneCallChange"), IsFallbackOf("OnIpodPhoneCallChange"),
                            IsFallbackOf("CallBack_OnIpodBatteryChange")));
    EXPECT_EQ(journal.size(), 2U);
}

TEST_F(FallbackLogTest, ReplacesTheTwoLinesOfATextReader)
{
    IQBXIpodPlayer& player = Connected();
    service.Answer("GetIpodName", "('Phone',)");
    SwitchLoggingOff();
    std::string name = "100%s";

    const auto lines = Printed([&] { player.GetIpodName(name); });

    EXPECT_THAT(lines, ElementsAre(IsFallbackOf("GetIpodName"), IsFallbackOf("GetIpodName")));
}
}  // namespace
}  // namespace test
