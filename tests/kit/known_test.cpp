// The reasons why a state field is unknown, and how it becomes known.
#include <ipodkit/core.h>

#include <atomic>

#include "kit/kit_test.h"

namespace test
{
namespace
{
using KnownTest = ReadyTest;
using UnopenedKnownTest = ServedTest;

TEST_F(KnownTest, FieldsReportedOnlyByEventsStartUnreported)
{
    EXPECT_EQ(State()->Why(Field::Battery), Unknown::NotReported);
    EXPECT_EQ(State()->location.Why(), Unknown::NotReported);
    EXPECT_EQ(State()->Why(Field::Track), std::nullopt);
    EXPECT_EQ(State()->Why(Field::Calls), std::nullopt);
    EXPECT_EQ(State()->Why(Field::Connection), std::nullopt);
    EXPECT_THROW(State()->battery.value(), std::bad_optional_access);
}

TEST_F(UnopenedKnownTest, ARefusedFieldHasTheErrorOfTheService)
{
    service.Fail("GetShuffleMode", "busy");

    Ready();

    EXPECT_EQ(State()->Why(Field::Shuffle), Unknown::Refused);
    ASSERT_NE(State()->shuffle.Cause(), nullptr);
    EXPECT_EQ(State()->shuffle.Cause()->kind, ErrorKind::Refused);
    EXPECT_THAT(State()->shuffle.Cause()->reason, HasSubstr("busy"));
    EXPECT_EQ(State()->track.Cause(), nullptr);
    EXPECT_EQ(State()->queueSize, 3);
}

TEST_F(UnopenedKnownTest, ARefusedFieldIsReadAgainOnRequest)
{
    service.Fail("GetShuffleMode", "busy");
    Ready();
    service.Answer("GetShuffleMode", "(1,)");

    session->Refresh(Field::Shuffle);

    EXPECT_TRUE(RunLoopUntil([&] { return State()->shuffle == Shuffle::Songs; }));
    EXPECT_EQ(State()->shuffle.Cause(), nullptr);
}

TEST_F(KnownTest, OnlyTheWantedFieldsAreReadAgain)
{
    const std::size_t before = service.Calls().size();

    session->Refresh(Field::Shuffle | Field::Battery);
    Completed(Ask().Repeat());

    const auto calls = service.Calls();
    EXPECT_THAT(std::vector(calls.begin() + static_cast<std::ptrdiff_t>(before), calls.end()),
                ElementsAre("GetShuffleMode()", "GetRepeatMode()"));
}

TEST_F(UnopenedKnownTest, ARefreshCompletesWithThePublishedState)
{
    options.settle = 10s;
    Ready();
    service.Answer("GetShuffleMode", "(1,)");

    const Result<StatePtr> read = Completed(session->Refreshed(Field::Shuffle));

    ASSERT_TRUE(read);
    EXPECT_EQ((*read)->shuffle, Shuffle::Songs);
    EXPECT_EQ(State(), *read);
}

TEST_F(KnownTest, ARefreshOfFieldsThatOnlyEventsReportCompletesAtOnce)
{
    const std::size_t before = service.Calls().size();

    EXPECT_EQ(Completed(session->Refreshed(Field::Battery)).value(), State());

    EXPECT_EQ(service.Calls().size(), before);
}

TEST_F(UnopenedKnownTest, ARefreshCompletesWithTheReasonWhenAFieldIsRefusedOrLate)
{
    options.deadline = 100ms;
    Ready();
    service.Fail("GetShuffleMode", "busy");
    service.Hold("GetRepeatMode");

    const Result<StatePtr> read = Completed(session->Refreshed(Field::Shuffle | Field::Repeat));

    ASSERT_TRUE(read);
    EXPECT_EQ((*read)->Why(Field::Shuffle), Unknown::Refused);
    EXPECT_EQ((*read)->Why(Field::Repeat), Unknown::TimedOut);
}

// The answer to the first request was on its way when the second one was made.
TEST_F(KnownTest, ARefreshWaitsForTheAnswerToItsOwnRequest)
{
    std::atomic<GDBusMethodInvocation*> second{nullptr};
    std::atomic<int> calls{0};
    const auto answerFirst = [&](GDBusMethodInvocation* call)
    {
        if (++calls == 1) return g_dbus_method_invocation_return_value(call, g_variant_new("(i)", 1));
        second = call;
    };
    service.React("GetRepeatMode", answerFirst);
    session->Refresh(Field::Repeat);

    const Pending read(session->Refreshed(Field::Repeat));

    ASSERT_TRUE(RunLoopUntil([&] { return second != nullptr && State()->repeat == Repeat::One; }));
    EXPECT_FALSE(read.Done());
    g_dbus_method_invocation_return_value(second, g_variant_new("(i)", 2));

    EXPECT_EQ(read.Get().value()->repeat, Repeat::All);
}

TEST_F(KnownTest, ARefreshSupportsDeadlinesAndCancellation)
{
    service.Hold("GetRepeatMode");
    const Cancellation stop;
    stop.Cancel();

    EXPECT_EQ(KindOf(Completed(session->Refreshed(Field::Repeat).Within(20ms))), ErrorKind::TimedOut);
    EXPECT_EQ(KindOf(session->Refreshed(Field::Repeat).Wait()), ErrorKind::WouldDeadlock);
    EXPECT_EQ(KindOf(Completed(session->Refreshed(Field::Repeat).CancelledBy(stop))), ErrorKind::Cancelled);
}

TEST_F(UnopenedKnownTest, ARefreshNeedsAServiceUntilItsEnd)
{
    EXPECT_EQ(KindOf(Completed(Open(options).Refreshed())), ErrorKind::NoService);

    Ready();
    service.Hold("GetRepeatMode");
    const Pending read(session->Refreshed(Field::Repeat));
    service.Vanish();

    EXPECT_EQ(KindOf(read.Get()), ErrorKind::ServiceLost);
}

TEST_F(UnopenedKnownTest, ARefreshBeforeReadyWaitsForTheWholeState)
{
    std::optional<Result<StatePtr>> read;
    std::atomic<bool> begun{false};
    const auto refresh = [&](GDBusMethodInvocation* call)
    {
        if (!begun.exchange(true))
            session->Refreshed(Field::Shuffle).Start([&read](Result<StatePtr> state) { read = std::move(state); });
        g_dbus_method_invocation_return_value(call, g_variant_new("(i)", 1));
    };
    service.React("GetShuffleMode", refresh);

    Open(options);

    ASSERT_TRUE(RunLoopUntil([&] { return read.has_value(); }));
    ASSERT_TRUE(*read);
    EXPECT_EQ((**read)->phase, Phase::Ready);
}

TEST_F(UnopenedKnownTest, AnUnknownMethodMeansAnUnsupportedField)
{
    service.On("GetIpodAppBundleName",
               [](GVariant*) { return Reply::Error("org.freedesktop.DBus.Error.UnknownMethod", "no such method"); });

    Ready();

    EXPECT_EQ(State()->Why(Field::ForegroundApp), Unknown::NotSupported);
}

TEST_F(UnopenedKnownTest, ALateFieldIsTimedOutUntilItsReplyArrives)
{
    options.deadline = 100ms;
    service.Hold("GetRepeatMode");

    Ready();

    EXPECT_EQ(State()->Why(Field::Repeat), Unknown::TimedOut);
    EXPECT_EQ(State()->missing, Fields(Field::Repeat));
    service.AnswerHeld("(2,)");
    EXPECT_TRUE(RunLoopUntil([&] { return State()->repeat == Repeat::All; }));
}

TEST_F(KnownTest, WithoutADeviceItsFieldsAreUnknown)
{
    service.Answer("GetDeviceAmount", "(0,)");

    service.Emit("OnIpodDeviceStatusChange", "(1, false)");

    EXPECT_TRUE(RunLoopUntil([&] { return State()->deviceCount == 0; }));
    for (const Field field : {Field::Track, Field::TrackIndex, Field::Position, Field::DeviceName, Field::Battery})
        EXPECT_EQ(State()->Why(field), Unknown::NoDevice) << Name(field);
    EXPECT_EQ(State()->shuffle, Shuffle::Albums);
}

TEST_F(UnopenedKnownTest, ARefusalWithoutADeviceReportsThat)
{
    service.Answer("GetDeviceAmount", "(0,)");
    service.Fail("GetCurrentMediaInfo", "no device");
    service.Fail("GetIpodName", "no device");

    Ready();

    EXPECT_EQ(State()->Why(Field::Track), Unknown::NoDevice);
    EXPECT_EQ(State()->Why(Field::DeviceName), Unknown::NoDevice);
}

TEST(Known, ComparesWithValuesAndReasons)
{
    const Known<int> unknown;
    EXPECT_NE(unknown, 0);
    EXPECT_EQ(Known<int>(3), 3);
    EXPECT_NE(Known<int>(Unknown::Refused), Known<int>(Unknown::TimedOut));
    EXPECT_EQ(Known<int>(3).value_or(4), 3);
    EXPECT_EQ(unknown.value_or(4), 4);
}

// The core's record contains everything that the service sent.
TEST_F(UnopenedKnownTest, TheRawRecordsOfTheCoreStayReachable)
{
    std::vector<unsigned char> record(1040);
    record[0] = 'T';
    record[1024] = 7;
    record[1036] = 5;
    std::vector<QBXiPodTrackInfo> seen;
    Ready();
    const Subscription events = session->OnEvent("raw",
                                                 [&](const Event& event)
                                                 {
                                                     if (const auto* track = std::get_if<TrackChanged>(&event))
                                                         seen.push_back(ToCore(track->track));
                                                 });

    service.Emit("OnIpodPlayingTrackChange", "(0, " + Record(record).substr(1, Record(record).size() - 3) + ")");

    ASSERT_TRUE(RunLoopUntil([&] { return !seen.empty(); }));
    EXPECT_EQ(seen[0].text1, "T");
    EXPECT_EQ(seen[0].value1, 7);
    EXPECT_EQ(seen[0].value4, 5);
    EXPECT_FALSE(State()->track->HasArtwork());
}
}  // namespace
}  // namespace test
