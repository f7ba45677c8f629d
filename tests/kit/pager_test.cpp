#include <ipodkit/pager.h>
#include <sys/resource.h>

#include <algorithm>
#include <climits>
#include <future>
#include <stdexcept>
#include <thread>

#include "kit/kit_test.h"

namespace test
{
namespace
{
using testing::Each;

// A service whose database level and playing list contain a number of entries "PREFIX 0", "PREFIX 1", ….
class PagerTest : public ReadyTest
{
protected:
    PagerTest()
    {
        ServeList("DB", "GetCurDbListItems", "VecDBListShareMemory", "(true, false, true)");
        ServeList("PL", "GetPlayingListItems", "VecPlayingListShareMemory", "(true,)");
        SetSize(1000);
    }

    void SetSize(int size)
    {
        service.Answer("GetCurDbListItemsAmount", "(" + std::to_string(size) + ",)");
        service.Answer("GetPlayingListItemsAmount", "(" + std::to_string(size) + ",)");
    }

    void ServeList(const std::string& prefix, const char* method, const char* vector, const char* reply)
    {
        service.On(method,
                   [=](GVariant* arguments)
                   {
                       const auto [first, last] = RangeOf(arguments);
                       std::vector<std::string> names;
                       for (int i = first; i <= last; ++i) names.push_back(prefix + " " + std::to_string(i));
                       shared.SetList(vector, names);
                       return Reply::With(reply);
                   });
    }

    Result<PagePtr> Get(Pager& pager, int index) { return Completed(pager.At(index)); }

    // A completion that records an error.
    static auto Into(std::vector<ErrorKind>& kinds)
    {
        return [&kinds](const auto& result) { kinds.push_back(KindOf(result)); };
    }

    bool RunUntilCalled(const std::string& call, std::ptrdiff_t times = 1)
    {
        return RunLoopUntil([&] { return Calls(call) == times; });
    }

    // Answers the held page request with entries that are not in the list.
    void AnswerHeldPage(const std::string& name)
    {
        shared.SetList("VecDBListShareMemory", std::vector<std::string>(50, name));
        service.AnswerHeld("(true, false, true)");
    }

    static PagerOptions NoPrefetch()
    {
        PagerOptions options;
        options.prefetch = 0;
        return options;
    }
};

TEST_F(PagerTest, ABlockingLevelChangeDoesNotCancelLaterRequests)
{
    service.Answer("EnterDbChildList", "(true,)");
    Pager pager(*session, ListKind::Database);
    ASSERT_TRUE(Get(pager, 0));

    ASSERT_TRUE(Ask().EnterChild(1).Wait());
    EXPECT_EQ(pager.Cached(0), nullptr);
    EXPECT_TRUE(Get(pager, 0));

    std::optional<Result<PagePtr>> page;
    std::atomic<bool> done{false};
    std::thread other(
        [&]
        {
            EXPECT_TRUE(Ask().EnterChild(1).Wait());
            page = pager.At(0).Wait();
            done = true;
        });
    EXPECT_TRUE(RunLoopUntil([&] { return done.load(); }));
    other.join();
    EXPECT_TRUE(*page);
}

TEST_F(PagerTest, ReturnsThePageThatContainsAnEntry)
{
    Pager pager(*session, ListKind::Database);

    const PagePtr page = Get(pager, 123).value();

    EXPECT_EQ(page->first, 100);
    EXPECT_EQ(page->names.size(), 50U);
    EXPECT_EQ(page->At(123), "DB 123");
    EXPECT_TRUE(page->folders);
    EXPECT_FALSE(page->root);
}

TEST_F(PagerTest, TheLastPageIsShorter)
{
    SetSize(103);
    Pager pager(*session, ListKind::Playing);

    EXPECT_EQ(Get(pager, 102).value()->names.size(), 3U);
    EXPECT_EQ(KindOf(Get(pager, 103)), ErrorKind::BadArgument);
    EXPECT_EQ(KindOf(Get(pager, -1)), ErrorKind::BadArgument);
}

TEST(PageTest, ContainsTheLastPossibleEntry)
{
    const Page page{INT_MAX - 1, {"one", "last"}};

    EXPECT_TRUE(page.Holds(INT_MAX));
    EXPECT_EQ(page.At(INT_MAX), "last");
    EXPECT_FALSE(page.Holds(INT_MIN));
    EXPECT_THROW((void)page.At(INT_MIN), std::out_of_range);
}

TEST_F(PagerTest, ReturnsCachedPages)
{
    Pager pager(*session, ListKind::Database, NoPrefetch());
    const PagePtr first = Get(pager, 10).value();

    EXPECT_EQ(Get(pager, 20).value(), first);

    EXPECT_EQ(pager.Cached(30), first);
    EXPECT_EQ(pager.Cached(60), nullptr);
    EXPECT_EQ(Calls("GetCurDbListItems(0, 49)"), 1);
}

TEST_F(PagerTest, EvictsTheLeastRecentlyUsedPages)
{
    PagerOptions few = NoPrefetch();
    few.cachedPages = 2;
    Pager pager(*session, ListKind::Database, few);

    (void)Get(pager, 0);
    (void)Get(pager, 50);
    (void)Get(pager, 0);
    (void)Get(pager, 100);

    EXPECT_NE(pager.Cached(0), nullptr);
    EXPECT_EQ(pager.Cached(50), nullptr);
    EXPECT_NE(pager.Cached(100), nullptr);
}

TEST_F(PagerTest, FetchesAheadInTheDirectionOfTravel)
{
    Pager pager(*session, ListKind::Database);
    (void)Get(pager, 500);
    EXPECT_TRUE(RunLoopUntil([&] { return pager.Cached(550) != nullptr; }));

    (void)Get(pager, 400);

    EXPECT_TRUE(RunLoopUntil([&] { return pager.Cached(350) != nullptr; }));
}

TEST_F(PagerTest, SeveralRequestsForOnePageAreOneCall)
{
    Pager pager(*session, ListKind::Database, NoPrefetch());
    int completed = 0;
    for (int i = 0; i < 5; ++i)
        pager.At(i).Start([&completed](const Result<PagePtr>& page) { completed += page ? 1 : 100; });

    EXPECT_TRUE(RunLoopUntil([&] { return completed == 5; }));

    EXPECT_EQ(Calls("GetCurDbListItems(0, 49)"), 1);
}

TEST_F(PagerTest, AFailedRequestNeverReturnsThePreviousPage)
{
    Pager pager(*session, ListKind::Database, NoPrefetch());
    (void)Get(pager, 0);
    service.Answer("GetCurDbListItems", "(true, false, false)");

    EXPECT_EQ(KindOf(Get(pager, 50)), ErrorKind::Refused);
    EXPECT_EQ(pager.Cached(50), nullptr);
}

TEST_F(PagerTest, TwoPagersOfOneListTakeTurns)
{
    Pager one(*session, ListKind::Database, NoPrefetch());
    Pager other(*session, ListKind::Database, NoPrefetch());
    std::vector<std::string> wrong;
    int completed = 0;
    for (int i = 0; i < 1000; i += 50)
    {
        Pager& pager = i % 100 == 0 ? one : other;
        pager.At(i).Start(
            [&, i](const Result<PagePtr>& page)
            {
                ++completed;
                if (!page || (*page)->At(i) != "DB " + std::to_string(i)) wrong.push_back(std::to_string(i));
            });
    }

    EXPECT_TRUE(RunLoopUntil([&] { return completed == 20; }));
    EXPECT_THAT(wrong, IsEmpty());
}

TEST_F(PagerTest, ALevelChangeCancelsAndStartsOver)
{
    service.Answer("EnterDbChildList", "(true,)");
    Pager names(*session, ListKind::Database, NoPrefetch());
    Pager pinyin(*session, ListKind::DatabasePinyin, NoPrefetch());
    (void)Get(names, 0);
    int outdated = 0;
    const Subscription watching = pinyin.OnOutdated("watching", [&outdated] { ++outdated; });
    const Pending late(names.At(500));
    const Pending entered(names.EnterChild(3));

    ASSERT_TRUE(late.Done());
    EXPECT_EQ(KindOf(late.Get()), ErrorKind::Cancelled);
    EXPECT_EQ(names.Cached(0), nullptr);
    EXPECT_TRUE(entered.Get());
    EXPECT_EQ(outdated, 2);
    EXPECT_TRUE(Get(names, 0));
}

// Nested, their completions would overflow the stack.
TEST_F(PagerTest, AChangeOfLevelCancelsThousandsOfPages)
{
    constexpr int kPages = 30000;
    rlimit stack{};
    ASSERT_EQ(getrlimit(RLIMIT_STACK, &stack), 0);
    stack.rlim_cur = std::min<rlim_t>(stack.rlim_cur, 1 << 20);
    ASSERT_EQ(setrlimit(RLIMIT_STACK, &stack), 0);
    SetSize(kPages);
    service.Answer("EnterDbRoot", "(true,)");
    PagerOptions single = NoPrefetch();
    single.pageSize = 1;
    Pager pager(*session, ListKind::Database, single);
    (void)Get(pager, 0);
    int cancelled = 0;
    for (int i = 1; i < kPages; ++i)
        pager.At(i).Start([&cancelled](const Result<PagePtr>& page) { cancelled += page ? 0 : 1; });

    const Pending entered(pager.EnterRoot());

    EXPECT_EQ(cancelled, kPages - 1);
    EXPECT_TRUE(entered.Get());
}

TEST_F(PagerTest, OnlyTheDatabaseHasLevels)
{
    Pager pager(*session, ListKind::Playing);

    const Pending entered(pager.EnterRoot());

    EXPECT_EQ(KindOf(entered.Get()), ErrorKind::BadArgument);
}

// A service that hangs holds the bus name no longer, but its process still exists and never answers.
class ReplacementTest : public PagerTest
{
protected:
    // Expects that a page of the new service arrives while the old one still owes the answer to @p held.
    void ExpectPageOfReplacement(Pager& pager, const std::string& held)
    {
        ASSERT_TRUE(RunUntilCalled(held));
        FakeService next(FakeService::Takeover::Yes);
        AnswerState(next);
        next.Answer("GetCurDbListItemsAmount", "(1,)");
        next.Answer("GetCurDbListItems", "(true, false, true)");
        shared.SetList("VecDBListShareMemory", {"new"});
        Ready(2);

        const Result<PagePtr> page = Completed(pager.At(0).Within(1s));
        ASSERT_TRUE(page) << page.error().Text();
        EXPECT_THAT((*page)->names, ElementsAre("new"));
    }
};

TEST_F(ReplacementTest, APageDoesNotWaitForOneOfTheHungService)
{
    service.Hold("GetCurDbListItems");
    Pager pager(*session, ListKind::Database, NoPrefetch());
    std::vector<ErrorKind> pages;
    pager.At(0).Start(Into(pages));

    ExpectPageOfReplacement(pager, "GetCurDbListItems(0, 49)");

    EXPECT_THAT(pages, ElementsAre(ErrorKind::Cancelled));
}

TEST_F(ReplacementTest, APageDoesNotWaitForALevelChangeOfTheHungService)
{
    service.Hold("EnterDbChildList");
    Pager pager(*session, ListKind::Database, NoPrefetch());
    std::vector<ErrorKind> entered;
    pager.EnterChild(3).Start(Into(entered));

    ExpectPageOfReplacement(pager, "EnterDbChildList(3,)");

    EXPECT_THAT(entered, ElementsAre(ErrorKind::ServiceLost));
}

TEST_F(PagerTest, AChangedPlayingListInvalidatesItsPages)
{
    Pager pager(*session, ListKind::Playing, NoPrefetch());
    (void)Get(pager, 0);

    service.Emit("OnIpodPlayingListAmountChange", "(10,)");
    SetSize(10);
    Settle(service);

    EXPECT_EQ(pager.Cached(0), nullptr);
    EXPECT_EQ(Get(pager, 0).value()->names.size(), 10U);
}

// Both the event and the reply are pending when the loop continues.
TEST_F(PagerTest, APageOvertakenByAListChangeIsCancelled)
{
    Pager pager(*session, ListKind::Playing, NoPrefetch());
    (void)Get(pager, 0);
    std::promise<void> go;
    std::promise<void> answered;
    service.React("GetPlayingListItems",
                  [&](GDBusMethodInvocation* call)
                  {
                      go.get_future().wait();
                      service.Emit("OnIpodPlayingListAmountChange", "(1000,)");
                      shared.SetList("VecPlayingListShareMemory", std::vector<std::string>(50, "old"));
                      g_dbus_method_invocation_return_value(call, g_variant_new("(b)", TRUE));
                      service.Flush();
                      answered.set_value();
                  });
    const Pending result(pager.At(50));
    ASSERT_TRUE(RunLoopUntil([&] { return Calls("GetPlayingListItems(50, 99)") == 1; }));

    go.set_value();
    answered.get_future().wait();
    std::this_thread::sleep_for(20ms);

    EXPECT_EQ(KindOf(result.Get()), ErrorKind::Cancelled);
    EXPECT_EQ(pager.Cached(50), nullptr);
}

TEST_F(PagerTest, TheDevicesAreOnePage)
{
    service.Answer("GetDeviceAmount", "(120,)");
    service.Answer("GetDeviceList", "(true,)");
    std::vector<std::string> names(120, "Phone");
    names.back() = "Last";
    shared.SetList("VecDeviceListShareMemory", names);
    Pager pager(*session, ListKind::Devices);

    EXPECT_EQ(Get(pager, 119).value()->At(119), "Last");
    EXPECT_EQ(pager.Cached(0)->names.size(), 120U);
    EXPECT_EQ(Calls("GetDeviceList()"), 1);
}

// Triggers of list changes: an event, or a command and the service's reply (null for none).
struct Change
{
    const char* name;
    const char* member;
    std::string body;
    std::function<Request<void>(const Commands&)> command;
    bool playing;
    bool database;  // and thus the update list
};

void PrintTo(const Change& change, std::ostream* out)
{
    *out << change.name;
}

Change Event(const char* name, const char* member, const std::string& body, bool playing, bool database)
{
    return {name, member, body, nullptr, playing, database};
}

class ListChangeTest : public PagerTest, public testing::WithParamInterface<Change>
{
protected:
    void Happen()
    {
        const Change& change = GetParam();
        if (change.command == nullptr) return service.Emit(change.member, change.body);
        if (change.body.empty())
            service.Hold(change.member);
        else
            service.Answer(change.member, change.body);
        (void)Completed(change.command(Ask()).Within(200ms));
    }
};

TEST_P(ListChangeTest, InvalidatesOnlyTheListsThatItChanges)
{
    ServeList("UP", "GetUpdateListItems", "VecUpdateListShareMemory", "(true,)");
    Pager playing(*session, ListKind::Playing, NoPrefetch());
    Pager database(*session, ListKind::Database, NoPrefetch());
    Pager update(*session, ListKind::Update, NoPrefetch());
    for (Pager* const pager : {&playing, &database, &update}) ASSERT_TRUE(Get(*pager, 0));

    Happen();
    Settle(service);

    EXPECT_EQ(playing.Cached(0) == nullptr, GetParam().playing);
    EXPECT_EQ(database.Cached(0) == nullptr, GetParam().database);
    EXPECT_EQ(update.Cached(0) == nullptr, GetParam().database);
}

#define COMMAND(name, expression, member, body, playing, database)                            \
    Change                                                                                    \
    {                                                                                         \
        name, member, body, [](const Commands& c) { return c.expression; }, playing, database \
    }

INSTANTIATE_TEST_SUITE_P(
    Changes, ListChangeTest,
    testing::Values(Event("AnotherSize", "OnIpodPlayingListAmountChange", "(1000,)", true, false),
                    Event("AnotherOrder", "OnIpodShuffleModeChange", "(1,)", true, false),
                    Event("AnotherDevice", "OnIpodDeviceStatusChange", "(0, true)", true, true),
                    Event("AnotherTrack", "OnIpodPlayingTrackChange", TrackEvent(2, "Song"), false, false),
                    Event("AnotherRepetition", "OnIpodRepeatModeChange", "(1,)", false, false),
                    COMMAND("SetShuffle", SetShuffle(Shuffle::Songs), "SetShuffleMode", "()", true, false),
                    COMMAND("SetRepeat", SetRepeat(Repeat::One), "SetRepeatMode", "()", false, false),
                    COMMAND("Next", Next(), "Next", "(true,)", false, false),
                    COMMAND("PlayDatabaseEntry", PlayDatabaseEntry(3), "PlayDbList", "()", true, false),
                    COMMAND("PlayDatabaseEntryLate", PlayDatabaseEntry(3), "PlayDbList", "", true, false),
                    COMMAND("PlayPlayingEntry", PlayPlayingEntry(3), "PlayPlayingList", "()", true, false),
                    COMMAND("EnterRoot", EnterRoot(), "EnterDbRoot", "(true,)", false, true),
                    COMMAND("EnterParent", EnterParent(), "EnterDbParentList", "(true,)", false, true),
                    COMMAND("EnterChild", EnterChild(3), "EnterDbChildList", "(true,)", false, true),
                    COMMAND("EnterChildLate", EnterChild(3), "EnterDbChildList", "", false, true),
                    COMMAND("EnterChildRefused", EnterChild(3), "EnterDbChildList", "(false,)", false, false),
                    COMMAND("EnterDevice", EnterDevice(1), "EnterDeviceChildList", "(true,)", true, true),
                    COMMAND("EnterDeviceRefused", EnterDevice(1), "EnterDeviceChildList", "(false,)", false, false)),
    [](const auto& change) { return std::string(change.param.name); });

// Its size is unchanged.
TEST_F(PagerTest, AChangedPlayingListOfTheSameSizeIsReadAgain)
{
    service.On("PlayDbList",
               [this](GVariant*)
               {
                   ServeList("Other", "GetPlayingListItems", "VecPlayingListShareMemory", "(true,)");
                   return Reply::With("()");
               });
    Pager pager(*session, ListKind::Playing, NoPrefetch());
    EXPECT_EQ(Get(pager, 0).value()->At(0), "PL 0");

    EXPECT_TRUE(Completed(Ask().PlayDatabaseEntry(3)));

    EXPECT_EQ(Get(pager, 0).value()->At(0), "Other 0");
}

TEST_F(PagerTest, ADeviceEnteredByABlockedCallerInvalidatesEveryList)
{
    service.Answer("EnterDeviceChildList", "(true,)");
    Pager playing(*session, ListKind::Playing, NoPrefetch());
    Pager database(*session, ListKind::Database, NoPrefetch());
    for (Pager* const pager : {&playing, &database}) ASSERT_TRUE(Get(*pager, 0));

    EXPECT_TRUE(Ask().EnterDevice(0).Wait());

    EXPECT_TRUE(RunLoopUntil([&] { return playing.Cached(0) == nullptr && database.Cached(0) == nullptr; }));
}

TEST_F(PagerTest, TheEndOfTheSessionCancelsEverythingThenAndLater)
{
    service.Answer("EnterDbRoot", "(true,)");
    std::vector<ErrorKind> ended;
    Pager pager(*session, ListKind::Database, NoPrefetch());
    (void)Get(pager, 0);
    int outdated = 0;
    const Subscription watching = pager.OnOutdated("watching", [&outdated] { ++outdated; });
    for (const int index : {10, 50, 100}) pager.At(index).Start(Into(ended));
    pager.Count().Start(Into(ended));

    session.reset();

    EXPECT_EQ(ended, std::vector(4, ErrorKind::Cancelled));
    EXPECT_EQ(pager.Cached(0), nullptr);
    pager.Refresh();
    EXPECT_EQ(Completed(pager.At(10)).error().reason, "the session ended");
    EXPECT_EQ(KindOf(Completed(pager.Count())), ErrorKind::Cancelled);
    EXPECT_EQ(KindOf(Completed(pager.EnterRoot())), ErrorKind::Cancelled);
    EXPECT_EQ(ended.size(), 4U);
    EXPECT_EQ(outdated, 0);
}

TEST_F(PagerTest, ItsEndCancelsPendingRequests)
{
    auto pager = std::make_unique<Pager>(*session, ListKind::Playing);
    const Pending result(pager->At(0));

    pager.reset();

    ASSERT_TRUE(result.Done());
    EXPECT_EQ(KindOf(result.Get()), ErrorKind::Cancelled);
    RunLoopFor(20ms);
}

TEST_F(PagerTest, ItsEndCancelsAPendingLevelChange)
{
    std::vector<ErrorKind> ended;
    service.Hold("EnterDbChildList");
    Pager other(*session, ListKind::Database);
    int outdated = 0;
    const Subscription watching = other.OnOutdated("watching", [&outdated] { ++outdated; });
    {
        Pager pager(*session, ListKind::Database);
        pager.EnterChild(3).Start(Into(ended));
        ASSERT_TRUE(RunUntilCalled("EnterDbChildList(3,)"));
    }
    EXPECT_THAT(ended, ElementsAre(ErrorKind::Cancelled));
    EXPECT_EQ(outdated, 1);

    service.AnswerHeld("(true,)");

    EXPECT_TRUE(RunLoopUntil([&] { return outdated == 2; }));
    RunLoopFor(20ms);
    EXPECT_EQ(ended.size(), 1U);
}

TEST_F(PagerTest, ItsEndWithdrawsAQueuedLevelChange)
{
    std::vector<ErrorKind> ended;
    service.Hold("GetCurDbListItems");
    Pager other(*session, ListKind::Database, NoPrefetch());
    const Pending page(other.At(0));
    ASSERT_TRUE(RunUntilCalled("GetCurDbListItems(0, 49)"));
    {
        Pager pager(*session, ListKind::Database);
        pager.EnterChild(3).Start(Into(ended));
        RunLoopFor(20ms);
    }
    EXPECT_THAT(ended, ElementsAre(ErrorKind::Cancelled));

    AnswerHeldPage("x");
    const Pending again(other.At(0));

    EXPECT_TRUE(RunUntilCalled("GetCurDbListItems(0, 49)", 2));
    EXPECT_EQ(Calls("EnterDbChildList(3,)"), 0);
    EXPECT_EQ(ended.size(), 1U);
}

TEST_F(PagerTest, ItsEndCancelsCachedResults)
{
    std::vector<ErrorKind> ended;
    {
        Pager pager(*session, ListKind::Playing, NoPrefetch());
        (void)Get(pager, 0);
        pager.At(10).Start(Into(ended));
        pager.At(-1).Start(Into(ended));
        pager.Count().Start(Into(ended));
        pager.EnterRoot().Start(Into(ended));
    }

    EXPECT_EQ(ended, std::vector(4, ErrorKind::Cancelled));
    RunLoopFor(20ms);
    EXPECT_EQ(ended.size(), 4U);
}

TEST_F(PagerTest, ItsEndInACompletionCancelsTheOthers)
{
    std::vector<ErrorKind> ended;
    auto pager = std::make_unique<Pager>(*session, ListKind::Playing, NoPrefetch());
    (void)Get(*pager, 0);
    pager->At(50).Start(
        [&](const Result<PagePtr>& page)
        {
            EXPECT_TRUE(page);
            pager.reset();
            EXPECT_THAT(ended, ElementsAre(ErrorKind::Cancelled, ErrorKind::Cancelled));
        });
    pager->At(60).Start(Into(ended));
    pager->At(100).Start(Into(ended));

    EXPECT_TRUE(RunLoopUntil([&] { return pager == nullptr; }));

    RunLoopFor(20ms);
    EXPECT_EQ(ended.size(), 2U);
}

TEST_F(PagerTest, MayEndInACompletionThatAChangeOfLevelCancels)
{
    std::vector<ErrorKind> ended;
    service.Answer("EnterDbRoot", "(true,)");
    auto pager = std::make_unique<Pager>(*session, ListKind::Database);
    pager->At(0).Start([&pager](const Result<PagePtr>&) { pager.reset(); });

    pager->EnterRoot().Start(Into(ended));

    EXPECT_EQ(pager, nullptr);
    EXPECT_THAT(ended, ElementsAre(ErrorKind::Cancelled));
    RunLoopFor(20ms);
    EXPECT_EQ(Calls("EnterDbRoot()"), 0);
    EXPECT_EQ(ended.size(), 1U);
}

TEST_F(PagerTest, MayEndInACompletionThatRefreshCancels)
{
    std::vector<ErrorKind> ended;
    auto pager = std::make_unique<Pager>(*session, ListKind::Database, NoPrefetch());
    (void)Get(*pager, 0);
    pager->At(50).Start(
        [&](const Result<PagePtr>&)
        {
            pager.reset();
            EXPECT_THAT(ended, ElementsAre(ErrorKind::Cancelled, ErrorKind::Cancelled));
        });
    pager->At(60).Start(Into(ended));
    pager->At(100).Start(Into(ended));

    pager->Refresh();

    EXPECT_EQ(pager, nullptr);
    EXPECT_EQ(ended.size(), 2U);
}

TEST_F(PagerTest, AChangeOfLevelCancelsAPageFromTheCache)
{
    std::vector<ErrorKind> ended;
    service.Answer("EnterDbChildList", "(true,)");
    Pager pager(*session, ListKind::Database, NoPrefetch());
    (void)Get(pager, 0);
    pager.At(10).Start(Into(ended));

    const Pending entered(pager.EnterChild(3));

    EXPECT_THAT(ended, ElementsAre(ErrorKind::Cancelled));
    EXPECT_TRUE(entered.Get());
    EXPECT_EQ(ended.size(), 1U);
}

TEST_F(PagerTest, ASizeOvertakenByRefreshIsNotCached)
{
    std::vector<ErrorKind> before;
    service.Hold("GetCurDbListItemsAmount");
    Pager pager(*session, ListKind::Database);
    pager.Count().Start(Into(before));
    ASSERT_TRUE(RunUntilCalled("GetCurDbListItemsAmount(false,)"));

    pager.Refresh();
    EXPECT_THAT(before, ElementsAre(ErrorKind::Cancelled));
    const Pending after(pager.Count());
    service.AnswerHeld("(1000,)");
    ASSERT_TRUE(RunUntilCalled("GetCurDbListItemsAmount(false,)", 2));
    service.AnswerHeld("(10,)");

    EXPECT_EQ(after.Get().value(), 10);
    EXPECT_EQ(before.size(), 1U);
}

TEST_F(PagerTest, APageOvertakenByRefreshIsNotCached)
{
    std::vector<ErrorKind> before;
    Pager pager(*session, ListKind::Update, NoPrefetch());
    service.Hold("GetUpdateListItems");
    pager.At(0).Start(Into(before));
    ASSERT_TRUE(RunUntilCalled("GetUpdateListItems(0, 49)"));

    pager.Refresh();
    EXPECT_THAT(before, ElementsAre(ErrorKind::Cancelled));
    const Pending after(pager.At(0));
    shared.SetList("VecUpdateListShareMemory", {"old"});
    service.AnswerHeld("(true,)");
    ASSERT_TRUE(RunUntilCalled("GetUpdateListItems(0, 49)", 2));
    shared.SetList("VecUpdateListShareMemory", {"new"});
    service.AnswerHeld("(true,)");

    EXPECT_EQ(after.Get().value()->At(0), "new");
    EXPECT_EQ(before.size(), 1U);
}

TEST_F(PagerTest, APrefetchedPageOvertakenByRefreshIsNotCached)
{
    Pager pager(*session, ListKind::Database);
    pager.At(0).Start(
        [&](const Result<PagePtr>& page)
        {
            EXPECT_TRUE(page);
            service.Hold("GetCurDbListItems");
        });
    ASSERT_TRUE(RunUntilCalled("GetCurDbListItems(50, 99)"));

    pager.Refresh();
    const Pending count(pager.Count());
    AnswerHeldPage("old");

    EXPECT_TRUE(count.Get());
    EXPECT_EQ(pager.Cached(50), nullptr);
}

TEST_F(PagerTest, RefreshCancelsEarlierRequests)
{
    std::vector<ErrorKind> ended;
    Pager pager(*session, ListKind::Playing, NoPrefetch());
    (void)Get(pager, 0);
    pager.At(10).Start(Into(ended));
    pager.At(50).Start(Into(ended));
    pager.Count().Start(Into(ended));

    pager.Refresh();

    EXPECT_EQ(ended, std::vector(3, ErrorKind::Cancelled));
    EXPECT_EQ(pager.Cached(0), nullptr);
    RunLoopFor(20ms);
    EXPECT_EQ(ended.size(), 3U);
}

struct UpdateList
{
    const char* name;
    int size;
    bool heedsTheRange;  // if false, it always returns the whole list
    bool filled;         // its answer if the range has no entry
};

class UpdateListTest : public PagerTest, public testing::WithParamInterface<UpdateList>
{
protected:
    void Serve(const UpdateList& list)
    {
        service.On("GetUpdateListItems",
                   [this, list](GVariant* arguments)
                   {
                       const auto [first, last] = RangeOf(arguments);
                       std::vector<std::string> names;
                       for (int i = list.heedsTheRange ? first : 0; i <= last && i < list.size; ++i)
                           names.push_back(std::to_string(i));
                       shared.SetList("VecUpdateListShareMemory", names);
                       return Reply::With(list.filled || !names.empty() ? "(true,)" : "(false,)");
                   });
    }
};

TEST_P(UpdateListTest, NoPageIsReturnedForAMissingEntry)
{
    const UpdateList list = GetParam();
    Serve(list);
    Pager pager(*session, ListKind::Update);

    EXPECT_EQ(KindOf(Get(pager, 300)), ErrorKind::BadArgument);
    EXPECT_EQ(KindOf(Get(pager, list.size)), ErrorKind::BadArgument);
    EXPECT_EQ(Get(pager, list.size - 1).value()->At(list.size - 1), std::to_string(list.size - 1));
    EXPECT_EQ(KindOf(Get(pager, list.size)), ErrorKind::BadArgument);
}

TEST_P(UpdateListTest, ARangeEndsWhereTheListDoes)
{
    Serve(GetParam());
    Pager pager(*session, ListKind::Update);

    EXPECT_EQ(Completed(pager.Range(0, Pager::End)).value().size(), static_cast<std::size_t>(GetParam().size));
    EXPECT_EQ(Completed(pager.Range(3, 5)).value(), (std::vector<std::string>{"3", "4", "5"}));
}

INSTANTIATE_TEST_SUITE_P(Lists, UpdateListTest,
                         testing::Values(UpdateList{"Short", 7, true, true},
                                         UpdateList{"ShortAndRefusedBeyondItsEnd", 7, true, false},
                                         UpdateList{"ShortAndAlwaysWhole", 7, false, true},
                                         UpdateList{"Long", 123, true, true},
                                         UpdateList{"OfFullPages", 100, true, true}),
                         [](const auto& list) { return std::string(list.param.name); });

TEST_F(PagerTest, ReadsARangeOfNames)
{
    Pager pager(*session, ListKind::Database);

    const std::vector<std::string> names = Completed(pager.Range(40, 160)).value();

    ASSERT_EQ(names.size(), 121U);
    for (std::size_t i = 0; i < names.size(); ++i) EXPECT_EQ(names[i], "DB " + std::to_string(40 + i));
}

TEST_F(PagerTest, ReadsAllNamesToTheEnd)
{
    SetSize(123);
    Pager pager(*session, ListKind::Database, NoPrefetch());

    EXPECT_EQ(Completed(pager.Range(0, Pager::End)).value().size(), 123U);
    EXPECT_EQ(Completed(pager.Range(120, Pager::End)).value().back(), "DB 122");
    EXPECT_EQ(Completed(pager.Range(122, 122)).value().size(), 1U);
}

TEST_F(PagerTest, ARangeOfAnEmptyListIsEmpty)
{
    SetSize(0);
    Pager pager(*session, ListKind::Database);

    EXPECT_EQ(Completed(pager.Range(0, Pager::End)).value().size(), 0U);
    EXPECT_EQ(KindOf(Completed(pager.Range(0, 0))), ErrorKind::BadArgument);
}

TEST_F(PagerTest, ARangeThatDoesNotExistIsABadArgument)
{
    Pager pager(*session, ListKind::Database);

    EXPECT_EQ(KindOf(Completed(pager.Range(-1, 5))), ErrorKind::BadArgument);
    EXPECT_EQ(KindOf(Completed(pager.Range(5, 4))), ErrorKind::BadArgument);
    EXPECT_EQ(KindOf(Completed(pager.Range(990, 1000))), ErrorKind::BadArgument);
    EXPECT_EQ(KindOf(Completed(pager.Range(1001, Pager::End))), ErrorKind::BadArgument);
}

TEST_F(PagerTest, ARangeIsCancelledWhenItsListChanges)
{
    service.Answer("EnterDbRoot", "(true,)");
    service.Hold("GetCurDbListItems");
    Pager pager(*session, ListKind::Database, NoPrefetch());
    const Pending result(pager.Range(0, Pager::End));
    ASSERT_TRUE(RunUntilCalled("GetCurDbListItems(0, 49)"));

    Ask().EnterRoot().Start([](Result<void>) {});

    EXPECT_EQ(KindOf(result.Get()), ErrorKind::Cancelled);
}

TEST_F(PagerTest, ARangeFromTheCacheDoesNotOverflowTheStack)
{
    constexpr int kPages = 100000;
    SetSize(kPages);
    PagerOptions large = NoPrefetch();
    large.pageSize = 1000;
    large.cachedPages = kPages;
    Pager pager(*session, ListKind::Database, large);
    EXPECT_EQ(Completed(pager.Range(0, Pager::End)).value().size(), static_cast<std::size_t>(kPages));
    const std::size_t calls = service.Calls().size();

    EXPECT_EQ(Completed(pager.Range(0, Pager::End)).value().back(), "DB 99999");

    EXPECT_EQ(service.Calls().size(), calls);
}

TEST_F(PagerTest, OutOfRangeOptionsAreABadArgument)
{
    PagerOptions none;
    none.pageSize = 0;
    PagerOptions backward;
    backward.prefetch = -1;
    for (const PagerOptions& bad : {none, backward})
    {
        Pager pager(*session, ListKind::Database, bad);
        EXPECT_EQ(KindOf(Completed(pager.Count())), ErrorKind::BadArgument);
        EXPECT_EQ(KindOf(Completed(pager.At(0))), ErrorKind::BadArgument);
        EXPECT_EQ(KindOf(Completed(pager.Range(0, Pager::End))), ErrorKind::BadArgument);
    }
}

TEST_F(PagerTest, ARangeOfFullPagesEndsWhereTheServiceRefuses)
{
    service.On("GetUpdateListItems",
               [this](GVariant* arguments)
               {
                   shared.SetList("VecUpdateListShareMemory", std::vector<std::string>(50, "x"));
                   return Reply::With(RangeOf(arguments).first < 100 ? "(true,)" : "(false,)");
               });
    Pager pager(*session, ListKind::Update);

    EXPECT_EQ(Completed(pager.Range(0, Pager::End)).value().size(), 100U);
    EXPECT_EQ(KindOf(Completed(pager.Range(0, 100))), ErrorKind::Refused);
}

TEST_F(PagerTest, WalksFiftyThousandEntries)
{
    SetSize(50000);
    PagerOptions large;
    large.pageSize = 500;
    Pager pager(*session, ListKind::Database, large);

    for (int i = 0; i < 50000; i += 500) ASSERT_EQ(Get(pager, i).value()->At(i), "DB " + std::to_string(i));
}

TEST_F(PagerTest, ADamagedVectorIsABadReply)
{
    service.Answer("GetPlayingListItems", "(true,)");
    shared.SetList("VecPlayingListShareMemory", std::vector<std::string>(50, "x"));
    SetSize(50);
    Pager pager(*session, ListKind::Playing);
    ASSERT_TRUE(Get(pager, 0));
    pager.Refresh();
    auto* const words = reinterpret_cast<std::size_t*>(&shared.List("VecPlayingListShareMemory"));
    words[1] = ~std::size_t{0} / 2;  // its entries are outside of every mapping

    EXPECT_EQ(KindOf(Get(pager, 0)), ErrorKind::BadReply);
}
}  // namespace
}  // namespace test
