// Calls the signal callbacks directly: with arguments that no bus would carry, and to check their results, which
// applications never see. This program links the library's objects.
#include "QBXIpod_MediaPlayer_Client.h"
#include "bus/bus_test.h"
#include "internal/module_state.h"
#include "signal_callbacks.h"

namespace test
{
namespace
{
class CallbackTest : public ServiceTest
{
protected:
    void SetUp() override
    {
        client = &Connected();
        client->AddListener(&app);
    }

    // Parses a variant, owned by the test.
    GVariant* Variant(const char* text)
    {
        variant = g_variant_ref_sink(g_variant_new_parsed(text));
        return variant;
    }

    void TearDown() override
    {
        if (variant != nullptr) g_variant_unref(variant);
        ServiceTest::TearDown();
    }

    IQBXIpodPlayer* client = nullptr;
    GVariant* variant = nullptr;
};

class HookedClient : public QBXIpod_MediaPlayer_Client
{
public:
    void ExitListener() override { ++exits; }

    int exits = 0;
};

TEST(ListenerHooks, OfTheClientAreThoseOfEveryService)
{
    HookedClient client;
    IQBXIpodPlayerListener listener;
    client.AddListener(&listener);

    client.RemoveListener(&listener);

    EXPECT_EQ(client.exits, 1);
}

TEST_F(CallbackTest, AFlagOfTwoIsTrue)
{
    EXPECT_EQ(qbx::CallBack_OnWirelessCarPlayUpdate(qbx::serviceProxy, 2, "address", client), TRUE);

    EXPECT_THAT(journal, ElementsAre("app.OnWirelessCarPlayUpdate(true, \"address\")"));
    EXPECT_THAT(LogLines(), ElementsAre("40 OnWirelessCarPlayUpdate: OnWirelessCarPlayUpdate() - 1, address"));
}

TEST_F(CallbackTest, ADispatchedEventReturnsTrueWithoutListeners)
{
    client->RemoveListener(&app);

    EXPECT_EQ(qbx::CallBack_OnIpodAPPBundleNameChange(qbx::serviceProxy, "a", client), TRUE);
    EXPECT_EQ(qbx::CallBack_OnIpodReceiveEapData(qbx::serviceProxy, 1, client), TRUE);
    EXPECT_EQ(qbx::CallBack_OnIpodBatteryChange(qbx::serviceProxy, Variant("<[byte 8, 1]>"), client), TRUE);
}

TEST_F(CallbackTest, ADroppedEventReturnsFalse)
{
    GVariant* const empty = Variant("<@ay []>");

    EXPECT_EQ(qbx::CallBack_OnIpodPhoneCallChange(qbx::serviceProxy, empty, client), FALSE);
    EXPECT_EQ(qbx::CallBack_OnIpodBatteryChange(qbx::serviceProxy, empty, client), FALSE);
    EXPECT_THAT(journal, IsEmpty());
}

TEST_F(CallbackTest, AProxyWithoutASubscribedClientDelivers)
{
    auto* const stranger = COM_ZARN_LINUX_IPOD(g_object_new(TYPE_COM_ZARN_LINUX_IPOD_PROXY, nullptr));

    EXPECT_EQ(qbx::CallBack_OnIpodAPPBundleNameChange(nullptr, "a", client), TRUE);
    EXPECT_EQ(qbx::CallBack_OnIpodAPPBundleNameChange(stranger, "b", client), TRUE);

    EXPECT_THAT(journal, ElementsAre("app.OnIpodAPPBundleNameChange(\"a\")", "app.OnIpodAPPBundleNameChange(\"b\")"));
    g_object_unref(stranger);
}

TEST_F(CallbackTest, TheProxyOfADestroyedClientDeliversNothing)
{
    GVariant* const message = Variant("<[byte 8, 1]>");
    QBX_DestroyIpodPlayer();
    ClearLog();

    EXPECT_EQ(qbx::CallBack_OnIpodAPPBundleNameChange(qbx::serviceProxy, "a", client), FALSE);
    EXPECT_EQ(qbx::CallBack_OnIpodPhoneCallChange(qbx::serviceProxy, message, client), FALSE);
    EXPECT_EQ(qbx::CallBack_OnIpodBatteryChange(qbx::serviceProxy, message, client), FALSE);
    QBX_GetIpodPlayer()->AddListener(&app);
    EXPECT_EQ(qbx::CallBack_OnIpodAPPBundleNameChange(qbx::serviceProxy, "b", QBX_GetIpodPlayer()), FALSE);

    EXPECT_THAT(journal, IsEmpty());
    EXPECT_THAT(LogLines(), testing::Not(testing::Contains(testing::HasSubstr("OnIpodAPPBundleNameChange"))));
}

TEST_F(CallbackTest, PairingInformationOfAnotherTypeArrivesEmpty)
{
    EXPECT_EQ(qbx::CallBack_OnOOBPairingInfo(qbx::serviceProxy, "a", Variant("[byte 1, 2]"), client), TRUE);

    EXPECT_THAT(journal, ElementsAre("app.OnOOBPairingInfo(\"a\", [])"));
}

TEST_F(CallbackTest, ANullTextArrivesEmpty)
{
    qbx::CallBack_OnCarplayDeviceDetectStatusChange(qbx::serviceProxy, 1, nullptr, client);
    qbx::CallBack_OnIpodAPPBundleNameChange(qbx::serviceProxy, nullptr, client);
    qbx::CallBack_OnWirelessCarPlayUpdate(qbx::serviceProxy, TRUE, nullptr, client);
    qbx::CallBack_OnOOBPairingInfo(qbx::serviceProxy, nullptr, Variant("@a(y) []"), client);

    EXPECT_THAT(journal,
                ElementsAre("app.OnCarplayDeviceDetectStatusChange(1, \"\")", "app.OnIpodAPPBundleNameChange(\"\")",
                            "app.OnWirelessCarPlayUpdate(true, \"\")", "app.OnOOBPairingInfo(\"\", [])"));
}

TEST_F(CallbackTest, ANullVariantDoesNotCrash)
{
    EXPECT_EQ(qbx::CallBack_OnIpodPhoneCallChange(qbx::serviceProxy, nullptr, client), FALSE);
    EXPECT_EQ(qbx::CallBack_OnIpodBatteryChange(qbx::serviceProxy, nullptr, client), FALSE);
    qbx::CallBack_OnIpodPlayingTrackChange(qbx::serviceProxy, 1, nullptr, client);
    qbx::CallBack_OnIpodArtworkChange(qbx::serviceProxy, nullptr, client);
    qbx::CallBack_OnOOBPairingInfo(qbx::serviceProxy, "a", nullptr, client);

    EXPECT_THAT(journal, ElementsAre("app.OnIpodPlayingTrackChange(1, \"\", \"\", \"\", \"\", 0, 0, 0, 0)",
                                     "app.OnIpodArtworkChange(0, 0, 0, 0, [])", "app.OnOOBPairingInfo(\"a\", [])"));
}
}  // namespace
}  // namespace test
