// The attempts of InitInstance() to create the proxy, and the signals it connects. This program replaces the functions
// involved, so that attempts fail and succeed as the test decides.
#include <IQBXIpodPlayer.h>
#include <gmock/gmock.h>
#include <ipod_dbus.h>

#include <string>
#include <vector>

#include "bus/replaced_release.h"
#include "support/glib_messages.h"
#include "support/log_capture.h"

namespace
{
// One letter per attempt: s succeeds, f fails. Further attempts fail.
std::string outcomes;
std::size_t attempts = 0;
bool errorWasPassedTwice = false;
std::string request;               // the arguments of the last attempt
bool ownerWasLogged = false;       // before the first signal was connected
std::vector<std::string> signals;  // in the order of connection, marked if connected with flags

ComZarnLinuxIpod* FailedProxy(GError** error)
{
    errorWasPassedTwice = errorWasPassedTwice || *error != nullptr;
    *error = g_error_new_literal(G_IO_ERROR, G_IO_ERROR_FAILED, "no bus");
    return nullptr;
}

ComZarnLinuxIpod* Proxy()
{
    // Never destroyed: the library drops the proxies of some attempts, which would then count as leaks.
    static auto& proxies = *new std::vector<ComZarnLinuxIpod*>;
    proxies.push_back(COM_ZARN_LINUX_IPOD(g_object_new(TYPE_COM_ZARN_LINUX_IPOD_PROXY, nullptr)));
    return proxies.back();
}
}  // namespace

ComZarnLinuxIpod* com_zarn_linux_ipod_proxy_new_for_bus_sync(GBusType bus, GDBusProxyFlags flags, const gchar* name,
                                                             const gchar* path, GCancellable*, GError** error)
{
    request = std::to_string(bus) + " " + std::to_string(flags) + " " + name + " " + path;
    const bool succeeds = attempts < outcomes.size() && outcomes[attempts] == 's';
    ++attempts;
    return succeeds ? Proxy() : FailedProxy(error);
}

gulong g_signal_connect_data(gpointer, const gchar* signal, GCallback, gpointer, GClosureNotify, GConnectFlags flags)
{
    if (signals.empty()) ownerWasLogged = test::LogLines().back().find("Owner Name: :1.7") != std::string::npos;
    signals.push_back(signal + std::string(flags == 0 ? "" : "!"));
    return signals.size();
}

gchar* g_dbus_proxy_get_name_owner(GDBusProxy*)
{
    gchar* const owner = g_strdup(":1.7");
    test::unreleased = owner;
    return owner;
}

namespace
{
struct Attempts
{
    const char* name;
    const char* outcomes;
    std::size_t made;
    int failures;
    bool connected;
};

const Attempts kAttempts[] = {
    {"EndWithTheFirstSuccess", "s", 1, 0, true},
    {"EndAfterTheSeventhFailure", "fffffffs", 7, 7, false},
    {"GoOnAfterASuccessThatFollowsAFailure", "fs", 8, 7, false},
    {"CountFailuresOnly", "fssfsfsssff", 13, 7, false},
    {"GoOnAfterASuccessThatFollowsSixFailures", "ffffffss", 9, 7, false},
};

std::string NameOfAttempts(const testing::TestParamInfo<Attempts>& row)
{
    return row.param.name;
}

class ConnectionAttempts : public testing::TestWithParam<Attempts>
{
};

TEST_P(ConnectionAttempts, AreMadeAndLoggedOneByOne)
{
    outcomes = GetParam().outcomes;
    IQBXIpodPlayer* const player = QBX_GetIpodPlayer();
    test::ClearLog();

    EXPECT_EQ(player->InitInstance(), GetParam().connected);

    EXPECT_EQ(attempts, GetParam().made);
    EXPECT_FALSE(errorWasPassedTwice);
    EXPECT_EQ(test::errorsReleased, GetParam().failures);
    for (int failure = 0; failure < GetParam().failures; ++failure)
        EXPECT_EQ(test::LogLines().at(static_cast<std::size_t>(failure) + 2),
                  "100 InitDBusConnect: InitDBusConnect: Failed to create proxy. Reason: no bus.retry->" +
                      std::to_string(failure));
}

INSTANTIATE_TEST_SUITE_P(All, ConnectionAttempts, testing::ValuesIn(kAttempts), NameOfAttempts);

TEST(Connection, IsMadeToTheServiceOnTheSessionBus)
{
    QBX_GetIpodPlayer()->InitInstance();

    EXPECT_EQ(request, std::to_string(G_BUS_TYPE_SESSION) + " 0 com.zarn.linux.ipod /com/zarn/linux/ipod");
}

TEST(Connection, IsLostIfAnAttemptAfterASuccessFails)
{
    outcomes = "fs";
    EXPECT_FALSE(QBX_GetIpodPlayer()->InitInstance());
    const test::GLibMessages messages;

    QBX_GetIpodPlayer()->Seek(0);

    EXPECT_THAT(messages.Lines(), testing::ElementsAre(testing::HasSubstr("G_IS_DBUS_PROXY (proxy)")));
}

TEST(Connection, NamesTheSignalsAsSpelledAndInTheirOrder)
{
    outcomes = "s";

    EXPECT_TRUE(QBX_GetIpodPlayer()->InitInstance());

    EXPECT_THAT(signals,
                testing::ElementsAre(
                    "on_carlife_device_detect_status_change", "on_carplay_device_detect_status_change",
                    "on_ipod_app_bundle_name_change", "on_ipod_artwork_change", "on_ipod_device_status_change",
                    "on_ipod_location_status_change", "on-ipod-phone-call-change", "on-ipod-battery-change",
                    "on_ipod_playing_list_amount_change", "on_ipod_playing_track_change", "on_ipod_receive_eap_data",
                    "on_ipod_repeat_mode_change", "on_ipod_shuffle_mode_change", "on_ipod_source_valid_status_change",
                    "on_ipod_start_eap_session", "on_ipod_stop_eap_session", "on_play_progress_change",
                    "on_play_status_changed", "on-wireless-car-play-update", "on-oobpairing-info"));
}

TEST(Connection, LogsTheNameOfTheOwnerBeforeItSubscribesAndReleasesIt)
{
    outcomes = "s";

    EXPECT_TRUE(QBX_GetIpodPlayer()->InitInstance());

    EXPECT_TRUE(ownerWasLogged);
    EXPECT_EQ(test::unreleased, nullptr);
}
}  // namespace
