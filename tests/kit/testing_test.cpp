// The fake session as used by applications' tests, without a bus.
#include <gmock/gmock.h>
#include <ipodkit/pager.h>
#include <ipodkit/testing.h>

namespace test
{
namespace
{
using namespace ipodkit;
using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;

/// Code as an application would write it.
class NowPlaying
{
public:
    explicit NowPlaying(Session& session)
        : m_commands(session.Commands()),
          m_shown(session.OnState("now playing",
                                  [this](const StatePtr& state, Fields)
                                  {
                                      title = state->track ? state->track->title : "-";
                                      position = state->position ? state->position->Now() : 0ms;
                                  }))
    {
    }

    void ClickNext()
    {
        m_commands.Next().Start([this](const Result<void>& done) { problem = done ? "" : done.error().Text(); });
    }

    std::string title;
    std::chrono::milliseconds position{};
    std::string problem;

private:
    Commands m_commands;
    Subscription m_shown;
};

class FakeSessionTest : public testing::Test
{
protected:
    FakeSessionTest() { unsetenv("DBUS_SESSION_BUS_ADDRESS"); }

    FakeSession fake;
};

TEST_F(FakeSessionTest, PublishesAState)
{
    const NowPlaying view(fake.Get());
    PlayerState state = FakeSession::ReadyState();
    state.track = Track{"Low Water", "Harbour Quartet"};

    fake.SetState(state);

    EXPECT_EQ(view.title, "Low Water");
    EXPECT_EQ(fake.Get().Connection().phase, Phase::Ready);
    EXPECT_EQ(fake.Get().State()->version, 1U);
}

TEST_F(FakeSessionTest, CompletesARefreshWithTheStateThatTheTestSet)
{
    fake.SetState(FakeSession::ReadyState());
    StatePtr read;

    fake.Get().Refreshed().Start([&read](const Result<StatePtr>& state) { read = state.value_or(nullptr); });
    fake.Run();

    EXPECT_EQ(read, fake.Get().State());
    EXPECT_THAT(fake.Calls(), IsEmpty());
}

TEST_F(FakeSessionTest, FollowsEventsLikeASession)
{
    const NowPlaying view(fake.Get());
    std::vector<std::string> seen;
    const Subscription events =
        fake.Get().OnEvent("events", [&](const ipodkit::Event& event) { seen.emplace_back(EventName(event)); });
    fake.SetState(FakeSession::ReadyState());

    fake.Emit(TrackChanged{3, Track{"Slack Tide"}});
    fake.Emit(ShuffleChanged{Shuffle::Songs});

    EXPECT_EQ(view.title, "Slack Tide");
    EXPECT_EQ(fake.Get().State()->trackIndex, 3);
    EXPECT_EQ(fake.Get().State()->shuffle, Shuffle::Songs);
    EXPECT_THAT(seen, ElementsAre("track", "shuffle"));
}

TEST_F(FakeSessionTest, AnswersRequestsAndRecordsThem)
{
    NowPlaying view(fake.Get());
    view.ClickNext();
    EXPECT_EQ(view.problem, "");
    fake.Answer("Next", "(false,)");
    view.ClickNext();
    fake.Run();
    EXPECT_THAT(view.problem, testing::StartsWith("Refused: "));
    fake.Fail("Next", {ErrorKind::ServiceLost, "it is gone"});
    view.ClickNext();
    fake.Run();
    EXPECT_EQ(view.problem, "ServiceLost: it is gone");
    EXPECT_EQ(fake.Get().Commands().PlayStatus().Wait().error().kind, ErrorKind::Refused);
    fake.Answer("GetPlayStatus", "(1,)");
    EXPECT_EQ(fake.Get().Commands().PlayStatus().Wait().value(), PlayStatus::Playing);
    EXPECT_THAT(fake.Calls(), ElementsAre("Next()", "Next()", "Next()", "GetPlayStatus()", "GetPlayStatus()"));
}

TEST_F(FakeSessionTest, RejectsAReplyThatViolatesTheContract)
{
    fake.Answer("GetPlayStatus", "('text',)");
    EXPECT_EQ(fake.Get().Commands().PlayStatus().Wait().error().kind, ErrorKind::BadReply);
    EXPECT_THROW(fake.Answer("GetPlayStatus", "(1"), std::invalid_argument);
}

TEST_F(FakeSessionTest, HeldRequestsTimeOutAsTimePasses)
{
    NowPlaying view(fake.Get());
    fake.Hold("Next");
    view.ClickNext();

    fake.Advance(4999ms);
    EXPECT_EQ(view.problem, "");
    fake.Advance(1ms);
    EXPECT_THAT(view.problem, testing::StartsWith("TimedOut: "));
}

TEST_F(FakeSessionTest, RequestsThatNeedTheLoopTimeOutAsTimePasses)
{
    fake.SetState(FakeSession::ReadyState());
    fake.SetList(ListKind::Database, {"a"});
    fake.Hold("GetCurDbListItems");
    Pager pager(fake.Get(), ListKind::Database);
    std::vector<std::string> late;
    const auto note = [&late](const char* name)
    { return [&late, name](const auto& result) { late.push_back(name + (": " + result.error().Text())); }; };

    pager.At(0).Within(2s).Start(note("page"));
    fake.Get().Changed().Within(3s).Start(note("change"));
    fake.Advance(1s);
    EXPECT_THAT(late, IsEmpty());
    fake.Advance(1s);
    EXPECT_THAT(late, ElementsAre("page: TimedOut: no answer within 2000 ms"));
    fake.Advance(1s);
    EXPECT_EQ(late.back(), "change: TimedOut: no answer within 3000 ms");
}

TEST_F(FakeSessionTest, HeldRequestsAreAnsweredLater)
{
    fake.Hold("GetDeviceAmount");
    std::optional<Result<int>> count;
    fake.Get().Commands().DeviceCount().Start([&](Result<int> result) { count = result; });
    fake.Run();
    EXPECT_FALSE(count);
    fake.Answer("GetDeviceAmount", "(2,)");
    fake.AnswerHeld("GetDeviceAmount");
    ASSERT_TRUE(count);
    EXPECT_EQ(**count, 2);
}

TEST_F(FakeSessionTest, ACompletionMayAnswerAnotherHeldRequest)
{
    fake.Hold("Next");
    fake.Hold("Previous");
    std::vector<std::string> done;
    const Commands commands = fake.Get().Commands();
    commands.Next().Start(
        [&](const Result<void>&)
        {
            done.emplace_back("Next");
            fake.AnswerHeld("Previous");
        });
    commands.Previous().Start([&](const Result<void>&) { done.emplace_back("Previous"); });
    fake.Run();

    fake.AnswerHeld("Next");

    EXPECT_THAT(done, ElementsAre("Next", "Previous"));
}

TEST_F(FakeSessionTest, ThePositionAdvancesWithTime)
{
    const NowPlaying view(fake.Get());
    fake.SetState(FakeSession::ReadyState());
    fake.Emit(PlayStatusChanged{PlayStatus::Playing});
    fake.Emit(ProgressChanged{10s, 60s});

    fake.Advance(5s);

    EXPECT_GE(view.position, 15s);
    EXPECT_LT(view.position, 16s);
}

TEST_F(FakeSessionTest, PagersReadItsLists)
{
    fake.SetState(FakeSession::ReadyState());
    fake.SetList(ListKind::Database, {"a", "b", "c"});
    Pager pager(fake.Get(), ListKind::Database);
    std::optional<Result<int>> count;
    std::optional<Result<PagePtr>> page;

    pager.Count().Start([&](Result<int> result) { count = result; });
    pager.At(1).Start([&](Result<PagePtr> result) { page = result; });
    fake.Run();

    ASSERT_TRUE(count && page);
    EXPECT_EQ(**count, 3);
    EXPECT_THAT((**page)->names, ElementsAre("a", "b", "c"));
}

TEST_F(FakeSessionTest, SeveralMayExistAtATime)
{
    FakeSession other;
    PlayerState state = FakeSession::ReadyState();
    state.queueSize = 7;
    other.SetState(state);
    EXPECT_EQ(other.Get().State()->queueSize, 7);
    EXPECT_EQ(fake.Get().State()->Why(Field::QueueSize), Unknown::NotReported);
}

TEST_F(FakeSessionTest, RequestsEndWithTheSession)
{
    std::optional<ErrorKind> kind;
    {
        FakeSession ending;
        ending.Hold("Next");
        ending.Get().Commands().Next().Start([&](const Result<void>& done) { kind = done.error().kind; });
    }
    EXPECT_EQ(kind, ErrorKind::Cancelled);
}
}  // namespace
}  // namespace test
