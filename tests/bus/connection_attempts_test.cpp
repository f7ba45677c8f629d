// The attempts of InitInstance() to create the proxy. This program takes the place of the generated function, so that
// attempts fail and succeed as a test says.
#include <IQBXIpodPlayer.h>
#include <gmock/gmock.h>
#include <ipod_dbus.h>

#include <string>
#include <vector>

#include "bus/replaced_release.h"
#include "support/log_capture.h"

namespace
{
// One letter an attempt: s succeeds, f fails. Those beyond the last one fail.
std::string outcomes;
std::size_t attempts = 0;
bool errorWasPassedTwice = false;

ComZarnLinuxIpod* FailedProxy(GError** error)
{
    errorWasPassedTwice = errorWasPassedTwice || *error != nullptr;
    *error = g_error_new_literal(G_IO_ERROR, G_IO_ERROR_FAILED, "no bus");
    return nullptr;
}

ComZarnLinuxIpod* Proxy()
{
    static std::vector<ComZarnLinuxIpod*> proxies;
    proxies.push_back(COM_ZARN_LINUX_IPOD(g_object_new(TYPE_COM_ZARN_LINUX_IPOD_PROXY, nullptr)));
    return proxies.back();
}
}  // namespace

ComZarnLinuxIpod* com_zarn_linux_ipod_proxy_new_for_bus_sync(GBusType, GDBusProxyFlags, const gchar*, const gchar*,
                                                             GCancellable*, GError** error)
{
    const bool succeeds = attempts < outcomes.size() && outcomes[attempts] == 's';
    ++attempts;
    return succeeds ? Proxy() : FailedProxy(error);
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

TEST(Connection, ReleasesTheNameOfTheOwner)
{
    outcomes = "s";

    EXPECT_TRUE(QBX_GetIpodPlayer()->InitInstance());

    EXPECT_EQ(test::unreleased, nullptr);
}
}  // namespace
