// Compares each page with a reference image, with the built-in library and without animations.
#include "pictures.h"
#include "screen_fixture.h"

namespace screentest
{
namespace
{
using Pictures = ScreenTest;

// Waits until the picture no longer changes, because artwork and lists arrive asynchronously.
QImage Settled(QQuickView& window)
{
    QImage before;
    QImage now = window.grabWindow();
    int same = 0;
    const auto settled = [&]
    {
        before = std::exchange(now, window.grabWindow());
        same = before == now ? same + 1 : 0;
        return same > 20;
    };
    EXPECT_TRUE(Until(settled));
    return now;
}

#define EXPECT_LOOKS_LIKE(file) EXPECT_EQ(DifferenceFrom(file, Settled(Window())), "")
}  // namespace

TEST_F(Pictures, NowPlayingAtNight)
{
    StartService();
    Show();
    PauseInTheMiddle("Blue Lantern");
    EXPECT_LOOKS_LIKE(DOCS "/screen-now-playing.png");
}

TEST_F(Pictures, NowPlayingOnASmallScreenByDay)
{
    StartService();
    Show(Still("nowplaying", {800, 480}));
    PauseInTheMiddle("城市灯火");
    Tap("theme");
    EXPECT_LOOKS_LIKE(PICTURES "/now-playing-small-day.png");
}

TEST_F(Pictures, BrowsingByDay)
{
    StartService();
    Show(Still("browse"));
    TapText("Songs");
    ASSERT_TRUE(Until([this] { return IsShown("letters"); }));
    Tap("theme");
    EXPECT_LOOKS_LIKE(DOCS "/screen-browse.png");
}

TEST_F(Pictures, SearchingOnASmallScreen)
{
    StartService();
    Show(Still("browse", {800, 480}));
    TapText("Artists");
    ASSERT_TRUE(Until([this] { return Shows("Élodie Rouvière"); }));
    Tap("search");
    Tap("keyZ");
    ASSERT_TRUE(Until([this] { return Shows("曾雨桐") && !Shows("Élodie Rouvière"); }));
    EXPECT_LOOKS_LIKE(PICTURES "/search-small.png");
}

TEST_F(Pictures, TheQueueWithAFocusedRow)
{
    StartService();
    Show();
    PauseInTheMiddle("Blue Lantern");
    Tap("page-queue");
    ASSERT_TRUE(Until([this] { return Shows("Été à vélo") && Item("queue")->hasActiveFocus(); }));
    ASSERT_TRUE(Until([this] { return Item("queue")->property("currentIndex").toInt() == 0; }));
    Press(Qt::Key_Right);
    EXPECT_LOOKS_LIKE(PICTURES "/queue.png");
}

TEST_F(Pictures, AnIncomingCall)
{
    StartService();
    Show();
    PauseInTheMiddle("Blue Lantern");
    Service().Do("call", {{"status", "ringing"},
                          {"direction", "incoming"},
                          {"display-name", "李雷"},
                          {"remote-id", "+86 10 5555 0123"},
                          {"label", "mobile"}});
    ASSERT_TRUE(Until([this] { return IsShown("call"); }));
    EXPECT_LOOKS_LIKE(PICTURES "/call.png");
}

TEST_F(Pictures, CarPlayAndNothingPlaying)
{
    StartService();
    Show(Still("nowplaying", {800, 480}));
    ASSERT_TRUE(Until([this] { return !IsShown("problem"); }));
    Service().Do("carplay", "detected");
    ASSERT_TRUE(Until([this] { return IsShown("banner"); }));
    EXPECT_LOOKS_LIKE(PICTURES "/offer-small.png");
}

TEST_F(Pictures, TwoDevicesOnASmallScreenByDay)
{
    StartService();
    screen::Options options = Still("devices", {800, 480});
    options.night = false;
    Show(options);
    Service().Do("attach", "Second");
    ASSERT_TRUE(Until([this] { return Shows("Second"); }));
    EXPECT_LOOKS_LIKE(PICTURES "/devices-small-day.png");
}

TEST_F(Pictures, LongAndRightToLeftNames)
{
    ipodkit::PlayerState state = ipodkit::FakeSession::ReadyState();
    state.deviceCount = 1;
    state.deviceName = "A device whose owner gave it a very long name";
    state.battery = ipodkit::Battery{9, {}};
    state.track = ipodkit::Track{"A Title That Wraps Onto a Second Line, and Even Then Is Cut Off at Its End", "فيروز",
                                 "שירים מן הים, האלבום המלא, הקלטה חיה מן האולם הגדול"};
    Fake().SetState(state);
    Show(Still("nowplaying", {800, 480}));
    EXPECT_LOOKS_LIKE(PICTURES "/names-small.png");
}

TEST_F(Pictures, AnEmptyLibrary)
{
    ipodkit::PlayerState state = ipodkit::FakeSession::ReadyState();
    state.deviceCount = 1;
    Fake().SetState(state);
    Fake().SetList(ipodkit::ListKind::Database, {});
    Show(Still("browse"));
    ASSERT_TRUE(Until([this] { return IsShown("empty"); }));
    EXPECT_LOOKS_LIKE(PICTURES "/empty.png");
}

TEST_F(Pictures, WithoutAService)
{
    Show();
    ASSERT_TRUE(Until([this] { return Shows("Waiting for the iPod service"); }));
    EXPECT_LOOKS_LIKE(PICTURES "/no-service.png");
}
}  // namespace screentest
