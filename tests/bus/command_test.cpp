// Runs every synchronous command through the same situations.
#include "bus/bus_test.h"
#include "bus/command_table.h"
#include "support/glib_messages.h"

namespace test
{
namespace
{
std::string NameOfCommand(const testing::TestParamInfo<Command>& info)
{
    return info.param.name;
}

void ExpectFailureValue(const Command& command, const std::string& result)
{
    if (command.failure == kUnset) return;
    EXPECT_EQ(result, command.failure);
}

class CommandTest : public ServiceTest, public testing::WithParamInterface<Command>
{
};

class CommandWithoutServiceTest : public NoServiceTest, public testing::WithParamInterface<Command>
{
};

class CommandWithoutProxyTest : public ClientTest, public testing::WithParamInterface<Command>
{
};

TEST_P(CommandTest, MakesOneCallAndReturnsItsReply)
{
    const Command& command = GetParam();
    IQBXIpodPlayer& player = Connected();
    service.Answer(command.member, command.reply);

    const std::string result = command.call(player);

    EXPECT_EQ(result, command.success);
    EXPECT_THAT(service.Calls(), ElementsAre(command.member + command.sent));
    EXPECT_THAT(LogLines(), ElementsAreArray(ExpectedLines(command, "")));
    EXPECT_THAT(LogFormats(), ElementsAreArray(ExpectedFormats(command, false)));
}

TEST_P(CommandTest, LogsAnErrorReplyOnceAndReturnsItsFailureValue)
{
    const Command& command = GetParam();
    IQBXIpodPlayer& player = Connected();
    service.Fail(command.member, "100% out of order");

    const std::string result = command.call(player);

    ExpectFailureValue(command, result);
    EXPECT_THAT(service.Calls(), ElementsAre(command.member + command.sent));
    EXPECT_THAT(LogLines(),
                ElementsAreArray(ExpectedLines(command, "GDBus.Error:com.example.Broken: 100% out of order")));
    EXPECT_THAT(LogFormats(), ElementsAreArray(ExpectedFormats(command, true)));
}

TEST_P(CommandTest, TreatsAReplyOfTheWrongTypeAsAFailedCall)
{
    const Command& command = GetParam();
    IQBXIpodPlayer& player = Connected();
    service.AnswerInvalid(command.member, "(1.5, 'what is this')");

    const std::string result = command.call(player);

    ExpectFailureValue(command, result);
    EXPECT_THAT(LogFormats(), ElementsAreArray(ExpectedFormats(command, true)));
}

TEST_P(CommandTest, SurvivesAServiceThatDiesDuringTheCall)
{
    const Command& command = GetParam();
    IQBXIpodPlayer& player = Connected();
    service.Hold(command.member);
    std::thread killer(
        [this]
        {
            service.WaitForCalls(1);
            service.Vanish();
        });

    const std::string result = command.call(player);
    killer.join();

    ExpectFailureValue(command, result);
    EXPECT_THAT(LogFormats(), ElementsAreArray(ExpectedFormats(command, true)));
}

TEST_P(CommandWithoutServiceTest, LogsTheBusErrorAndReturnsItsFailureValue)
{
    const Command& command = GetParam();
    IQBXIpodPlayer& player = Unconnected();

    const std::string result = command.call(player);

    ExpectFailureValue(command, result);
    EXPECT_THAT(LogLines(),
                ElementsAreArray(ExpectedLines(command,
                                               "GDBus.Error:org.freedesktop.DBus.Error.ServiceUnknown: The name "
                                               "com.zarn.linux.ipod was not provided by any .service files")));
}

TEST_P(CommandWithoutProxyTest, IsRejectedByGLibAndLogsNoFailure)
{
    const Command& command = GetParam();
    IQBXIpodPlayer& player = *QBX_GetIpodPlayer();
    ClearLog();
    const GLibMessages messages;

    const std::string result = command.call(player);

    ExpectFailureValue(command, result);
    EXPECT_THAT(LogLines(), ElementsAreArray(ExpectedLines(command, "")));
    EXPECT_THAT(messages.Lines(), ElementsAre(testing::HasSubstr("G_IS_DBUS_PROXY (proxy)")));
}

INSTANTIATE_TEST_SUITE_P(All, CommandTest, testing::ValuesIn(Commands()), NameOfCommand);
INSTANTIATE_TEST_SUITE_P(All, CommandWithoutServiceTest, testing::ValuesIn(Commands()), NameOfCommand);
INSTANTIATE_TEST_SUITE_P(All, CommandWithoutProxyTest, testing::ValuesIn(Commands()), NameOfCommand);
}  // namespace
}  // namespace test
