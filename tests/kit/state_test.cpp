#include <thread>

#include "kit/kit_test.h"

namespace test
{
namespace
{
using StateTest = ReadyTest;
using UnopenedStateTest = ServedTest;

const std::vector<unsigned char> kPng = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n', 0, 0, 0, 13,
                                         'I',  'H', 'D', 'R', 0,    0,    1,    44,   0, 0, 0, 200};

TEST_F(StateTest, IsReadFromTheServiceWhenItAppears)
{
    EXPECT_EQ(State()->track->title, "Song");
    EXPECT_EQ(State()->trackIndex, 1);
    EXPECT_EQ(State()->status, PlayStatus::Playing);
    EXPECT_EQ(State()->position->position, 1s);
    EXPECT_EQ(State()->position->duration, 60s);
    EXPECT_TRUE(State()->position->advancing);
    EXPECT_EQ(State()->shuffle, Shuffle::Albums);
    EXPECT_EQ(State()->repeat, Repeat::One);
    EXPECT_EQ(State()->queueSize, 3);
    EXPECT_EQ(State()->deviceCount, 1);
    EXPECT_EQ(State()->deviceName, "Phone");
    EXPECT_EQ(State()->foregroundApp, "com.example.app");
    EXPECT_EQ(State()->carPlay->serialNumber, "SERIAL");
    EXPECT_EQ(State()->carLife, DeviceStatus::NotDetected);
    EXPECT_EQ(State()->Artwork(), nullptr);
    EXPECT_FALSE(State()->location);
}

TEST_F(UnopenedStateTest, IsPublishedWithEachEventWithoutASettleTime)
{
    options.settle = 0ms;
    Ready();
    std::vector<std::string> order;
    const auto later = [](gpointer steps)
    {
        static_cast<std::vector<std::string>*>(steps)->emplace_back("next iteration");
        return G_SOURCE_REMOVE;
    };
    const Subscription events = session->OnEvent("event",
                                                 [&](const ipodkit::Event&)
                                                 {
                                                     order.emplace_back("event");
                                                     g_idle_add_full(G_PRIORITY_HIGH, later, &order, nullptr);
                                                 });
    const Subscription states =
        session->OnState("state", [&](const StatePtr&, Fields) { order.emplace_back("state"); });
    ASSERT_TRUE(RunLoopUntil([&] { return !order.empty(); }));
    order.clear();

    service.Emit("OnIpodPlayingListAmountChange", "(77,)");

    ASSERT_TRUE(RunLoopUntil([&] { return order.size() == 3; }));
    EXPECT_EQ(order, (std::vector<std::string>{"event", "state", "next iteration"}));
    EXPECT_EQ(State()->queueSize, 77);
}

TEST_F(StateTest, FollowsEveryEvent)
{
    // The state is read again after this event; CarLife is the last of the fields below, so older replies have arrived
    // before the next events.
    service.Answer("GetCarlifeDeviceDetectStatus", "(0,)");
    Emit("OnIpodDeviceStatusChange", "(0, true)");
    ASSERT_TRUE(RunLoopUntil([&] { return State()->carLife == DeviceStatus::Detected; }));
    Emit("OnPlayStatusChanged", "(2,)");
    Emit("OnIpodShuffleModeChange", "(0,)");
    Emit("OnIpodRepeatModeChange", "(2,)");
    Emit("OnIpodPlayingListAmountChange", "(9,)");
    Emit("OnIpodSourceValidStatusChange", "(true,)");
    Emit("OnCarplayDeviceDetectStatusChange", "(1, '')");
    Emit("OnCarlifeDeviceDetectStatusChange", "(1,)");
    Emit("OnIpodLocationStatusChange", "(1,)");
    Emit("OnIpodAppBundleNameChange", "('com.example.other',)");
    Emit("OnWirelessCarPlayUpdate", "(true, 'addr')");
    Emit("OnOOBPairingInfo", "('bt', [(0x05,)])");
    Emit("OnIpodStartEapSession", "(3, 300)");

    EXPECT_EQ(State()->device, DeviceStatus::Detected);
    EXPECT_EQ(State()->status, PlayStatus::Paused);
    EXPECT_FALSE(State()->position->advancing);
    EXPECT_EQ(State()->shuffle, Shuffle::Off);
    EXPECT_EQ(State()->repeat, Repeat::All);
    EXPECT_EQ(State()->queueSize, 9);
    EXPECT_EQ(State()->sourceValid, true);
    EXPECT_EQ(State()->carPlay->status, DeviceStatus::NotDetected);
    EXPECT_EQ(State()->carLife, DeviceStatus::NotDetected);
    EXPECT_EQ(State()->location, ipodkit::LocationStatus::Requested);
    EXPECT_EQ(State()->foregroundApp, "com.example.other");
    EXPECT_EQ(State()->wireless->deviceAddress, "addr");
    EXPECT_EQ(State()->pairing->bytes, std::vector<unsigned char>{5});
    EXPECT_EQ(State()->accessorySessions, (std::map<std::uint16_t, unsigned char>{{300, 3}}));
}

TEST_F(StateTest, ABurstIsOneChange)
{
    shared.SetBytes("VecArtworkChangeBufferShareMemory", kPng);
    std::vector<Fields> changes;
    const Subscription watching =
        session->OnState("changes", [&](const StatePtr&, Fields changed) { changes.push_back(changed); });
    RunLoopFor(5ms);

    service.Emit("OnIpodPlayingTrackChange", TrackEvent(2, "Next", 90000));
    service.Emit("OnIpodArtworkChange", PictureBody());
    Emit("OnPlayProgressChange", "(0, 90000)");

    EXPECT_THAT(changes,
                ElementsAre(Fields::All(), Field::Track | Field::TrackIndex | Field::Position | Field::Artwork));
    EXPECT_EQ(State()->Artwork()->width, 300U);
    EXPECT_EQ(State()->Artwork()->height, 200U);
}

TEST_F(StateTest, ATextThatFillsItsSlotIsTheSameByReplyAndByEvent)
{
    for (const std::size_t length : {255, 256, 300, 1024})
    {
        const std::string title(length, 'a');
        service.Answer("GetCurrentMediaInfo", TrackBody(title, 0x7A7A7A7A));
        const Track replied = Completed(Ask().CurrentTrack()).value();

        Emit("OnIpodPlayingTrackChange", TrackEvent(2, title, 0x7A7A7A7A));

        const Track track = State()->track.value();
        EXPECT_THAT((std::vector{replied.title, replied.artist, replied.album, replied.genre}),
                    ElementsAre(track.title, track.artist, track.album, track.genre));
        EXPECT_EQ(track.title.size(), length < 1024 ? length : 1028) << length;
    }
}

TEST_F(StateTest, EachPublishedStateIsImmutableAndHasTheNextVersion)
{
    const StatePtr before = State();

    Emit("OnIpodShuffleModeChange", "(0,)");
    Emit("OnIpodShuffleModeChange", "(1,)");

    EXPECT_EQ(State()->version, before->version + 2);
    EXPECT_EQ(State()->shuffle, Shuffle::Songs);
    EXPECT_EQ(before->shuffle, Shuffle::Albums);
}

TEST_F(StateTest, APauseKeepsThePosition)
{
    const Position playing = *State()->position;
    RunLoopFor(30ms);

    Emit("OnPlayStatusChanged", "(2,)");

    const Position paused = *State()->position;
    EXPECT_GE(paused.position, playing.position + 30ms);
    EXPECT_EQ(paused.position, playing.At(paused.at));
    EXPECT_EQ(paused.At(paused.at + 9s), paused.position);
}

TEST_F(StateTest, AValueRevertedWithinABurstIsNotAChange)
{
    const std::uint64_t version = State()->version;

    service.Emit("OnIpodRepeatModeChange", "(0,)");
    Emit("OnIpodRepeatModeChange", "(1,)");

    EXPECT_EQ(State()->version, version);
}

TEST_F(StateTest, LateJoinersGetEverythingAtOnce)
{
    StatePtr got;
    Fields fields;
    const Subscription late = session->OnState("late",
                                               [&](const StatePtr& state, Fields changed)
                                               {
                                                   got = state;
                                                   fields = changed;
                                               });

    RunLoopFor(5ms);

    ASSERT_NE(got, nullptr);
    EXPECT_EQ(got, State());
    EXPECT_EQ(fields, Fields::All());
}

TEST_F(StateTest, SubscribersAreNotifiedOnlyOfTheirFields)
{
    int calls = 0;
    const Subscription modes = session->OnState(
        "modes", [&](const StatePtr&, Fields) { ++calls; }, Field::Shuffle | Field::Repeat);
    RunLoopFor(5ms);

    Emit("OnIpodPlayingListAmountChange", "(9,)");
    Emit("OnIpodShuffleModeChange", "(0,)");

    EXPECT_EQ(calls, 2);
}

TEST_F(StateTest, AnEndedSubscriptionIsNotNotified)
{
    int calls = 0;
    Subscription watching = session->OnState("watching", [&](const StatePtr&, Fields) { ++calls; });
    RunLoopFor(5ms);

    watching.Reset();
    Emit("OnIpodShuffleModeChange", "(0,)");

    EXPECT_EQ(calls, 1);
}

TEST_F(StateTest, AnEndedSubscriptionReleasesItsCallbackAtOnce)
{
    const auto held = std::make_shared<int>();
    Subscription watching = session->OnState("held", [held](const StatePtr&, Fields) {});
    RunLoopFor(5ms);

    watching.Reset();

    EXPECT_EQ(held.use_count(), 1);
}

TEST_F(StateTest, ACallbackThatEndsItselfKeepsItsCapturesUntilItReturns)
{
    const auto held = std::make_shared<int>();
    long inside = 0;
    Subscription watching;
    watching = session->OnState("held",
                                [&inside, &watching, held](const StatePtr&, Fields)
                                {
                                    watching.Reset();
                                    inside = held.use_count();
                                });

    RunLoopFor(5ms);

    EXPECT_EQ(inside, 2);
    EXPECT_EQ(held.use_count(), 1);
}

TEST_F(StateTest, ASubscriptionThatItsOwnCallbackHoldsMayBeEnded)
{
    std::shared_ptr<Subscription> holder(new Subscription);
    const std::weak_ptr<Subscription> watched = holder;
    *holder = session->OnState("held", [held = holder](const StatePtr&, Fields) {});
    Subscription& watching = *std::exchange(holder, nullptr);

    watching.Reset();

    EXPECT_TRUE(watched.expired());
}

TEST_F(StateTest, ACallbackEndedByAnotherThreadIsReleasedWhenItReturns)
{
    const auto held = std::make_shared<int>();
    std::atomic<bool> running{false};
    std::atomic<bool> returned{false};
    Subscription watching = session->OnState("held",
                                             [&running, &returned, held](const StatePtr&, Fields)
                                             {
                                                 running = true;
                                                 std::this_thread::sleep_for(20ms);
                                                 returned = true;
                                             });
    long after = 0;
    std::thread ending(
        [&]
        {
            while (!running) std::this_thread::yield();
            watching.Reset();
            after = returned ? held.use_count() : 0;
        });

    EXPECT_TRUE(RunLoopUntil([&] { return returned.load(); }));

    ending.join();
    EXPECT_EQ(after, 1);
}

TEST_F(StateTest, AStateCallbackMayDestroyTheSession)
{
    int calls = 0;
    bool greeted = false;
    const Subscription ending = session->OnState("end",
                                                 [&](const StatePtr&, Fields)
                                                 {
                                                     if (std::exchange(greeted, true)) session.reset();
                                                 });
    const Subscription counting = session->OnState("count", [&](const StatePtr&, Fields) { ++calls; });
    RunLoopFor(5ms);
    ASSERT_TRUE(greeted);

    service.Emit("OnIpodShuffleModeChange", "(0,)");

    EXPECT_TRUE(RunLoopUntil([&] { return session == nullptr; }));
    RunLoopFor(5ms);
    EXPECT_EQ(calls, 1);
}

TEST_F(StateTest, ANewDeviceIsQueriedForFieldsWithoutEvents)
{
    Emit("OnIpodDeviceStatusChange", "(1, false)");

    service.Answer("GetDeviceAmount", "(2,)");
    service.Answer("GetIpodName", "('Other',)");
    Emit("OnIpodDeviceStatusChange", "(0, false)");

    EXPECT_TRUE(RunLoopUntil([&] { return State()->deviceName == "Other"; }));
    EXPECT_EQ(State()->deviceCount, 2);
}

TEST_F(StateTest, ADeviceEnteredByTheApplicationIsQueried)
{
    service.Answer("EnterDeviceChildList", "(true,)");
    service.Answer("GetIpodName", "('Other',)");

    EXPECT_TRUE(Completed(Ask().EnterDevice(1)));

    EXPECT_TRUE(RunLoopUntil([&] { return State()->deviceName == "Other"; }));
}

TEST_F(UnopenedStateTest, PlaybackOfTheRemainingDeviceStaysKnown)
{
    service.Answer("GetPlayingTrackAlbumArtwork", PictureBody());
    shared.SetBytes("VecArtworkBufferShareMemory", kPng);
    Ready();

    Emit("OnIpodDeviceStatusChange", "(1, false)");

    ASSERT_TRUE(RunLoopUntil([&] { return State()->track && State()->deviceName && State()->Artwork() != nullptr; }));
    EXPECT_EQ(State()->track->title, "Song");
    EXPECT_EQ(State()->deviceName, "Phone");
    EXPECT_EQ(State()->queueSize, 3);
    EXPECT_EQ(State()->device, DeviceStatus::NotDetected);
}

TEST_F(StateTest, AThousandDeviceChangesNeedFewPasses)
{
    const auto asked = [&]
    {
        const std::vector<std::string> calls = service.Calls();
        return std::count(calls.begin(), calls.end(), "GetIpodName()");
    };
    const auto before = asked();

    for (int i = 0; i < 1000; ++i) service.Emit("OnIpodDeviceStatusChange", i % 2 == 0 ? "(1, false)" : "(0, false)");
    Settle(service);

    EXPECT_TRUE(RunLoopUntil([&] { return State()->device == DeviceStatus::Detected && State()->deviceName; }));
    EXPECT_GT(asked(), before);
    EXPECT_LT(asked(), before + 500);
}

TEST_F(StateTest, KeepsStateWithoutTheServiceExceptCallsAndSessions)
{
    Emit("OnIpodStartEapSession", "(3, 300)");
    Emit("OnIpodLocationStatusChange", "(1,)");
    Emit("OnIpodPhoneCallChange", Record({0x2A, 1, 'a', 0x18, 4}));
    ASSERT_EQ(State()->calls.size(), 1U);

    service.Vanish();
    ASSERT_TRUE(RunLoopUntil([&] { return State()->phase == Phase::Lost; }));

    EXPECT_EQ(State()->track->title, "Song");
    EXPECT_THAT(State()->calls, IsEmpty());
    EXPECT_THAT(State()->accessorySessions, IsEmpty());

    AnsweringService next;
    next.Answer("GetPlayingListItemsAmount", "(77,)");
    Ready(2);
    EXPECT_EQ(State()->queueSize, 77);
    EXPECT_FALSE(State()->location);
}

TEST_F(StateTest, CallsAreKeyedByTheirIdentifierAndEndWithDisconnection)
{
    Emit("OnIpodPhoneCallChange", Record({0x2A, 1, 'a', 0x18, 2, 0x12, 1, 'X'}));
    Emit("OnIpodPhoneCallChange", Record({0x2A, 1, 'b', 0x18, 2}));
    Emit("OnIpodPhoneCallChange", Record({0x2A, 1, 'a', 0x18, 4}));
    ASSERT_EQ(State()->calls.size(), 2U);
    EXPECT_EQ(State()->calls.at("a").status, CallStatus::Active);
    EXPECT_EQ(State()->calls.at("a").name, "X");

    Emit("OnIpodPhoneCallChange", Record({0x2A, 1, 'a', 0x18, 0}));
    Emit("OnIpodPhoneCallChange", Record({0x2A, 1, 'z', 0x18, 0}));
    EXPECT_EQ(State()->calls.size(), 1U);
}

TEST_F(StateTest, CallsWithoutAnIdentifierAreOneCall)
{
    Emit("OnIpodPhoneCallChange", Record({0x18, 2, 0x12, 1, 'X'}));
    Emit("OnIpodPhoneCallChange", Record({0x18, 4}));
    ASSERT_EQ(State()->calls.size(), 1U);
    EXPECT_EQ(State()->calls.at("").status, CallStatus::Active);
    EXPECT_EQ(State()->calls.at("").name, "X");

    Emit("OnIpodPhoneCallChange", Record({0x18, 0}));
    EXPECT_THAT(State()->calls, IsEmpty());
}

TEST_F(UnopenedStateTest, ThePreviousDeviceNameIsClearedIfTheNextIsLate)
{
    options.deadline = 100ms;
    Ready();
    service.Hold("GetIpodName");

    Emit("OnIpodDeviceStatusChange", "(0, false)");

    ASSERT_TRUE(RunLoopUntil([&] { return !State()->deviceName; }));
    EXPECT_TRUE(RunLoopUntil([&] { return State()->missing == Fields(Field::DeviceName); }));
    service.Answer("GetIpodName", "('Next',)");
    EXPECT_TRUE(RunLoopUntil([&] { return State()->deviceName == "Next" && State()->missing.Empty(); }));
}

TEST_F(StateTest, BatteryEventsComplementEachOther)
{
    Emit("OnIpodBatteryChange", Record({8, 1}));
    Emit("OnIpodBatteryChange", Record({16, 50}));

    EXPECT_EQ(State()->battery->charging, ChargingStatus::Charging);
    EXPECT_EQ(State()->battery->percent, 50);
}

TEST_F(UnopenedStateTest, ArtworkOfEventAndGetterIsShared)
{
    service.Answer("GetPlayingTrackAlbumArtwork", PictureBody());
    shared.SetBytes("VecArtworkBufferShareMemory", kPng);
    shared.SetBytes("VecArtworkChangeBufferShareMemory", kPng);
    Ready();
    const PicturePtr queried = State()->Artwork();

    Emit("OnIpodArtworkChange", PictureBody());

    ASSERT_NE(queried, nullptr);
    EXPECT_EQ(queried->type, PictureType::Png);
    EXPECT_EQ(State()->Artwork(), queried);
}

TEST_F(StateTest, RequestsArtworkForATrackWithoutIt)
{
    service.Answer("GetPlayingTrackAlbumArtwork", PictureBody());
    shared.SetBytes("VecArtworkBufferShareMemory", kPng);

    service.Emit("OnIpodPlayingTrackChange", TrackEvent(2, "Next"));

    EXPECT_TRUE(RunLoopUntil([&] { return State()->Artwork() != nullptr; }));
}

TEST_F(UnopenedStateTest, ArtworkBeyondTheLimitIsDropped)
{
    options.artworkLimit = 10;
    Ready();
    shared.SetBytes("VecArtworkChangeBufferShareMemory", kPng);

    Emit("OnIpodArtworkChange", PictureBody());

    EXPECT_EQ(State()->Artwork(), nullptr);
}

TEST(PositionTest, AdvancesUpToTheEndOfTheTrack)
{
    const auto start = std::chrono::steady_clock::now();
    const Position playing{1s, 3s, start, true};
    const Position paused{1s, 3s, start, false};
    const Position endless{1s, 0s, start, true};

    EXPECT_EQ(playing.At(start + 1s), 2s);
    EXPECT_EQ(playing.At(start + 9s), 3s);
    EXPECT_EQ(playing.At(start - 9s), 1s);
    EXPECT_EQ(paused.At(start + 1s), 1s);
    EXPECT_EQ(endless.At(start + 9s), 10s);
}
}  // namespace
}  // namespace test

namespace ipodkit
{
inline void PrintTo(Fields fields, std::ostream* out)
{
    for (unsigned bit = 0; bit < 22; ++bit)
        if (fields.Has(static_cast<Field>(1U << bit))) *out << bit << ' ';
}
}  // namespace ipodkit
