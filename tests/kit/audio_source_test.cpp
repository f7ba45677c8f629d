#include <QBXIpodTypes.h>
#include <ipodkit/audio_source.h>

#include "kit/kit_test.h"
#include "support/fake_source.h"

namespace test
{
namespace
{
class AudioSourceTest : public ReadyTest
{
protected:
    AudioSourceTest()
    {
        service.Answer("Play", "(true,)");
        Sources().requestResult = 1;
    }

    Result<void> Play(AudioSource& source, PlayOption option = PlayOption::Start)
    {
        return Completed(source.Play(option));
    }

    void Activate(AudioSource& source)
    {
        Sources().active = {10};
        source.Activated(77);
    }

    std::vector<std::string> Trace(const AudioSource& source) const
    {
        std::vector<std::string> steps;
        for (const AudioTransition& each : source.Trace()) steps.push_back(Name(each.to));
        return steps;
    }
};

TEST_F(AudioSourceTest, GoesFromRequestToRelease)
{
    AudioSource source(*session, 0);

    EXPECT_TRUE(source.Request());
    Activate(source);
    EXPECT_TRUE(Play(source));
    source.Release();

    EXPECT_THAT(Trace(source), ElementsAre("Granted", "Active", "Playing", "Released"));
    EXPECT_THAT(Sources().calls, testing::Contains(HasSubstr("Request(10")));
    EXPECT_THAT(Sources().calls, testing::Contains(HasSubstr("ActiveSourceConfirm(10, 77)")));
    EXPECT_THAT(Sources().calls, testing::Contains(HasSubstr("Release(10, 1)")));
    EXPECT_THAT(service.Calls(), testing::Contains("Play(0x03,)"));
}

TEST_F(AudioSourceTest, StartsResumesAndRestartsPlayback)
{
    AudioSource source(*session, 0);
    ASSERT_TRUE(source.Request());
    Activate(source);

    EXPECT_TRUE(Play(source, PlayOption::Start));
    EXPECT_TRUE(Play(source, PlayOption::Resume));
    EXPECT_TRUE(Play(source, PlayOption::Restart));
    for (const int option :
         {IPOD_PLAY_REQUEST_SOURCE_0, IPOD_PLAY_REQUEST_SOURCE_1, IPOD_PLAY_CONFIRM_ACTIVE, IPOD_PLAY_CONFIRM_DEACTIVE})
        EXPECT_EQ(KindOf(Play(source, static_cast<PlayOption>(option))), ErrorKind::BadArgument);

    EXPECT_THAT(service.Calls(), testing::IsSupersetOf({"Play(0x03,)", "Play(0x04,)", "Play(0x05,)"}));
}

TEST_F(AudioSourceTest, TheSecondSourceIsEleven)
{
    AudioSource source(*session, 1);

    EXPECT_TRUE(source.Request());

    EXPECT_THAT(Sources().calls, testing::Contains(HasSubstr("Request(11")));
}

TEST_F(AudioSourceTest, ARefusalContainsTheManagersCode)
{
    Sources().requestResult = 5;
    AudioSource source(*session, 0);

    const Result<void> result = source.Request();

    EXPECT_EQ(KindOf(result), ErrorKind::Refused);
    EXPECT_THAT(result.error().reason, HasSubstr("5"));
    EXPECT_EQ(source.State(), AudioState::Released);
}

TEST_F(AudioSourceTest, DoesNotPlayAnInactiveSource)
{
    AudioSource source(*session, 0);
    EXPECT_EQ(KindOf(Play(source)), ErrorKind::Refused);
    ASSERT_TRUE(source.Request());
    Sources().active.clear();

    EXPECT_EQ(KindOf(Play(source)), ErrorKind::Refused);

    EXPECT_EQ(source.State(), AudioState::Granted);
    EXPECT_THAT(service.Calls(), testing::Not(testing::Contains(HasSubstr("Play(0x"))));
}

TEST_F(AudioSourceTest, ResumesAfterATemporaryLoss)
{
    AudioSource source(*session, 0);
    ASSERT_TRUE(source.Request());
    Activate(source);
    ASSERT_TRUE(Play(source));

    Sources().active.clear();
    source.Deactivated(78, true);
    EXPECT_EQ(source.State(), AudioState::Suspended);
    Activate(source);

    EXPECT_TRUE(RunLoopUntil([&] { return source.State() == AudioState::Playing; }));
    EXPECT_THAT(service.Calls(), testing::Contains("Play(0x04,)"));
    EXPECT_THAT(Sources().calls, testing::Contains(HasSubstr("DeactiveSourceConfirm(10, 78)")));
}

TEST_F(AudioSourceTest, ReportsWhyInterruptedPlaybackDoesNotResume)
{
    AudioSource source(*session, 0);
    ASSERT_TRUE(source.Request());
    Activate(source);
    ASSERT_TRUE(Play(source));
    source.Deactivated(78, true);
    service.Fail("Play", "the device is asleep");

    Activate(source);

    const char* const line = "80 LogWarning: cannot resume interrupted playback: Refused: the device is asleep";
    EXPECT_TRUE(RunLoopUntil([line] { return CountLogLines(line) == 1; }));
    EXPECT_EQ(source.State(), AudioState::Active);
}

TEST_F(AudioSourceTest, DoesNotResumeAfterAPermanentLoss)
{
    AudioSource source(*session, 0);
    ASSERT_TRUE(source.Request());
    Activate(source);
    ASSERT_TRUE(Play(source));

    source.Deactivated(78, false);
    Activate(source);
    RunLoopFor(20ms);

    EXPECT_EQ(source.State(), AudioState::Active);
}

TEST_F(AudioSourceTest, IsReleasedWhenTheDeviceReportsInvalidAudio)
{
    AudioSource source(*session, 0);
    ASSERT_TRUE(source.Request());
    Activate(source);

    service.Emit("OnIpodSourceValidStatusChange", "(false,)");

    EXPECT_TRUE(RunLoopUntil([&] { return source.State() == AudioState::Released; }));
}

TEST_F(AudioSourceTest, NothingPlaysWhenTheServiceIsLost)
{
    AudioSource source(*session, 0);
    ASSERT_TRUE(source.Request());
    Activate(source);
    ASSERT_TRUE(Play(source));

    service.Vanish();

    EXPECT_TRUE(RunLoopUntil([&] { return source.State() == AudioState::Active; }));
}

TEST_F(AudioSourceTest, OtherNumbersAreRejected)
{
    AudioSource source(*session, 2);

    EXPECT_EQ(KindOf(source.Request()), ErrorKind::BadArgument);
}

TEST_F(AudioSourceTest, TracesItsLastTransitions)
{
    AudioSource source(*session, 0);
    for (int i = 0; i < 100; ++i)
    {
        ASSERT_TRUE(source.Request());
        source.Release();
    }

    EXPECT_EQ(source.Trace().size(), 64U);
    EXPECT_EQ(source.Trace().back().why, "released");
}
}  // namespace
}  // namespace test
