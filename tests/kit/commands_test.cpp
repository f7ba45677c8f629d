#include <future>
#include <limits>
#include <thread>

#include "kit/kit_test.h"

namespace test
{
namespace
{
class CommandsTest : public KitTest
{
protected:
    CommandsTest() { Open(); }

    Commands Ask() const { return session->Commands(); }

    bool Sent(const std::string& call) const
    {
        const std::vector<std::string> calls = service.Calls();
        return std::find(calls.begin(), calls.end(), call) != calls.end();
    }

    FakeService service;
};

using CommandsWithoutServiceTest = KitTest;

class ArtworkCommandTest : public ReadyTest
{
protected:
    // Size, width, and height as the service reports them; the first byte is nonzero if there is no image.
    void AnswerArtwork(unsigned char none, const std::vector<unsigned char>& image)
    {
        shared.SetBytes("VecArtworkBufferShareMemory", image);
        service.Answer("GetPlayingTrackAlbumArtwork", Record({none, 0, 0, 0, 7, 0, 0, 0, 44, 1, 0, 0, 200, 0, 0, 0}));
    }
};

class CommandsWithoutBusTest : public testing::Test
{
protected:
    NoBus bus;
};

TEST_F(CommandsTest, SuccessIsAValue)
{
    service.Answer("Next", "(true,)");

    EXPECT_TRUE(Completed(Ask().Next()));
    EXPECT_TRUE(Ask().Next().Wait());
}

TEST_F(CommandsTest, FalseIsARefusalWithRequestAndReply)
{
    service.Answer("EnterDbRoot", "(false,)");
    service.Answer("EnterDbChildList", "(false,)");

    const Result<void> root = Completed(Ask().EnterRoot());
    const Result<void> child = Ask().EnterChild(3).Wait();

    EXPECT_EQ(KindOf(root), ErrorKind::Refused);
    EXPECT_EQ(root.error().reason, "the service answered EnterDbRoot() with false");
    EXPECT_EQ(root.error().name, "");
    EXPECT_EQ(KindOf(child), ErrorKind::Refused);
    EXPECT_EQ(child.error().reason, "the service answered EnterDbChildList(3) with false");
}

TEST_F(CommandsTest, FalseIsAValueForGetters)
{
    service.Answer("IsIPodInDbRoot", "(false,)");

    EXPECT_EQ(Completed(Ask().AtRoot()).value(), false);
}

TEST_F(CommandsTest, AnErrorOfTheServiceIsARefusalWithItsMessage)
{
    service.Fail("Pause", "the device is asleep");

    const Result<void> result = Completed(Ask().Pause());

    ASSERT_FALSE(result);
    EXPECT_EQ(result.error().kind, ErrorKind::Refused);
    EXPECT_EQ(result.error().reason, "the device is asleep");
    EXPECT_EQ(result.error().name, "com.example.Broken");
}

// The bus itself uses these names, too, if the service dies or its name has no owner.
TEST_F(CommandsTest, AnErrorOfALiveServiceIsARefusalRegardlessOfItsName)
{
    for (const char* last : {"NoReply", "ServiceUnknown", "NameHasNoOwner", "Timeout", "TimedOut", "Disconnected"})
    {
        const std::string name = std::string("org.freedesktop.DBus.Error.") + last;
        service.On("Pause", [name](GVariant*) { return Reply::Error(name, "the device is asleep"); });

        for (const Result<void>& result : {Completed(Ask().Pause()), Ask().Pause().Wait()})
        {
            EXPECT_EQ(KindOf(result), ErrorKind::Refused) << name;
            EXPECT_EQ(result.error().name, name);
            EXPECT_EQ(result.error().reason, "the device is asleep");
        }
    }
}

TEST_F(CommandsTest, AReplyOfAnotherTypeIsABadReply)
{
    service.AnswerInvalid("GetDeviceAmount", "('text', 1)");

    for (const Result<int>& count : {Completed(Ask().DeviceCount()), Ask().DeviceCount().Wait()})
    {
        EXPECT_EQ(KindOf(count), ErrorKind::BadReply);
        EXPECT_EQ(count.error().reason, "GetDeviceAmount: expected a reply of type (i), got (si)");
    }
}

TEST_F(CommandsTest, ANegativeAmountIsABadReply)
{
    service.Answer("GetPlayingListItemsAmount", "(-7,)");

    EXPECT_EQ(KindOf(Completed(Ask().PlayingCount())), ErrorKind::BadReply);
}

TEST_F(CommandsTest, ATrackRecordOfAnotherSizeIsABadReply)
{
    service.Answer("GetCurrentMediaInfo", Record({1, 2, 3}));

    EXPECT_EQ(KindOf(Completed(Ask().CurrentTrack())), ErrorKind::BadReply);
}

TEST_F(ArtworkCommandTest, ReturnsTheImageAndTheServicesDescription)
{
    const std::vector<unsigned char> image{0xFF, 0xD8, 0xFF, 0xE0};
    AnswerArtwork(0, image);

    const ArtworkChanged artwork = Completed(session->Commands().Artwork()).value();

    EXPECT_TRUE(artwork.available);
    EXPECT_EQ(artwork.picture->bytes, image);
    EXPECT_EQ(artwork.picture->type, PictureType::Jpeg);
    EXPECT_EQ(artwork.reportedBytes, 7U);
    EXPECT_EQ(artwork.width, 300U);
    EXPECT_EQ(artwork.height, 200U);
}

TEST_F(ArtworkCommandTest, ReturnsAnImageThatIsTooLargeForTheState)
{
    const std::size_t size = (std::size_t{1} << 18) + 1;
    session.reset();
    SessionOptions small;
    small.artworkLimit = size - 1;
    Open(small);
    AnswerArtwork(0, std::vector<unsigned char>(size));
    Ready();

    EXPECT_EQ(session->State()->Artwork(), nullptr);
    EXPECT_EQ(Completed(session->Commands().Artwork()).value().picture->bytes.size(), size);
}

TEST_F(ArtworkCommandTest, WithoutArtworkThereIsNoImage)
{
    AnswerArtwork(1, {1, 2, 3});

    const ArtworkChanged artwork = session->Commands().Artwork().Wait().value();

    EXPECT_FALSE(artwork.available);
    EXPECT_EQ(artwork.picture, nullptr);
}

TEST_F(ArtworkCommandTest, ARecordOfAnotherSizeIsABadReply)
{
    service.Answer("GetPlayingTrackAlbumArtwork", Record({1, 2, 3}));

    EXPECT_EQ(KindOf(Completed(session->Commands().Artwork())), ErrorKind::BadReply);
}

TEST_F(CommandsTest, ReturnsTheTextsThatTheCoreDoesNot)
{
    service.Answer("GetIpodName", "('Phone',)");
    service.Answer("GetIpodAppBundleName", "('com.example.app',)");
    service.Answer("GetCarplayDeviceDetectStatus", "(2, 'SERIAL')");

    EXPECT_EQ(Completed(Ask().IpodName()).value(), "Phone");
    EXPECT_EQ(Completed(Ask().ForegroundApp()).value(), "com.example.app");
    EXPECT_EQ(Completed(Ask().CarPlayStatus()).value().serialNumber, "SERIAL");
    EXPECT_EQ(Completed(Ask().CarPlayStatus()).value().status, DeviceStatus::Unsupported);
}

TEST_F(CommandsTest, ASilentServiceTimesOutAtTheDeadline)
{
    service.Hold("Next");
    const auto start = std::chrono::steady_clock::now();

    EXPECT_EQ(KindOf(Completed(Ask().Next().Within(50ms))), ErrorKind::TimedOut);
    EXPECT_EQ(KindOf(Ask().Next().Within(50ms).Wait()), ErrorKind::TimedOut);

    EXPECT_GE(std::chrono::steady_clock::now() - start, 100ms);
}

TEST_F(CommandsTest, ACancelledRequestCompletesAtOnce)
{
    service.Hold("Next");
    const Cancellation stop;
    const Pending result(Ask().Next().CancelledBy(stop));
    ASSERT_TRUE(RunLoopUntil([&] { return Sent("Next()"); }));

    stop.Cancel();

    EXPECT_EQ(KindOf(result.Get(500ms)), ErrorKind::Cancelled);
}

TEST_F(CommandsTest, ABlockedCallerIsCancelledByAnotherThread)
{
    service.Hold("Next");
    const Cancellation stop;
    std::thread stopping(
        [&]
        {
            service.WaitForCalls(1);
            stop.Cancel();
        });

    EXPECT_EQ(KindOf(Ask().Next().CancelledBy(stop).Wait()), ErrorKind::Cancelled);

    stopping.join();
}

TEST_F(CommandsTest, AccessoryTextsAreStoredInRecordSlots)
{
    std::promise<std::string> sent;
    service.On("EapInit",
               [&sent](GVariant* arguments)
               {
                   GVariant* boxed = nullptr;
                   g_variant_get(arguments, "(v)", &boxed);
                   sent.set_value({static_cast<const char*>(g_variant_get_data(boxed)), g_variant_get_size(boxed)});
                   g_variant_unref(boxed);
                   return Reply::With("()");
               });
    const std::string longest(255, 'x');

    EXPECT_TRUE(Completed(Ask().AnnounceAccessory({longest, "app"})));

    std::string record = longest + std::string(1, '\0') + "app";
    record.resize(512);
    EXPECT_EQ(sent.get_future().get(), record);
}

TEST_F(CommandsTest, AnAlreadyCancelledRequestIsNotSent)
{
    const Cancellation stop;
    stop.Cancel();

    EXPECT_EQ(KindOf(Completed(Ask().Next().CancelledBy(stop))), ErrorKind::Cancelled);
    EXPECT_EQ(KindOf(Ask().Next().CancelledBy(stop).Wait()), ErrorKind::Cancelled);

    // Calls arrive in order.
    service.Answer("Pause", "(true,)");
    EXPECT_TRUE(Completed(Ask().Pause()));
    EXPECT_FALSE(Sent("Next()"));
}

TEST_F(CommandsTest, AServiceThatDiesBeforeReplyingIsLost)
{
    service.Hold("Next");
    const Pending result(Ask().Next());
    ASSERT_TRUE(RunLoopUntil([&] { return Sent("Next()"); }));

    service.Vanish();

    EXPECT_EQ(KindOf(result.Get()), ErrorKind::ServiceLost);
}

TEST_F(CommandsTest, ABlockedCallerIsNotified)
{
    service.Hold("Next");
    std::thread dying(
        [this]
        {
            service.WaitForCalls(1);
            service.Vanish();
        });

    EXPECT_EQ(KindOf(Ask().Next().Wait()), ErrorKind::ServiceLost);

    dying.join();
}

TEST_F(CommandsTest, ReachesARestartedServiceBeforeTheLoopRuns)
{
    RunLoopFor(50ms);
    service.Vanish();
    FakeService next;
    next.Answer("GetDeviceAmount", "(2,)");

    EXPECT_EQ(Ask().DeviceCount().Wait().value(), 2);
}

TEST_F(CommandsTest, BlockingFormsDoNotRunOtherContexts)
{
    service.Answer("Next", "(true,)");
    bool ran = false;
    g_idle_add(
        [](gpointer flag) -> gboolean
        {
            *static_cast<bool*>(flag) = true;
            return G_SOURCE_REMOVE;
        },
        &ran);

    EXPECT_TRUE(Ask().Next().Wait());

    EXPECT_FALSE(ran);
}

TEST_F(CommandsTest, FuturesAreFulfilledWhereTheLoopRuns)
{
    service.Answer("GetDeviceAmount", "(2,)");
    int count = 0;
    bool done = false;
    std::thread waiting(
        [&]
        {
            count = Ask().DeviceCount().Future().get().value();
            g_main_context_invoke(
                nullptr,
                [](gpointer flag) -> gboolean
                {
                    *static_cast<bool*>(flag) = true;
                    return G_SOURCE_REMOVE;
                },
                &done);
        });

    EXPECT_TRUE(RunLoopUntil([&] { return done; }));

    waiting.join();
    EXPECT_EQ(count, 2);
}

// The loop's thread may be notified of its connection between the two steps in which another thread sends.
TEST_F(CommandsTest, ARequestMadeWhileConnectingIsSentOnce)
{
    service.Answer("Next", "(true,)");
    for (int turns = 0; turns < 8; ++turns)
    {
        session.reset();
        Open();
        for (int turn = 0; turn < turns; ++turn)
        {
            std::this_thread::sleep_for(5ms);
            g_main_context_iteration(nullptr, FALSE);
        }
        std::this_thread::sleep_for(5ms);
        std::optional<Result<void>> result;
        std::thread([&] { Ask().Next().Start([&result](Result<void> done) { result = std::move(done); }); }).join();
        EXPECT_TRUE(RunLoopUntil([&] { return result.has_value(); }));
        EXPECT_TRUE(Completed(Ask().Next()));

        const std::vector<std::string> calls = service.Calls();
        EXPECT_EQ(std::count(calls.begin(), calls.end(), "Next()"), 2 * (turns + 1)) << "sent in turn " << turns;
    }
}

TEST_F(CommandsTest, FourThreadsMaySendRequestsConcurrently)
{
    service.Answer("GetDeviceAmount", "(2,)");
    std::atomic<int> answers{0};
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back(
            [&]
            {
                for (int n = 0; n < 50; ++n)
                {
                    Ask().DeviceCount().Start([&](Result<int> count) { answers += count ? 1 : 1000; });
                    if (Ask().DeviceCount().Wait()) ++answers;
                }
            });

    EXPECT_TRUE(RunLoopUntil([&] { return answers >= 400; }, 20s));

    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(answers, 400);
}

TEST_F(CommandsTest, TheEndOfTheSessionCompletesPendingRequests)
{
    service.Hold("Next");
    const Commands commands = Ask();
    const Pending result(commands.Next());
    ASSERT_TRUE(RunLoopUntil([&] { return Sent("Next()"); }));

    session.reset();

    ASSERT_TRUE(result.Done());
    EXPECT_EQ(KindOf(result.Get()), ErrorKind::Cancelled);
    EXPECT_EQ(KindOf(Completed(commands.Next())), ErrorKind::Cancelled);
    EXPECT_EQ(KindOf(commands.Next().Wait()), ErrorKind::Cancelled);
}

TEST_F(CommandsTest, ABlockedCallerStillGetsItsReplyWhenTheSessionEnds)
{
    service.On("Next", [](GVariant*) { return Reply::With("(true,)").After(50); });
    std::optional<Result<void>> result;
    std::thread waiting([commands = Ask(), &result] { result = commands.Next().Wait(); });
    while (!Sent("Next()")) std::this_thread::yield();

    session.reset();

    waiting.join();
    EXPECT_TRUE(*result);
}

TEST_F(CommandsTest, TextsThatCannotBeSentAreNotSent)
{
    EXPECT_EQ(KindOf(Completed(Ask().LaunchApp("\xC3\x28"))), ErrorKind::BadArgument);
    EXPECT_EQ(KindOf(Ask().LaunchApp(std::string("a\0b", 3)).Wait()), ErrorKind::BadArgument);
    EXPECT_EQ(KindOf(Ask().AnnounceAccessory({std::string(256, 'x'), ""}).Wait()), ErrorKind::BadArgument);
    EXPECT_EQ(KindOf(Ask().StartPlayback(static_cast<PlayOption>(6)).Wait()), ErrorKind::BadArgument);
}

TEST_F(CommandsTest, NumbersBeyondTheContractsRangeAreNotSent)
{
    service.Answer("Seek", "()");
    service.Answer("SetShuffleMode", "()");
    service.Answer("SetRepeatMode", "()");
    constexpr std::chrono::seconds most{std::numeric_limits<std::int32_t>::max()};

    EXPECT_TRUE(Completed(Ask().Seek(most)));
    for (const std::chrono::seconds beyond : {most + 1s, -most - 2s})
        EXPECT_EQ(KindOf(Completed(Ask().Seek(beyond))), ErrorKind::BadArgument);
    EXPECT_TRUE(Completed(Ask().SetShuffle(static_cast<Shuffle>(255))));
    EXPECT_TRUE(Completed(Ask().SetRepeat(static_cast<Repeat>(255))));
    for (const int beyond : {-1, 256})
    {
        EXPECT_EQ(KindOf(Completed(Ask().SetShuffle(static_cast<Shuffle>(beyond)))), ErrorKind::BadArgument);
        EXPECT_EQ(KindOf(Ask().SetRepeat(static_cast<Repeat>(beyond)).Wait()), ErrorKind::BadArgument);
    }
}

TEST_F(CommandsTest, ACompletionThatThrowsIsNamedInTheLog)
{
    service.Answer("Next", "(true,)");

    Ask().Next().Start([](Result<void>) { throw std::runtime_error("broken"); });

    EXPECT_TRUE(RunLoopUntil([] { return CountLogLines("80 LogWarning: callback 'Next' threw: broken") == 1; }));
}

TEST_F(CommandsWithoutServiceTest, ReportTheReason)
{
    Open();

    EXPECT_EQ(KindOf(Completed(session->Commands().Next())), ErrorKind::NoService);
    EXPECT_EQ(KindOf(session->Commands().Next().Wait()), ErrorKind::NoService);
}

TEST_F(CommandsWithoutBusTest, ReportTheReason)
{
    const auto session = Session::Open();

    EXPECT_EQ(KindOf(Completed((*session)->Commands().Next())), ErrorKind::NoBus);
    EXPECT_EQ(KindOf((*session)->Commands().Next().Wait()), ErrorKind::NoBus);
    EXPECT_EQ((*session)->Connection().error->kind, ErrorKind::NoBus);
}

const std::string kTrack = TrackBody("x");
const std::string kNoArtwork = PictureBody(1);

struct Row
{
    const char* call;
    const char* reply;
    std::function<void(const Commands&)> send;
};

void PrintTo(const Row& row, std::ostream* out)
{
    *out << row.call;
}

class EachCommandTest : public KitTest, public testing::WithParamInterface<Row>
{
};

#define ROW(expression, method, reply)                                                 \
    Row                                                                                \
    {                                                                                  \
        method, reply, [](const Commands& c) { EXPECT_TRUE(Completed(c.expression)); } \
    }

TEST_P(EachCommandTest, CallsItsMethod)
{
    FakeService service;
    const std::string text = GetParam().call;
    service.Answer(text.substr(0, text.find('(')), GetParam().reply);
    Open();

    GetParam().send(session->Commands());

    EXPECT_THAT(service.Calls(), testing::Contains(text));
}

INSTANTIATE_TEST_SUITE_P(
    Commands, EachCommandTest,
    testing::Values(
        ROW(StartPlayback(PlayOption::Resume), "Play(0x04,)", "(true,)"), ROW(Pause(), "Pause()", "(true,)"),
        ROW(Stop(), "Stop()", "(true,)"), ROW(Next(), "Next()", "(true,)"), ROW(Previous(), "Previous()", "(true,)"),
        ROW(Seek(12s), "Seek(12,)", "()"), ROW(FastForward(), "FastForward()", "(true,)"),
        ROW(FastBackward(), "FastBackward()", "(true,)"), ROW(StopWinding(), "StopFfwFbw()", "(true,)"),
        ROW(SetShuffle(Shuffle::Albums), "SetShuffleMode(0x02,)", "()"),
        ROW(SetRepeat(Repeat::One), "SetRepeatMode(0x01,)", "()"),
        ROW(PressButton({1, 2, 3ms}),
            "SetButtonStatus(<[byte 0x01, 0x00, 0x00, 0x00, 0x02, 0x00, 0x00, 0x00, 0x03, 0x00, 0x00, 0x00]>,)",
            "(true,)"),
        ROW(SetTransmission(true), "SetTransmissionState(0x01,)", "()"),
        ROW(CurrentTrack(), "GetCurrentMediaInfo()", kTrack.c_str()), ROW(PlayStatus(), "GetPlayStatus()", "(1,)"),
        ROW(Position(), "GetPlayPosition()", "(1, 2)"), ROW(WindingStatus(), "GetFfwFbwStatus()", "(2,)"),
        ROW(Shuffle(), "GetShuffleMode()", "(1,)"), ROW(Repeat(), "GetRepeatMode()", "(1,)"),
        ROW(Artwork(), "GetPlayingTrackAlbumArtwork()", kNoArtwork.c_str()),
        ROW(PlayingIndex(), "GetPlayingTrackIdx()", "(-1,)"),
        ROW(PlayingCount(), "GetPlayingListItemsAmount()", "(1,)"),
        ROW(DatabaseCount(true), "GetCurDbListItemsAmount(true,)", "(1,)"),
        ROW(EnterRoot(), "EnterDbRoot()", "(true,)"), ROW(EnterParent(), "EnterDbParentList()", "(true,)"),
        ROW(EnterChild(3), "EnterDbChildList(3,)", "(true,)"), ROW(AtRoot(), "IsIPodInDbRoot()", "(false,)"),
        ROW(PlayDatabaseEntry(3), "PlayDbList(3,)", "()"), ROW(PlayPlayingEntry(3), "PlayPlayingList(3,)", "()"),
        ROW(DeviceCount(), "GetDeviceAmount()", "(1,)"), ROW(EnterDevice(1), "EnterDeviceChildList(1,)", "(true,)"),
        ROW(IpodName(), "GetIpodName()", "('n',)"), ROW(ForegroundApp(), "GetIpodAppBundleName()", "('n',)"),
        ROW(LaunchApp("com.example.app"), "EapLaunchApp('com.example.app',)", "(true,)"),
        ROW(CarPlayStatus(), "GetCarplayDeviceDetectStatus()", "(1, '')"),
        ROW(CarLifeStatus(), "GetCarlifeDeviceDetectStatus()", "(1,)"),
        ROW(NotifyCarPlay(true, false), "CarplayConnectStatusNotify(true, false)", "()"),
        ROW(SetHubTestMode(4), "SetHubTestMode(0x04,)", "()")),
    [](const auto& row) { return std::string(row.param.call).substr(0, std::string(row.param.call).find('(')); });
}  // namespace
}  // namespace test
