// Services that violate the contract: the state stays consistent, the loop keeps running, and errors are clear.
#include <ipodkit/accessory.h>
#include <ipodkit/pager.h>

#include <climits>
#include <thread>

#include "kit/kit_test.h"
#include "kit/ticker.h"

namespace test
{
namespace
{
using BadInputTest = ReadyTest;
using UnopenedBadInputTest = ServedTest;

TEST_F(UnopenedBadInputTest, TooManyEntriesAreABadReplyAndTheSizeIsReadAgain)
{
    service.Answer("GetPlayingListItemsAmount", "(100,)");
    service.Answer("GetPlayingListItems", "(true,)");
    shared.SetList("VecPlayingListShareMemory", std::vector<std::string>(10, "x"));
    Ready();
    Pager pager(*session, ListKind::Playing);

    const Result<PagePtr> page = Completed(pager.At(0));

    EXPECT_EQ(KindOf(page), ErrorKind::BadReply);
    EXPECT_THAT(page.error().reason, HasSubstr("expected a page of 50 entries, got 10"));
    EXPECT_EQ(pager.Cached(0), nullptr);
    service.Answer("GetPlayingListItemsAmount", "(10,)");
    EXPECT_EQ(Completed(pager.At(9)).value()->names.size(), 10U);
}

TEST_F(UnopenedBadInputTest, TooFewEntriesAreABadReply)
{
    service.Answer("GetPlayingListItemsAmount", "(10,)");
    service.Answer("GetPlayingListItems", "(true,)");
    shared.SetList("VecPlayingListShareMemory", std::vector<std::string>(50, "x"));
    Ready();
    Pager pager(*session, ListKind::Playing);

    EXPECT_EQ(KindOf(Completed(pager.At(0))), ErrorKind::BadReply);
    EXPECT_EQ(KindOf(Completed(pager.At(9))), ErrorKind::BadReply);
    EXPECT_EQ(KindOf(Completed(pager.At(10))), ErrorKind::BadArgument);
}

TEST_F(UnopenedBadInputTest, ANegativeAmountIsABadReply)
{
    service.Answer("GetPlayingListItemsAmount", "(-1,)");
    Ready();
    Pager pager(*session, ListKind::Playing);

    EXPECT_EQ(KindOf(Completed(pager.At(0))), ErrorKind::BadReply);
    EXPECT_FALSE(State()->queueSize);
    Emit("OnIpodPlayingListAmountChange", "(-5,)");
    EXPECT_FALSE(State()->queueSize);
}

TEST_F(UnopenedBadInputTest, TheLargestAmountIsRequestedWithinItsRange)
{
    service.Answer("GetPlayingListItemsAmount", "(" + std::to_string(INT_MAX) + ",)");
    service.Answer("GetPlayingListItems", "(true,)");
    service.On("GetUpdateListItems",
               [this](GVariant* arguments)
               {
                   const auto [first, last] = RangeOf(arguments);
                   shared.SetList("VecUpdateListShareMemory", std::vector<std::string>(last - first + 1U, "y"));
                   return Reply::With("(true,)");
               });
    shared.SetList("VecPlayingListShareMemory", std::vector<std::string>(47, "x"));
    Ready();
    Pager playing(*session, ListKind::Playing);
    Pager update(*session, ListKind::Update);

    const PagePtr last = Completed(playing.At(INT_MAX - 1)).value();
    const PagePtr beyond = Completed(update.At(INT_MAX)).value();

    EXPECT_EQ(last->first, 2147483600);
    EXPECT_EQ(last->At(INT_MAX - 1), "x");
    EXPECT_EQ(beyond->first, 2147483600);
    EXPECT_EQ(beyond->At(INT_MAX), "y");
    EXPECT_THAT(service.Calls(), testing::Contains("GetPlayingListItems(2147483600, 2147483646)"));
    EXPECT_THAT(service.Calls(), testing::Contains("GetUpdateListItems(2147483600, 2147483647)"));
}

TEST_F(BadInputTest, EventsForUnknownCallsAndSessionsChangeNothing)
{
    AccessoryPort port(*session);
    const std::uint64_t version = State()->version;

    Emit("OnIpodPhoneCallChange", Record({0x2A, 1, 'z', 0x18, 0}));
    Emit("OnIpodPhoneCallChange", Record({0x18, 0}));
    Emit("OnIpodPhoneCallChange", Record({0x2A, 0xFF, 0xFF}));
    Emit("OnIpodStopEapSession", "(300,)");
    Emit("OnIpodReceiveEapData", "(44,)");

    EXPECT_EQ(State()->version, version);
    EXPECT_THAT(port.Sessions(), IsEmpty());
    EXPECT_EQ(session->Connection().phase, Phase::Ready);
}

TEST_F(BadInputTest, ASessionOpenedTwiceCountsAsClosedInBetween)
{
    AccessoryPort port(*session);
    Emit("OnIpodStartEapSession", "(3, 300)");
    const AccessorySessionPtr first = port.Sessions().at(0);

    Emit("OnIpodStartEapSession", "(4, 300)");

    EXPECT_FALSE(first->IsOpen());
    ASSERT_EQ(port.Sessions().size(), 1U);
    EXPECT_EQ(port.Sessions().front()->Protocol(), 4);
    EXPECT_EQ(State()->accessorySessions, (std::map<std::uint16_t, unsigned char>{{300, 4}}));
}

TEST_F(UnopenedBadInputTest, ARestartDuringAPageCancelsItAndTheNextOneIsCorrect)
{
    service.Hold("GetPlayingListItems");
    Ready();
    Pager pager(*session, ListKind::Playing);
    const Pending result(pager.At(0));
    const auto asked = [&]
    {
        const std::vector<std::string> calls = service.Calls();
        return std::find(calls.begin(), calls.end(), "GetPlayingListItems(0, 2)") != calls.end();
    };
    ASSERT_TRUE(RunLoopUntil(asked));

    service.Vanish();
    AnsweringService next;
    next.Answer("GetPlayingListItems", "(true,)");
    shared.SetList("VecPlayingListShareMemory", {"a", "b", "c"});
    Ready(2);

    ASSERT_TRUE(result.Done());
    EXPECT_THAT(KindOf(result.Get()), testing::AnyOf(ErrorKind::Cancelled, ErrorKind::ServiceLost));
    EXPECT_EQ(Completed(pager.At(2)).value()->At(2), "c");
}

TEST_F(BadInputTest, AnInvalidImageHasNoTypeAndNoSize)
{
    shared.SetBytes("VecArtworkChangeBufferShareMemory", {'n', 'o', 'n', 's', 'e', 'n', 's', 'e'});

    Emit("OnIpodArtworkChange", PictureBody());

    ASSERT_NE(State()->Artwork(), nullptr);
    EXPECT_EQ(State()->Artwork()->type, PictureType::Unknown);
    EXPECT_EQ(State()->Artwork()->width, 0U);
    EXPECT_EQ(State()->Artwork()->bytes.size(), 8U);
}

TEST_F(UnopenedBadInputTest, AnnouncedArtworkWithoutBytesIsAbsent)
{
    service.Answer("GetPlayingTrackAlbumArtwork", PictureBody());
    shared.SetBytes("VecArtworkBufferShareMemory", {});
    shared.SetBytes("VecArtworkChangeBufferShareMemory", {});
    Ready();

    Emit("OnIpodArtworkChange", PictureBody());

    EXPECT_EQ(State()->Artwork(), nullptr);
}

TEST_F(UnopenedBadInputTest, AnArtworkHeadOfAnotherSizeMeansNoArtwork)
{
    service.Answer("GetPlayingTrackAlbumArtwork", Record({0, 0}));
    shared.SetBytes("VecArtworkBufferShareMemory", {'G', 'I', 'F', '8', '9', 'a'});

    Ready();

    EXPECT_EQ(State()->Artwork(), nullptr);
}

TEST_F(UnopenedBadInputTest, RepliesOfOtherTypesLeaveTheirFieldsUnknown)
{
    for (const char* method : {"GetCurrentMediaInfo", "GetPlayingTrackIdx", "GetPlayPosition", "GetShuffleMode",
                               "GetRepeatMode", "GetIpodName", "GetCarplayDeviceDetectStatus"})
        service.AnswerInvalid(method, "(true, 'nonsense')");

    Ready();

    EXPECT_FALSE(State()->track);
    EXPECT_FALSE(State()->position);
    EXPECT_FALSE(State()->shuffle);
    EXPECT_FALSE(State()->carPlay);
    EXPECT_EQ(State()->deviceCount, 1);
}

// Built from bytes: parsing text would take longer than everything else.
GVariant* TrackBodyOf(int index)
{
    std::vector<guchar> record(1040);
    const std::string title = "T" + std::to_string(index);
    std::copy(title.begin(), title.end(), record.begin());
    GVariant* const bytes = g_variant_new_fixed_array(G_VARIANT_TYPE_BYTE, record.data(), record.size(), 1);
    return g_variant_new("(iv)", index, bytes);
}

// The address sanitizer unwinds the stack at every allocation, which takes longer than the event.
#ifdef __SANITIZE_ADDRESS__
constexpr int kChanges = 1000;
#else
constexpr int kChanges = 10000;
#endif

// The loop keeps ticking while they arrive.
TEST_F(BadInputTest, TenThousandTrackChangesInASecondKeepTheLoopAlive)
{
    int published = 0;
    const Subscription watching = session->OnState("count", [&](const StatePtr&, Fields) { ++published; });
    const Ticker ticker;
    std::thread sending(
        [this]
        {
            for (int i = 0; i < kChanges; ++i) service.EmitBody("OnIpodPlayingTrackChange", TrackBodyOf(i));
        });

    const bool arrived = RunLoopUntil([&] { return State()->trackIndex == kChanges - 1; }, 90s);
    sending.join();

    EXPECT_TRUE(arrived);
    EXPECT_EQ(State()->track->title, "T" + std::to_string(kChanges - 1));
    EXPECT_GT(ticker.Count(), 10);
    EXPECT_GT(published, 1);
    EXPECT_LT(published, kChanges / 2);
}
}  // namespace
}  // namespace test
