#include <gtest/gtest.h>
#include <ipodkit/testing.h>
#include <ipodkit/variant.h>
#include <player.h>
#include <state_object.h>

#include <algorithm>

#include "support/private_bus.h"
#include "support/run_loop.h"

namespace test
{
namespace
{
using namespace ipodkit;
using namespace companion;
using namespace std::chrono_literals;

PlayerState Playing(const Track& track)
{
    PlayerState state = FakeSession::ReadyState();
    state.track = track;
    state.trackIndex = 1;
    state.queueSize = 3;
    state.deviceCount = 1;
    state.status = PlayStatus::Playing;
    return state;
}

Track TrackOf(const std::string& title)
{
    Track track;
    track.title = title;
    track.duration = 60s;
    return track;
}

std::string MetadataText(const Values& values)
{
    gchar* const text = g_variant_print(values.at("Metadata").get(), TRUE);
    std::string owned(text);
    g_free(text);
    return owned;
}

bool IsTrue(const Values& values, const char* property)
{
    return g_variant_get_boolean(values.at(property).get()) != FALSE;
}

TEST(PlayerPropertiesTest, HostileNamesAreReplacedBeforeTheyReachTheBus)
{
    Track track = TrackOf(std::string(254, 'x') + "\xE5");
    track.artist = "a\x1b]0;b\nc";
    track.album = "\xFF\xFE";

    const std::string text = MetadataText(PlayerProperties(Playing(track), "/t/1", ""));

    EXPECT_TRUE(g_utf8_validate(text.c_str(), -1, nullptr));
    EXPECT_NE(text.find(std::string(254, 'x') + "\uFFFD'"), std::string::npos);
    EXPECT_NE(text.find("'xesam:artist': <['a\uFFFD]0;b\uFFFDc']>"), std::string::npos) << text;
    EXPECT_NE(text.find("'xesam:album': <'\uFFFD\uFFFD'>"), std::string::npos) << text;
}

TEST(PlayerPropertiesTest, MetadataHasTheTypesOfTheSpecification)
{
    Track track = TrackOf("Song");
    track.artist = "Somebody";
    track.number = 7;

    EXPECT_EQ(MetadataText(PlayerProperties(Playing(track), "/t/1", "file:///a.png")),
              "{'mpris:trackid': <objectpath '/t/1'>, 'mpris:length': <int64 60000000>, 'mpris:artUrl': "
              "<'file:///a.png'>, 'xesam:title': <'Song'>, 'xesam:artist': <['Somebody']>, 'xesam:trackNumber': <7>}");
    EXPECT_EQ(MetadataText(PlayerProperties(PlayerState(), "/t/1", "")), "@a{sv} {}");
}

TEST(PlayerPropertiesTest, TheEndsOfTheListAreKnown)
{
    PlayerState state = Playing(TrackOf("Song"));
    EXPECT_TRUE(IsTrue(PlayerProperties(state, "/t", ""), "CanGoNext"));
    EXPECT_TRUE(IsTrue(PlayerProperties(state, "/t", ""), "CanGoPrevious"));

    state.trackIndex = 2;
    EXPECT_FALSE(IsTrue(PlayerProperties(state, "/t", ""), "CanGoNext"));
    state.repeat = Repeat::All;
    EXPECT_TRUE(IsTrue(PlayerProperties(state, "/t", ""), "CanGoNext"));
    state.repeat = Repeat::Off;
    state.trackIndex = 0;
    EXPECT_FALSE(IsTrue(PlayerProperties(state, "/t", ""), "CanGoPrevious"));
    state.shuffle = Shuffle::Songs;
    EXPECT_TRUE(IsTrue(PlayerProperties(state, "/t", ""), "CanGoPrevious"));
}

TEST(PlayerPropertiesTest, ModesWithoutANameAreAbsent)
{
    PlayerState state = Playing(TrackOf("Song"));
    state.repeat = static_cast<Repeat>(99);
    state.shuffle = static_cast<Shuffle>(99);

    const Values values = PlayerProperties(state, "/t", "");

    EXPECT_EQ(values.count("LoopStatus"), 0U);
    EXPECT_EQ(values.count("Shuffle"), 0U);
}

TEST(PlayerPropertiesTest, OnlySeekableTracksAreSeekable)
{
    EXPECT_TRUE(IsTrue(PlayerProperties(Playing(TrackOf("Song")), "/t", ""), "CanSeek"));
    EXPECT_FALSE(IsTrue(PlayerProperties(Playing(Track()), "/t", ""), "CanSeek"));
}

/// A player on a bus, with a session that the test controls.
class PlayerTest : public testing::Test
{
protected:
    PlayerTest()
        : following(fake.Get().OnState("test", [this](const StatePtr& state, Fields) { player.Follow(state); }))
    {
        const auto record = [](GDBusConnection*, const gchar*, const gchar*, const gchar*, const gchar*,
                               GVariant* arguments, gpointer list)
        {
            gchar* const text = g_variant_print(arguments, FALSE);
            static_cast<std::vector<std::string>*>(list)->emplace_back(text);
            g_free(text);
        };
        g_dbus_connection_signal_subscribe(connection, nullptr, nullptr, nullptr, "/org/mpris/MediaPlayer2", nullptr,
                                           G_DBUS_SIGNAL_FLAGS_NONE, record, &signals, nullptr);
        RunLoopFor(50ms);
        signals.clear();
    }
    ~PlayerTest() override { g_object_unref(connection); }

    bool Told(const std::string& part) const
    {
        return std::any_of(signals.begin(), signals.end(),
                           [&](const std::string& each) { return each.find(part) != std::string::npos; });
    }

    PrivateBus bus;
    GDBusConnection* connection = g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, nullptr);
    FakeSession fake;
    Counters counters;
    Player player{connection, fake.Get(), counters};
    Subscription following;
    std::vector<std::string> signals;
};

TEST_F(PlayerTest, AnnouncesATrackOnceWithArtworkThatFollowsSoon)
{
    Track track = TrackOf("Song");
    track.artwork = 1;
    PlayerState state = Playing(track);
    fake.SetState(state);
    RunLoopFor(100ms);
    EXPECT_FALSE(Told("Song"));

    state.artwork = std::make_shared<const Picture>(Examine({0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'}));
    fake.SetState(state);
    RunLoopFor(400ms);

    EXPECT_EQ(signals.size(), 1U);
    EXPECT_TRUE(Told("file:///"));
}

TEST_F(PlayerTest, DoesNotWaitForeverForArtwork)
{
    Track track = TrackOf("Song");
    track.artwork = 1;
    fake.SetState(Playing(track));

    EXPECT_TRUE(RunLoopUntil([&] { return Told("Song"); }, 1s));
}

TEST_F(PlayerTest, ArtworkThatIsNoImageHasNoUrl)
{
    PlayerState state = Playing(TrackOf("Song"));
    state.artwork = std::make_shared<const Picture>(Examine({'n', 'o'}));
    fake.SetState(state);

    ASSERT_TRUE(RunLoopUntil([&] { return Told("Song"); }));
    EXPECT_FALSE(Told("artUrl"));
}

TEST_F(PlayerTest, AnnouncesEachOfManyTracksHoweverFastTheyFollow)
{
    for (const char* const title : {"One", "Two", "Three"}) fake.SetState(Playing(TrackOf(title)));

    ASSERT_TRUE(RunLoopUntil([&] { return Told("Three"); }));
    RunLoopFor(50ms);
    EXPECT_EQ(signals.size(), 3U);
}

TEST_F(PlayerTest, ReportsJumpsButNotProgress)
{
    PlayerState state = Playing(TrackOf("Song"));
    const auto at = std::chrono::steady_clock::now();
    state.position = Position{10s, 60s, at, true};
    fake.SetState(state);
    ASSERT_TRUE(RunLoopUntil([&] { return Told("Song"); }));
    signals.clear();

    state.position = Position{10600ms, 60s, at + 500ms, true};
    fake.SetState(state);
    RunLoopFor(50ms);
    EXPECT_TRUE(signals.empty());

    state.position = Position{30s, 60s, at + 600ms, true};
    fake.SetState(state);
    ASSERT_TRUE(RunLoopUntil([&] { return !signals.empty(); }));
    EXPECT_EQ(signals, std::vector<std::string>{"(30000000,)"});
}

/// A track at 10 of 60 seconds, and a seek by one second that is no jump by its size.
class SeekTest : public PlayerTest
{
protected:
    SeekTest()
    {
        state.position = Position{10s, 60s, at, true};
        fake.SetState(state);
        EXPECT_TRUE(RunLoopUntil([&] { return Told("Song"); }));
        signals.clear();
    }

    void Seek()
    {
        g_dbus_connection_call(connection, g_dbus_connection_get_unique_name(connection), "/org/mpris/MediaPlayer2",
                               "org.mpris.MediaPlayer2.Player", "Seek", g_variant_new("(x)", gint64{1'000'000}),
                               nullptr, G_DBUS_CALL_FLAGS_NONE, -1, nullptr, nullptr, nullptr);
        EXPECT_TRUE(RunLoopUntil([&] { return !fake.Calls().empty(); }));
    }

    void Report(std::chrono::milliseconds position)
    {
        state.position = Position{position, 60s, at + 500ms, true};
        fake.SetState(state);
        RunLoopFor(50ms);
    }

    std::chrono::steady_clock::time_point at = std::chrono::steady_clock::now();
    PlayerState state = Playing(TrackOf("Song"));
};

TEST_F(SeekTest, ReportsASmallJump)
{
    Seek();
    Report(11s);
    EXPECT_EQ(signals, std::vector<std::string>{"(11000000,)"});
}

TEST_F(SeekTest, ReportsNothingIfItIsRefused)
{
    fake.Fail("Seek", Error{ErrorKind::Refused, "no"});
    Seek();
    Report(10600ms);
    EXPECT_TRUE(signals.empty());
}

TEST_F(SeekTest, ReportsNothingBeforeItIsAnswered)
{
    fake.Hold("Seek");
    Seek();
    Report(10600ms);
    EXPECT_TRUE(signals.empty());
    fake.AnswerHeld("Seek");
    EXPECT_TRUE(RunLoopUntil([&] { return !signals.empty(); }));
}

// A bus disconnects programs that send invalid UTF-8.
TEST_F(PlayerTest, HostileStatesDoNotEndTheConnection)
{
    StateObject object(connection, counters);
    PlayerState state = Playing(TrackOf("\xFF\x01 Song"));
    state.deviceName = std::string("\xC3\0\x1b", 3);
    state.calls["\xFE"].name = "\xED\xA0\x80";
    state.error = Error{ErrorKind::Refused, "\xFF"};

    fake.SetState(state);
    object.Follow(std::make_shared<const PlayerState>(state));

    EXPECT_TRUE(RunLoopUntil([&] { return Told("\uFFFD\uFFFD Song"); }));
    EXPECT_TRUE(g_dbus_connection_flush_sync(connection, nullptr, nullptr));
    RunLoopFor(50ms);
    EXPECT_FALSE(g_dbus_connection_is_closed(connection));
}

TEST(StateInterfaceTest, HasAPropertyForEachFieldOfTheState)
{
    GDBusNodeInfo* const node = g_dbus_node_info_new_for_xml(StateInterfaceXml().c_str(), nullptr);
    ASSERT_NE(node, nullptr);
    ForEachRow<PlayerState>(
        [&](const auto& row)
        {
            const std::string name = PropertyName(row.name);
            EXPECT_NE(g_dbus_interface_info_lookup_property(node->interfaces[0], name.c_str()), nullptr) << name;
        });
    g_dbus_node_info_unref(node);
}
}  // namespace
}  // namespace test
