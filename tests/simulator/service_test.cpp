// The simulated service embedded in a test, and called over a bus.
#include <gio/gio.h>
#include <gmock/gmock.h>
#include <ipodsim.h>

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "support/private_bus.h"
#include "support/run_loop.h"
#include "support/shared_vectors.h"
#include "temporary_folder.h"

using testing::ElementsAre;
using testing::HasSubstr;

namespace
{
constexpr char kService[] = "com.zarn.linux.ipod";
constexpr char kPath[] = "/com/zarn/linux/ipod";
constexpr char kControl[] = "com.zarn.linux.ipod.Simulator";
constexpr char kControlPath[] = "/com/zarn/linux/ipod/simulator";

struct VariantUnref
{
    void operator()(GVariant* value) const { g_variant_unref(value); }
};
using VariantPtr = std::unique_ptr<GVariant, VariantUnref>;

std::string ToText(GVariant* value)
{
    char* const text = g_variant_print(value, FALSE);
    std::string copy = text;
    g_free(text);
    return copy;
}

// A track without tags or artwork.
std::string ASecondOfSilence()
{
    constexpr std::size_t kRate = 8000;
    const std::string header(
        "RIFF\x64\x1F\0\0WAVEfmt \x10\0\0\0\1\0\1\0\x40\x1F\0\0\x40\x1F\0\0\1\0\x08\0"
        "data\x40\x1F\0\0",
        44);
    return header + std::string(kRate, '\x80');
}

// A PNG header followed by padding.
std::string PngOf(std::size_t size)
{
    std::string png("\x89PNG\r\n\x1A\n\0\0\0\rIHDR\0\0\0\x05\0\0\0\x07", 24);
    png.resize(size, 'x');
    return png;
}

// The reply that announces artwork of that many bytes and 5 x 7 pixels.
std::string HeadOf(std::uint32_t size)
{
    char text[128];
    std::snprintf(text, sizeof(text),
                  "(<[byte 0x00, 0x00, 0x00, 0x00, 0x%02x, 0x%02x, 0x%02x, 0x%02x, 0x05, 0x00, 0x00, 0x00, 0x07, "
                  "0x00, 0x00, 0x00]>,)",
                  size & 0xFFU, size >> 8U & 0xFFU, size >> 16U & 0xFFU, size >> 24U);
    return text;
}

constexpr char kNoArtwork[] =
    "(<[byte 0x01, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00]>,)";

// A bare D-Bus client that records the signals it receives.
class Client
{
public:
    Client()
    {
        char* const address = g_dbus_address_get_for_bus_sync(G_BUS_TYPE_SESSION, nullptr, nullptr);
        m_bus = g_dbus_connection_new_for_address_sync(
            address,
            static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                              G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
            nullptr, nullptr, nullptr);
        g_free(address);
        g_dbus_connection_signal_subscribe(m_bus, nullptr, nullptr, nullptr, kPath, nullptr, G_DBUS_SIGNAL_FLAGS_NONE,
                                           OnSignal, this, nullptr);
        g_dbus_connection_signal_subscribe(m_bus, nullptr, nullptr, nullptr, kControlPath, nullptr,
                                           G_DBUS_SIGNAL_FLAGS_NONE, OnSignal, this, nullptr);
        // A round trip ensures that the bus has processed the subscriptions.
        g_variant_unref(g_dbus_connection_call_sync(m_bus, "org.freedesktop.DBus", "/org/freedesktop/DBus",
                                                    "org.freedesktop.DBus", "GetId", nullptr, nullptr,
                                                    G_DBUS_CALL_FLAGS_NONE, 5000, nullptr, nullptr));
    }
    ~Client()
    {
        g_dbus_connection_close_sync(m_bus, nullptr, nullptr);
        g_object_unref(m_bus);
    }
    Client(const Client&) = delete;
    Client& operator=(const Client&) = delete;

    /// Returns the reply as text, or "error NAME: MESSAGE".
    std::string Ask(const char* method, GVariant* arguments = nullptr, int timeoutMs = 5000)
    {
        return Call(kService, kPath, method, arguments, timeoutMs);
    }
    /// Runs an action, or starts a scenario.
    std::string Do(const char* json) { return Control("Do", g_variant_new("(s)", json)); }
    std::string Control(const char* method, GVariant* arguments = nullptr)
    {
        return Call(kControl, kControlPath, method, arguments, 5000);
    }

    bool Receives(const std::string& signal, int milliseconds = 20000)
    {
        const gint64 end = g_get_monotonic_time() + gint64{milliseconds} * 1000;
        while (Count(signal) == 0 && g_get_monotonic_time() < end)
        {
            g_main_context_iteration(nullptr, FALSE);
            g_usleep(500);
        }
        return Count(signal) != 0;
    }

    std::ptrdiff_t Count(const std::string& signal) const { return std::count(signals.begin(), signals.end(), signal); }

    std::vector<std::string> signals;  ///< "NAME BODY"

private:
    std::string Call(const char* name, const char* path, const char* method, GVariant* arguments, int timeoutMs)
    {
        GError* error = nullptr;
        const VariantPtr reply(g_dbus_connection_call_sync(m_bus, name, path, name, method, arguments, nullptr,
                                                           G_DBUS_CALL_FLAGS_NONE, timeoutMs, nullptr, &error));
        if (reply != nullptr) return ToText(reply.get());
        char* const remote = g_dbus_error_get_remote_error(error);
        g_dbus_error_strip_remote_error(error);
        const std::string text = std::string("error ") + (remote == nullptr ? "local" : remote) + ": " + error->message;
        g_free(remote);
        g_error_free(error);
        return text;
    }

    static void OnSignal(GDBusConnection*, const gchar*, const gchar*, const gchar*, const gchar* name, GVariant* body,
                         gpointer self)
    {
        static_cast<Client*>(self)->signals.push_back(std::string(name) + " " + ToText(body));
    }

    GDBusConnection* m_bus;
};

ipodsim::Options Quiet(const TemporaryFolder* music = nullptr)
{
    ipodsim::Options options;
    options.warn = [](const std::string&) {};
    if (music != nullptr) options.musicFolder = music->path.string();
    return options;
}

class Service : public testing::Test
{
protected:
    test::PrivateBus bus;
};

class BuiltinService : public Service
{
protected:
    ipodsim::Simulator service{Quiet()};
    Client client;
};
}  // namespace

TEST_F(BuiltinService, RecordsItsCalls)
{
    client.Ask("Play", g_variant_new("(y)", guchar{3}));
    client.Ask("Seek", g_variant_new("(i)", 90));

    const auto calls = service.Calls();

    ASSERT_EQ(calls.size(), 2U);
    EXPECT_EQ(calls[0].method, "Play");
    EXPECT_EQ(calls[0].arguments, "(0x03,)");
    EXPECT_EQ(calls[0].answer, "(true,)");
    EXPECT_EQ(calls[0].error, "");
    EXPECT_EQ(calls[0].sender.front(), ':');
    EXPECT_LE(calls[0].time, calls[1].time);
    EXPECT_EQ(calls[1].arguments, "(90,)");
    EXPECT_EQ(calls[1].answer, "()");
    EXPECT_EQ(service.Calls("Seek").size(), 1U);
    EXPECT_THROW(service.Calls("Sekk"), std::runtime_error);
    service.ClearCalls();
    EXPECT_TRUE(service.Calls().empty());
}

TEST_F(BuiltinService, ReportsItsCallsOverTheBus)
{
    client.Ask("GetPlayStatus");

    EXPECT_THAT(client.Control("Calls", g_variant_new("(s)", "")),
                HasSubstr("'GetPlayStatus', [], 'reply', [<0>])],)"));
    EXPECT_EQ(client.Control("Calls", g_variant_new("(s)", "Play")), "([],)");
    client.Control("ClearCalls");
    EXPECT_EQ(client.Control("Calls", g_variant_new("(s)", "")), "([],)");
    client.Receives("nothing", 50);
    EXPECT_THAT(client.signals, ElementsAre(HasSubstr("Called ((")));
}

TEST_F(BuiltinService, ReportsTheStatesOfACall)
{
    EXPECT_EQ(client.Do(R"({"event": "call", "value": {"sequence": [{"status": "ringing", "seconds": 0.05},
                               {"status": "active", "seconds": 0.05}, {"status": "disconnected"}]}})"),
              "('{}',)");

    const gint64 end = g_get_monotonic_time() + 5000000;
    while (client.signals.size() < 3 && g_get_monotonic_time() < end) g_main_context_iteration(nullptr, FALSE);
    ASSERT_EQ(client.signals.size(), 3U);
    for (const std::string& signal : client.signals) EXPECT_THAT(signal, HasSubstr("OnIpodPhoneCallChange"));
}

TEST_F(BuiltinService, RejectsInvalidActionsWithThePathOfTheValue)
{
    const std::string invalid = "error org.freedesktop.DBus.Error.InvalidArgs: ";

    EXPECT_EQ(client.Do(R"({"event": "button", "value": "eject"})"),
              invalid + "value: expected one of play, pause, stop, next, previous, got \"eject\"");
    EXPECT_EQ(client.Do(R"({"event": "battery", "value": {"level": "x"}})"),
              invalid + "value.level: expected an integer between 0 and 4294967295, got \"x\"");
    EXPECT_EQ(client.Do("{\n}"), invalid + "event: expected the name of an action, got nothing");
    EXPECT_THAT(client.Do("{\n5}"), HasSubstr(invalid + "line 2, column 1: "));
    EXPECT_THAT(client.Do(R"({"event": "fault", "value": "dely"})"), HasSubstr("(did you mean 'delay'?)"));
    EXPECT_EQ(client.Do(R"({"event": "detach", "value": "none"})"),
              "error com.zarn.linux.ipod.Error.Failed: no device of that name is attached");
    EXPECT_THROW(service.Do("button", "eject"), std::runtime_error);
}

TEST_F(BuiltinService, ReturnsTheAccessorySessionNumber)
{
    EXPECT_EQ(service.Do("eap-open"), R"({"session":1})");
    EXPECT_EQ(client.Do(R"({"event": "eap-open"})"), R"(('{"session":2}',))");
    EXPECT_EQ(service.Do("eap-data", {{"hex", "00ff"}}), "{}") << "the default is the session opened last";
    EXPECT_TRUE(client.Receives("OnIpodReceiveEapData (0x02,)"));
    EXPECT_EQ(service.Do("eap-close", 1), "{}");
    EXPECT_THROW(service.Do("eap-close", 1), std::runtime_error);
}

TEST_F(BuiltinService, PassesValuesOfEveryType)
{
    using ipodsim::Value;
    service.Do("carplay", {{"status", "detected"}, {"serial", std::string("F17\"")}});
    service.Do("wireless", {{"available", true}});
    service.Do("call",
               {{"conference-group", 7U}, {"sequence", Value::List({Value{{"status", "ringing"}, {"seconds", 0.5}}})}});

    EXPECT_EQ(client.Ask("GetCarplayDeviceDetectStatus"), "(0x00, 'F17\"')");
    EXPECT_TRUE(client.Receives("OnWirelessCarPlayUpdate (true, '')"));
    EXPECT_EQ(Value().Json(), "{}");
    EXPECT_EQ(Value::List({}).Json(), "[]");
    EXPECT_THROW(Value("\xFF"), std::runtime_error);
}

TEST_F(BuiltinService, PlaysWhenPlayIsPressed)
{
    service.Do("button", "play");
    EXPECT_EQ(client.Ask("GetPlayStatus"), "(1,)");
    EXPECT_TRUE(client.Receives("OnPlayStatusChanged (0x01,)"));
    service.Do("button", "pause");
    EXPECT_EQ(client.Ask("GetPlayStatus"), "(2,)");
    service.Do("button", "next");
    EXPECT_EQ(client.Ask("GetPlayingTrackIdx"), "(1,)");
    service.Do("button", "previous");
    service.Do("button", "stop");
    EXPECT_EQ(client.Ask("GetPlayStatus"), "(0,)");
}

TEST_F(BuiltinService, RunsAScenario)
{
    service.RunScenario(R"({"title": "Short", "steps": [
        {"time": 0, "event": "source", "value": false},
        {"time": 0.05, "event": "detach", "value": "nobody"},
        {"time": 0.1, "event": "app", "value": "com.example.maps"}]})");

    EXPECT_TRUE(client.Receives("ScenarioEnded ('Short',)"));
    EXPECT_THAT(client.signals,
                ElementsAre("OnIpodSourceValidStatusChange (false,)", "OnIpodAppBundleNameChange ('com.example.maps',)",
                            "ScenarioEnded ('Short',)"));
}

TEST_F(Service, AnswersDuringALongScenario)
{
    std::vector<std::string> warnings;
    ipodsim::Options options = Quiet();
    options.warn = [&](const std::string& line) { warnings.push_back(line); };
    ipodsim::Simulator service(options);
    Client client;
    std::string json = R"({"title": "Long", "steps": [{"time": 0, "event": "detach", "value": "nobody"})";
    for (int i = 0; i < 5000; ++i) json += R"(,{"time": 0, "event": "location", "value": true})";

    service.RunScenario(json + "]}");

    EXPECT_EQ(client.Ask("GetPlayStatus"), "(0,)");
    EXPECT_TRUE(client.Receives("ScenarioEnded ('Long',)"));
    EXPECT_EQ(client.Count("OnIpodLocationStatusChange (0x01,)"), 5000);
    EXPECT_EQ(warnings, (std::vector<std::string>{"scenario: steps[0], detach: no device of that name is attached"}));
}

TEST_F(BuiltinService, DelaysARequestAndAnswersOthersMeanwhile)
{
    service.Do("fault", "delay=1000@GetPlayStatus/1");
    gint64 spent = 0;
    std::thread slow(
        [&]
        {
            Client other;
            const gint64 begin = g_get_monotonic_time();
            other.Ask("GetPlayStatus");
            spent = g_get_monotonic_time() - begin;
        });
    g_usleep(300000);

    EXPECT_EQ(client.Ask("GetShuffleMode"), "(0,)");
    slow.join();
    EXPECT_GE(spent, 1000000);
    EXPECT_EQ(service.Calls()[0].method, "GetShuffleMode") << "answered first";
    EXPECT_EQ(client.Ask("GetPlayStatus"), "(0,)");
}

TEST_F(BuiltinService, CanOmitAReply)
{
    service.Do("fault", "no-reply@Play/1");

    EXPECT_THAT(client.Ask("Play", g_variant_new("(y)", guchar{3}), 200), HasSubstr("Timeout"));
    EXPECT_EQ(service.Calls("Play")[0].answer, "");
    EXPECT_EQ(client.Ask("Play", g_variant_new("(y)", guchar{3})), "(true,)");
}

TEST_F(BuiltinService, CanReplyWithAnError)
{
    service.Do("fault", "error=com.example.Busy@Pause/1");

    EXPECT_EQ(client.Ask("Pause"), "error com.example.Busy: injected fault");
    EXPECT_EQ(service.Calls("Pause")[0].error, "com.example.Busy");
    EXPECT_EQ(client.Ask("Pause"), "(false,)");
}

TEST_F(BuiltinService, CanReplyWithWrongTypesAndNumbers)
{
    service.Do("fault", "wrong-type@GetPlayStatus/1");
    service.Do("fault", "out-of-range=77@GetRepeatMode/1");
    service.Do("fault", "out-of-range@GetCarplayDeviceDetectStatus/1");

    EXPECT_EQ(client.Ask("GetPlayStatus"), "('wrong type',)");
    EXPECT_EQ(client.Ask("GetRepeatMode"), "(77,)");
    EXPECT_EQ(client.Ask("GetCarplayDeviceDetectStatus"), "(0x63, '')");
}

TEST_F(BuiltinService, CanReplyWithRecordsOfAnySize)
{
    service.Do("fault", "short-record=3@GetCurrentMediaInfo/1");
    service.Do("fault", "long-record=1042@GetCurrentMediaInfo/1");
    service.Do("fault", "wrong-type@GetCurrentMediaInfo/1");

    EXPECT_EQ(client.Ask("GetCurrentMediaInfo"), "(<[byte 0x00, 0x00, 0x00]>,)");
    EXPECT_THAT(client.Ask("GetCurrentMediaInfo"), HasSubstr("0x00, 0x78, 0x78]>,)"));
    EXPECT_EQ(client.Ask("GetCurrentMediaInfo"), "(<'not a record'>,)");
}

TEST_F(BuiltinService, CanFalsifySignals)
{
    service.Do("fault", "bad-message@OnIpodBatteryChange/1");
    service.Do("fault", "out-of-range=9@OnIpodLocationStatusChange/1");
    service.Do("fault", "wrong-type@OnIpodAppBundleNameChange/1");
    service.Do("fault", "no-reply@OnIpodSourceValidStatusChange/1");

    service.Do("battery");
    service.Do("location", true);
    service.Do("app", "a");
    service.Do("source", true);
    service.Do("source", false);

    EXPECT_TRUE(client.Receives("OnIpodSourceValidStatusChange (false,)"));
    EXPECT_THAT(client.signals,
                ElementsAre("OnIpodBatteryChange (<[byte 0x0a, 0x7f, 0x78]>,)", "OnIpodLocationStatusChange (0x09,)",
                            "OnIpodAppBundleNameChange ('wrong type',)", "OnIpodSourceValidStatusChange (false,)"));
}

TEST_F(BuiltinService, RejectsASecondDeviceOfTheSameName)
{
    service.Do("attach", "Second");
    EXPECT_THROW(service.Do("attach", "Second"), std::runtime_error);
    EXPECT_THAT(client.Do(R"({"event": "attach", "value": "Desk iPod"})"),
                HasSubstr("a device of that name is already attached"));
    EXPECT_EQ(client.Ask("GetDeviceAmount"), "(2,)");
}

TEST_F(BuiltinService, CanLeaveTheBusAndReturn)
{
    client.Ask("Play", g_variant_new("(y)", guchar{3}));
    std::vector<std::string> owners;
    const guint watch = g_bus_watch_name(
        G_BUS_TYPE_SESSION, kService, G_BUS_NAME_WATCHER_FLAGS_NONE,
        [](GDBusConnection*, const gchar*, const gchar* owner, gpointer seen)
        { static_cast<std::vector<std::string>*>(seen)->push_back(owner); },
        nullptr, &owners, nullptr);

    const auto seen = [&owners](std::size_t count)
    { return test::RunLoopUntil([&] { return owners.size() == count; }); };
    ASSERT_TRUE(seen(1));

    service.Do("fault", "restart-storm=3");

    EXPECT_TRUE(seen(4));
    g_bus_unwatch_name(watch);
    ASSERT_EQ(owners.size(), 4U);
    EXPECT_NE(owners[0], owners[3]);
    EXPECT_EQ(client.Ask("GetPlayStatus"), "(0,)") << "playback is reset";
    EXPECT_EQ(client.Ask("GetDeviceAmount"), "(1,)");
    EXPECT_EQ(service.Calls("Play").size(), 1U) << "the call log is kept";
}

TEST_F(BuiltinService, RefusesToCrashItsHostProgram)
{
    EXPECT_THROW(service.Do("fault", "crash@Play"), std::runtime_error);
    EXPECT_THAT(client.Do(R"({"event": "fault", "value": "crash-locked/1"})"),
                HasSubstr("embedded in another program"));
}

TEST_F(BuiltinService, ReportsTheProcessThatOwnsTheName)
{
    try
    {
        ipodsim::Simulator second{Quiet()};
        FAIL();
    }
    catch (const std::runtime_error& error)
    {
        EXPECT_THAT(error.what(), HasSubstr("another simulator or service is running on this bus: process " +
                                            std::to_string(getpid())));
    }
    EXPECT_EQ(client.Ask("GetPlayStatus"), "(0,)");
}

TEST_F(Service, HasADeviceForEachSubfolder)
{
    TemporaryFolder folder;
    folder.CopySample("one.ogg");
    folder.CopySample("Phone/two.ogg");
    const ipodsim::Simulator service(Quiet(&folder));
    Client client;

    EXPECT_EQ(service.Summary(), "2 songs, 1 artist, 1 album");
    EXPECT_EQ(client.Ask("GetDeviceAmount"), "(2,)");
    EXPECT_EQ(client.Ask("GetIpodName"), "('Desk iPod',)");
    EXPECT_EQ(client.Ask("EnterDeviceChildList", g_variant_new("(i)", 1)), "(true,)");
    EXPECT_EQ(client.Ask("GetIpodName"), "('Phone',)");
}

TEST_F(Service, FollowsSubfoldersThatAppearAndDisappear)
{
    TemporaryFolder folder;
    folder.CopySample("Phone/one.ogg");
    const ipodsim::Simulator service(Quiet(&folder));
    Client client;

    folder.CopySample("Second/two.ogg");
    EXPECT_TRUE(client.Receives("OnIpodDeviceStatusChange (0x00, false)"));
    EXPECT_EQ(client.Ask("GetDeviceAmount"), "(2,)");

    folder.CopySample("Second/three.ogg");
    EXPECT_TRUE(client.Receives("OnIpodDeviceStatusChange (0x00, true)"));
    EXPECT_EQ(service.Summary(), "3 songs, 1 artist, 1 album");

    std::filesystem::remove_all(folder.path / "Second");
    EXPECT_TRUE(client.Receives("OnIpodDeviceStatusChange (0x01, false)"));
    EXPECT_EQ(client.Ask("GetDeviceAmount"), "(1,)");
}

TEST_F(Service, DetectsTheReturnOfTheMusicFolder)
{
    TemporaryFolder folder;
    folder.CopySample("one.ogg");
    std::atomic<int> warnings{0};
    ipodsim::Options options = Quiet(&folder);
    options.oneDevice = true;
    options.warn = [&](const std::string& line)
    {
        EXPECT_EQ(line, "the music folder " + folder.path.string() + " disappeared; waiting for its return");
        ++warnings;
    };
    const ipodsim::Simulator service(options);
    Client client;

    std::filesystem::remove_all(folder.path);
    ASSERT_TRUE(client.Receives("OnIpodDeviceStatusChange (0x01, false)"));
    EXPECT_EQ(client.Ask("GetDeviceAmount"), "(0,)");
    folder.CopySample("Phone/one.ogg");
    folder.CopySample("Phone/two.ogg");

    EXPECT_TRUE(client.Receives("OnIpodDeviceStatusChange (0x00, false)"));
    EXPECT_EQ(service.Summary(), "2 songs, 1 artist, 1 album");
    EXPECT_EQ(warnings, 1);
}

TEST_F(Service, DeliversLargeArtworkRegardlessOfEarlierDeliveries)
{
    constexpr std::uint32_t kLargest = (1U << 20U) - 4096;
    test::SharedVectors shared;
    for (const std::uint32_t size : {500000U, 600000U, kLargest})
    {
        SCOPED_TRACE(size);
        TemporaryFolder folder;
        folder.Write("one.wav", ASecondOfSilence());
        folder.Write("two.wav", ASecondOfSilence());
        folder.Write("cover.png", PngOf(size));
        ipodsim::Options options = Quiet(&folder);
        options.speed = 0.01;
        options.warn = [](const std::string& line) { ADD_FAILURE() << line; };
        ipodsim::Simulator service(options);
        Client client;

        for (const char* button : {"play", "next", "previous"})
        {
            client.signals.clear();
            service.Do("button", button);
            EXPECT_TRUE(client.Receives("OnIpodArtworkChange " + HeadOf(size), 5000));
            EXPECT_EQ(shared.Bytes("VecArtworkChangeBufferShareMemory").size(), size);
            for (int i = 0; i < 2; ++i)
            {
                EXPECT_EQ(client.Ask("GetPlayingTrackAlbumArtwork"), HeadOf(size));
                EXPECT_EQ(shared.Bytes("VecArtworkBufferShareMemory").size(), size);
            }
        }
    }
}

TEST_F(Service, OmitsArtworkBesideLargeAccessoryDataAndWarnsOnce)
{
    TemporaryFolder folder;
    folder.Write("one.wav", ASecondOfSilence());
    folder.Write("two.wav", ASecondOfSilence());
    folder.Write("cover.png", PngOf(600000));
    std::vector<std::string> warnings;
    ipodsim::Options options = Quiet(&folder);
    options.speed = 0.01;
    options.warn = [&](const std::string& line) { warnings.push_back(line); };
    ipodsim::Simulator service(options);
    Client client;
    service.Do("eap-open");
    service.Do("eap-data", {{"text", std::string(600000, 'x')}});

    service.Do("button", "play");
    for (int i = 0; i < 3; ++i) EXPECT_EQ(client.Ask("GetPlayingTrackAlbumArtwork"), kNoArtwork);

    const std::string record = client.Ask("GetCurrentMediaInfo");
    EXPECT_EQ(record.substr(record.size() - 28), ", 0x00, 0x00, 0x00, 0x00]>,)")
        << "the track record announces no artwork";
    service.ClearCalls();  // synchronizes with the service's thread
    EXPECT_EQ(warnings, (std::vector<std::string>{"no space in shared memory for the artwork of 'one', 600000 bytes"}));
    service.Do("button", "next");
    for (int i = 0; i < 3; ++i) client.Ask("GetPlayingTrackAlbumArtwork");
    service.ClearCalls();
    EXPECT_EQ(warnings.size(), 2U);
}

TEST_F(Service, SummarizesManyWarnings)
{
    TemporaryFolder folder;
    for (int i = 0; i < 800; ++i) folder.Write("Phone/" + std::to_string(i) + ".ogg", "no audio");
    folder.Write("Watch/one.ogg", "no audio");
    std::vector<std::string> warnings;
    ipodsim::Options options = Quiet(&folder);
    options.warn = [&](const std::string& line) { warnings.push_back(line); };

    const ipodsim::Simulator service(options);

    ASSERT_EQ(warnings.size(), 11U);
    EXPECT_EQ(warnings[9], "skipped " + (folder.path / "Phone/106.ogg").string() + ": not a supported audio file");
    EXPECT_EQ(warnings[10], "and 791 more warnings like these");
}

TEST_F(Service, AnswersWhileScanning)
{
    TemporaryFolder folder;
    for (int i = 0; i < 500; ++i) folder.CopySample(std::to_string(i) + ".ogg");
    std::atomic<bool> goOn{false};
    ipodsim::Options options = Quiet(&folder);
    options.waitForIndex = false;
    options.progress = [&](std::size_t, std::size_t)
    {
        while (!goOn) g_usleep(1000);
    };
    const ipodsim::Simulator service(options);
    Client client;

    EXPECT_EQ(client.Ask("GetDeviceAmount"), "(1,)");
    EXPECT_EQ(client.Ask("GetCurDbListItemsAmount", g_variant_new("(b)", FALSE)), "(5,)");
    EXPECT_FALSE(service.Indexed());
    goOn = true;
    EXPECT_TRUE(client.Receives("OnIpodDeviceStatusChange (0x00, true)"));
    EXPECT_EQ(service.Summary(), "500 songs, 1 artist, 1 album");
}

TEST_F(Service, ExitsWhileScanning)
{
    TemporaryFolder folder;
    for (int i = 0; i < 500; ++i) folder.CopySample(std::to_string(i) + ".ogg");
    ipodsim::Options options = Quiet(&folder);
    options.waitForIndex = false;

    const gint64 begin = g_get_monotonic_time();
    {
        const ipodsim::Simulator service(options);
    }
    EXPECT_LT(g_get_monotonic_time() - begin, 5000000);
}

TEST_F(Service, StoresTheIndexInTheCacheFolder)
{
    TemporaryFolder folder;
    TemporaryFolder cache;
    folder.CopySample("one.ogg");
    ipodsim::Options options = Quiet(&folder);
    options.cacheFolder = cache.path.string();
    {
        const ipodsim::Simulator service(options);
    }

    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(cache.path), {}), 1);
}

TEST_F(BuiltinService, LetsATestOverrideAMethod)
{
    using ipodsim::Reply;
    service.On("Seek", [](GVariant* arguments) { return Reply::Error("com.example.Received", ToText(arguments)); });
    service.On("GetPlayStatus", [](GVariant*) { return Reply::With("(77,)").After(100); });
    service.On("Next", [](GVariant*) { return Reply::Malformed("('text', 1)"); });
    service.On("Pause", [](GVariant*) { return Reply::With("('not of the contract',)"); });
    service.On("Stop", [](GVariant*) { return Reply::Never(); });

    EXPECT_EQ(client.Ask("Seek", g_variant_new("(i)", 5)), "error com.example.Received: (5,)");
    const gint64 begin = g_get_monotonic_time();
    EXPECT_EQ(client.Ask("GetPlayStatus"), "(77,)");
    EXPECT_GE(g_get_monotonic_time() - begin, 100000);
    EXPECT_EQ(client.Ask("Next"), "('text', 1)");
    EXPECT_THAT(client.Ask("Pause"), HasSubstr("is not a value of type (b)"));
    EXPECT_THAT(client.Ask("Stop", nullptr, 100), HasSubstr("Timeout"));
    EXPECT_EQ(service.Calls("Seek")[0].error, "com.example.Received");
    EXPECT_EQ(service.Calls("Next")[0].answer, "('text', 1)");
    EXPECT_EQ(service.Calls("Stop")[0].answer, "");
    service.On("GetPlayStatus", nullptr);
    EXPECT_EQ(client.Ask("GetPlayStatus"), "(0,)");
    EXPECT_THROW(service.On("GetPlayState", nullptr), std::runtime_error);
}

TEST_F(Service, DoesOnlyTheScriptedActions)
{
    ipodsim::ScriptedService service;
    Client client;
    service.On("Seek",
               [](GVariant* arguments) { return ipodsim::Reply::Error("com.example.Received", ToText(arguments)); });
    service.On("Play", [](GVariant*) { return ipodsim::Reply::With("(true,)").After(100); });
    service.On("Next", [](GVariant*) -> ipodsim::Reply { throw std::runtime_error("thrown"); });

    EXPECT_EQ(client.Ask("Seek", g_variant_new("(i)", 5)), "error com.example.Received: (5,)");
    EXPECT_EQ(client.Ask("Play", g_variant_new("(y)", guchar{3})), "(true,)");
    EXPECT_EQ(client.Ask("Next"), "error com.example.Broken: thrown");
    EXPECT_EQ(client.Ask("Pause"), "error com.example.NotScripted: Pause");
    EXPECT_THAT(service.Calls(), ElementsAre("Seek(5,)", "Play(0x03,)", "Next()", "Pause()"));
}
