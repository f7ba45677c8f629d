// User stories, from tap to service.
#include <QSignalSpy>
#include <QTest>

#include "screen_fixture.h"

namespace screentest
{
using Stories = ScreenTest;

TEST_F(Stories, ASongIsFoundPlayedAndPaused)
{
    StartService();
    Show();
    PlaySong("Gravel");
    EXPECT_EQ(TextOf("artist"), "The Paper Kites of Mill Road");
    Tap("play");
    EXPECT_TRUE(Until([this] { return Service().Calls("Pause").size() == 1; }));
}

TEST_F(Stories, AChineseArtistIsFoundByInitials)
{
    StartService();
    Show(Still("browse", {800, 480}));
    TapText("Artists");
    ASSERT_TRUE(Until([this] { return Shows("Élodie Rouvière"); }));
    Tap("search");
    for (const char* key : {"keyZ", "keyY", "keyT"}) Tap(key);
    ASSERT_TRUE(Until([this] { return !Shows("Élodie Rouvière"); }));
    TapText("曾雨桐");
    EXPECT_TRUE(Until([this] { return Shows("江南小雨"); }));
    EXPECT_FALSE(IsShown("keys"));
}

// Otherwise, a change of level by another application is suspected, and the list is read again.
TEST_F(Stories, EnteringALevelIsNotMistakenForAChangeByOthers)
{
    StartService();
    Show(Still("browse"));
    TapText("Songs");
    ASSERT_TRUE(Until([this] { return IsShown("letters"); }));
    Tap("back");
    ASSERT_TRUE(Until([this] { return Shows("Artists"); }));
    EXPECT_TRUE(Service().Calls("IsIPodInDbRoot").empty());
}

TEST_F(Stories, TypingSearchesWithEachLetter)
{
    StartService();
    Show(Still("browse"));
    TapText("Songs");
    ASSERT_TRUE(Until([this] { return IsShown("letters"); }));
    Type("l");
    ASSERT_TRUE(Until([this] { return Shows("Ligne 6") && !Shows("Gravel"); }));
    Type("ow");
    ASSERT_TRUE(Until([this] { return Shows("Low Water") && !Shows("Ligne 6"); }));
    Press(Qt::Key_Backspace);
    Press(Qt::Key_Backspace);
    EXPECT_TRUE(Until([this] { return Shows("Ligne 6"); }));
    Press(Qt::Key_Escape);
    EXPECT_TRUE(Until([this] { return Shows("Blue Lantern"); }));
}

TEST_F(Stories, TheKnobOpensTheOnlyMatch)
{
    StartService();
    Show(Still("browse", {800, 480}));
    TapText("Artists");
    ASSERT_TRUE(Until([this] { return Shows("Élodie Rouvière"); }));
    Type("zyt");
    ASSERT_TRUE(Until([this] { return Shows("曾雨桐") && !Shows("Élodie Rouvière"); }));
    for (const int key : {Qt::Key_Right, Qt::Key_Left, Qt::Key_Return}) Press(key);
    EXPECT_TRUE(Until([this] { return Shows("江南小雨"); }));
}

TEST_F(Stories, ALetterJumpsToItsNames)
{
    StartService();
    Show(Still("browse", {800, 480}));
    TapText("Songs");
    ASSERT_TRUE(Until([this] { return IsShown("letters"); }));
    TapText("Y");
    EXPECT_TRUE(Until([this] { return Shows("银行旁的咖啡店") && !Shows("Blue Lantern"); }));
}

TEST_F(Stories, ATapOnTheProgressSeeks)
{
    StartService();
    Show();
    PauseInTheMiddle("Blue Lantern");
    const std::vector<ipodsim::Call> calls = Service().Calls("Seek");
    ASSERT_EQ(calls.size(), 1U);
    EXPECT_TRUE(calls[0].arguments == "(126,)" || calls[0].arguments == "(127,)") << calls[0].arguments;
    EXPECT_TRUE(Shows("2:06") || Shows("2:07"));
}

TEST_F(Stories, TheQueueShowsWhatPlaysAndJumps)
{
    StartService();
    Show();
    PlaySong("Blue Lantern");
    Tap("page-queue");
    ASSERT_TRUE(Until([this] { return Item("queue")->property("marked").toInt() == 0; }));
    TapText("Été à vélo");
    EXPECT_TRUE(Until([this] { return Item("queue")->property("marked").toInt() == 4; }));
    Tap("page-nowplaying");
    EXPECT_TRUE(Until([this] { return TextOf("title") == "Été à vélo"; }));
}

TEST_F(Stories, ShuffleAndRepeatFollowTheDevice)
{
    StartService();
    Show();
    PlaySong("Blue Lantern");
    Tap("shuffle");
    EXPECT_TRUE(Until([this] { return Item("shuffle")->property("checked").toBool(); }));
    Tap("repeat");
    EXPECT_TRUE(Until([this] { return Item("repeat")->property("label").toString() == "Repeat: all"; }));
}

TEST_F(Stories, ADeviceIsSwapped)
{
    StartService();
    Show(Still("devices"));
    ASSERT_TRUE(Until([this] { return Shows("Desk iPod"); }));
    Service().Do("attach", "Second");
    TapText("Second");
    TapText("Artists");
    Service().Do("detach", "Second");
    EXPECT_TRUE(Until([this] { return Shows("Songs") && Shows("Playlists"); }));
    Service().Do("detach", "Desk iPod");
    EXPECT_TRUE(Until([this] { return Shows("No device"); }));
    Service().Do("attach", "Third");
    EXPECT_TRUE(Until([this] { return !IsShown("problem"); }));
}

TEST_F(Stories, TheEnteredDeviceIsMarked)
{
    StartService();
    Show(Still("devices"));
    Service().Do("attach", "Second");
    const auto marked = [this](const QString& name)
    {
        bool is = false;
        ForEachItem([&](const QQuickItem& item)
                    { is = is || (item.property("name") == name && item.property("marked").toBool()); });
        return is;
    };
    ASSERT_TRUE(Until([&] { return Shows("Second") && marked("Desk iPod") && !marked("Second"); }));
    TapText("Second");
    Tap("page-devices");
    ASSERT_TRUE(Until([&] { return marked("Second") && !marked("Desk iPod"); }));
    Service().Do("detach", "Desk iPod");
    EXPECT_TRUE(Until([&] { return marked("Second") && !Shows("Desk iPod"); }));
}

TEST_F(Stories, ACallIsShownAboveTheMusicUntilItIsHidden)
{
    StartService();
    Show();
    PlaySong("Blue Lantern");
    const auto report = [this](const char* status)
    {
        Service().Do("call",
                     {{"status", status}, {"display-name", "李雷"}, {"call-uuid", "1"}, {"direction", "incoming"}});
    };
    report("ringing");
    ASSERT_TRUE(Until([this] { return IsShown("call"); }));
    EXPECT_EQ(TextOf("caller"), "李雷");
    Tap("hideCall");
    EXPECT_TRUE(Until([this] { return !IsShown("call"); }));
    report("active");
    EXPECT_TRUE(Until([this] { return TextOf("banner") == "On the phone · 李雷"; }));
    report("disconnected");
    EXPECT_TRUE(Until([this] { return !IsShown("banner"); }));
    EXPECT_EQ(TextOf("title"), "Blue Lantern");
}

TEST_F(Stories, AServiceThatIsKilledReturns)
{
    StartService();
    Show();
    PlaySong("Blue Lantern");
    StopService();
    ASSERT_TRUE(Until([this] { return Shows("The iPod service stopped"); }));
    StartService();
    ASSERT_TRUE(Until([this] { return !IsShown("problem"); }));
    PlaySong("Gravel");
}

TEST_F(Stories, CarPlayIsOffered)
{
    StartService();
    Show();
    ASSERT_TRUE(Until([this] { return !IsShown("problem"); }));
    Service().Do("carplay", {{"status", "detected"}, {"serial", "F17XK0PASS"}});
    ASSERT_TRUE(Until([this] { return TextOf("banner") == "CarPlay is available"; }));
    Tap("closeBanner");
    EXPECT_TRUE(Until([this] { return !IsShown("banner"); }));
}

TEST_F(Stories, ARequestThatFailsIsReported)
{
    StartService();
    Show();
    PlaySong("Blue Lantern");
    Service().Do("fault", "error@Next/1");
    Tap("next");
    EXPECT_TRUE(Until([this] { return TextOf("banner").contains("The request failed (next)"); }));
    Tap("next");
    EXPECT_TRUE(Until([this] { return TextOf("title") != "Blue Lantern"; }));
}

TEST_F(Stories, TheKnobReachesEverything)
{
    StartService();
    screen::Options options = Still();
    options.knob = {Qt::Key_F1, Qt::Key_F2, Qt::Key_F3};
    Show(options);
    PlaySong("Blue Lantern");
    const auto focused = [this] { return Window().activeFocusItem()->objectName(); };
    ASSERT_TRUE(Until([&] { return focused() == "play"; }));
    Press(Qt::Key_F2);
    EXPECT_EQ(focused(), "next");
    Press(Qt::Key_F3);
    ASSERT_TRUE(Until([this] { return TextOf("title") != "Blue Lantern"; }));
    QStringList reached;
    for (int turn = 0; turn < 20; ++turn, Press(Qt::Key_F1)) reached.append(focused());
    for (const char* name : {"shuffle", "seekBar", "page-browse", "page-devices", "theme"})
        EXPECT_TRUE(reached.contains(name)) << name << " among " << reached.join(' ').toStdString();
}

TEST_F(Stories, TheKnobChoosesFromAListAndSeeks)
{
    StartService();
    Show(Still("browse"));
    ASSERT_TRUE(Until([this] { return Shows("Songs"); }));
    ASSERT_TRUE(Until([this] { return Item("names")->hasActiveFocus(); }));
    while (Item("names")->property("currentIndex").toInt() < 4) Press(Qt::Key_Right);
    Press(Qt::Key_Return);
    ASSERT_TRUE(Until([this] { return Shows("Blue Lantern"); }));
    Press(Qt::Key_Right);
    Press(Qt::Key_Return);
    ASSERT_TRUE(Until([this] { return TextOf("title") == "长夜里的音乐"; }));
    Item("seekBar")->forceActiveFocus();
    for (const int key : {Qt::Key_Return, Qt::Key_Right, Qt::Key_Right, Qt::Key_Return}) Press(key);
    EXPECT_TRUE(Until([this] { return Item("seekBar")->property("elapsed").toInt() >= 20000; }));
}

TEST_F(Stories, TheThemeChangesWithOneTap)
{
    StartService();
    Show();
    ASSERT_TRUE(Until([this] { return !IsShown("problem"); }));
    const QColor before = Window().grabWindow().pixelColor(5, 700);
    Tap("theme");
    ASSERT_TRUE(Until([&] { return Window().grabWindow().pixelColor(5, 700).lightness() > 200; }));
    EXPECT_LT(before.lightness(), 60);
}
}  // namespace screentest
