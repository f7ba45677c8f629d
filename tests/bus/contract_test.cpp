// The bus contract itself: the introspection data of the generated binding, and a bare skeleton without handlers.
#include <gmock/gmock.h>
#include <ipod_dbus.h>

#include "bus/bus_test.h"
#include "support/signal_barrier.h"

namespace test
{
namespace
{
struct Member
{
    const char* declaration;
    const char* gobjectSignal;
};

const std::vector<Member> kMethods = {
    {"GetCurrentMediaInfo() -> (result:v)", "handle-get-current-media-info"},
    {"Play(dev_id:y) -> (result:b)", "handle-play"},
    {"Pause() -> (result:b)", "handle-pause"},
    {"Stop() -> (result:b)", "handle-stop"},
    {"GetPlayPosition() -> (pos:i, duration:i)", "handle-get-play-position"},
    {"GetFfwFbwStatus() -> (result:i)", "handle-get-ffw-fbw-status"},
    {"GetPlayStatus() -> (result:i)", "handle-get-play-status"},
    {"SetShuffleMode(ShuffleStatus:y) -> ()", "handle-set-shuffle-mode"},
    {"SetRepeatMode(RepeatStatus:y) -> ()", "handle-set-repeat-mode"},
    {"GetShuffleMode() -> (result:i)", "handle-get-shuffle-mode"},
    {"GetRepeatMode() -> (result:i)", "handle-get-repeat-mode"},
    {"SetButtonStatus(ctrl:v) -> (result:b)", "handle-set-button-status"},
    {"SetTransmissionState(TransmissionState:y) -> ()", "handle-set-transmission-state"},
    {"GetPlayingTrackIdx() -> (result:i)", "handle-get-playing-track-idx"},
    {"GetPlayingListItemsAmount() -> (result:i)", "handle-get-playing-list-items-amount"},
    {"GetCurDbListItemsAmount(formtop:b) -> (result:i)", "handle-get-cur-db-list-items-amount"},
    {"GetPlayingListItems(beginIdx:i, endIdx:i) -> (result:b)", "handle-get-playing-list-items"},
    {"GetCurDbListItems(beginIdx:i, endIdx:i) -> (bFolder:b, bDBRoot:b, result:b)", "handle-get-cur-db-list-items"},
    {"GetCurDbListItemsPinyin(beginIdx:i, endIdx:i) -> (bFolder:b, bDBRoot:b, result:b)",
     "handle-get-cur-db-list-items-pinyin"},
    {"GetUpdateListItems(beginIdx:i, endIdx:i) -> (result:b)", "handle-get-update-list-items"},
    {"GetUpdateListItemsPinyin(beginIdx:i, endIdx:i) -> (result:b)", "handle-get-update-list-items-pinyin"},
    {"PlayDbList(index:i) -> ()", "handle-play-db-list"},
    {"PlayPlayingList(index:i) -> ()", "handle-play-playing-list"},
    {"EnterDbRoot() -> (result:b)", "handle-enter-db-root"},
    {"IsIPodInDbRoot() -> (result:b)", "handle-is-ipod-in-db-root"},
    {"EnterDbParentList() -> (result:b)", "handle-enter-db-parent-list"},
    {"EnterDbChildList(index:i) -> (result:b)", "handle-enter-db-child-list"},
    {"Seek(sec:i) -> ()", "handle-seek"},
    {"EnterDeviceChildList(index:i) -> (result:b)", "handle-enter-device-child-list"},
    {"GetDeviceList() -> (result:b)", "handle-get-device-list"},
    {"GetDeviceAmount() -> (result:i)", "handle-get-device-amount"},
    {"Next() -> (result:b)", "handle-next"},
    {"Previous() -> (result:b)", "handle-previous"},
    {"GetPlayingTrackAlbumArtwork() -> (result:v)", "handle-get-playing-track-album-artwork"},
    {"FastForward() -> (result:b)", "handle-fast-forward"},
    {"FastBackward() -> (result:b)", "handle-fast-backward"},
    {"StopFfwFbw() -> (result:b)", "handle-stop-ffw-fbw"},
    {"SetHubTestMode(testmode:y) -> ()", "handle-set-hub-test-mode"},
    {"GetCarplayDeviceDetectStatus() -> (status:y, serialNumber:s)", "handle-get-carplay-device-detect-status"},
    {"GetIpodName() -> (IpodName:s)", "handle-get-ipod-name"},
    {"GetIpodAppBundleName() -> (IpodAPPBundleName:s)", "handle-get-ipod-app-bundle-name"},
    {"EapLaunchApp(AppBundleID:s) -> (result:b)", "handle-eap-launch-app"},
    {"EapWrite(SessionID:q) -> (result:b)", "handle-eap-write"},
    {"GetCarlifeDeviceDetectStatus() -> (result:i)", "handle-get-carlife-device-detect-status"},
    {"EapInit(info:v) -> ()", "handle-eap-init"},
    {"CarplayConnectStatusNotify(isconnected:b, iswifi:b) -> ()", "handle-carplay-connect-status-notify"},
};

const std::vector<Member> kSignals = {
    {"OnIpodDeviceStatusChange(deviceStatus:y, bmedia_restart:b)", "on-ipod-device-status-change"},
    {"OnPlayStatusChanged(status:y)", "on-play-status-changed"},
    {"OnPlayProgressChange(pos:i, duration:i)", "on-play-progress-change"},
    {"OnIpodRepeatModeChange(RepeatMode:y)", "on-ipod-repeat-mode-change"},
    {"OnIpodShuffleModeChange(ShuffleMode:y)", "on-ipod-shuffle-mode-change"},
    {"OnIpodPlayingTrackChange(index:i, TrackInfo:v)", "on-ipod-playing-track-change"},
    {"OnIpodPlayingListAmountChange(amount:i)", "on-ipod-playing-list-amount-change"},
    {"OnIpodSourceValidStatusChange(bValid:b)", "on-ipod-source-valid-status-change"},
    {"OnIpodArtworkChange(artwork:v)", "on-ipod-artwork-change"},
    {"OnCarplayDeviceDetectStatusChange(CarplayDeviceDetectStatus:y, serialNumber:s)",
     "on-carplay-device-detect-status-change"},
    {"OnIpodPhoneCallChange(phonecall:v)", "on-ipod-phone-call-change"},
    {"OnIpodBatteryChange(battery:v)", "on-ipod-battery-change"},
    {"OnIpodLocationStatusChange(Loc_status:y)", "on-ipod-location-status-change"},
    {"OnIpodAppBundleNameChange(IpodAPPBundleName:s)", "on-ipod-app-bundle-name-change"},
    {"OnIpodStartEapSession(ProtocolIndex:y, SessionID:q)", "on-ipod-start-eap-session"},
    {"OnIpodStopEapSession(SessionID:q)", "on-ipod-stop-eap-session"},
    {"OnIpodReceiveEapData(SessionID:y)", "on-ipod-receive-eap-data"},
    {"OnCarlifeDeviceDetectStatusChange(CarlifeDeviceDetectStatus:y)", "on-carlife-device-detect-status-change"},
    {"OnWirelessCarPlayUpdate(available:b, deviceaddr:s)", "on-wireless-car-play-update"},
    {"OnOOBPairingInfo(btaddr:s, mac:a(y))", "on-oobpairing-info"},
};

std::string Declaration(GDBusArgInfo* const* arguments)
{
    std::vector<std::string> parts;
    for (; arguments != nullptr && *arguments != nullptr; ++arguments)
        parts.push_back(std::string((*arguments)->name) + ":" + (*arguments)->signature);
    return "(" + Join(parts, ", ") + ")";
}

std::vector<std::string> Declarations(const std::vector<Member>& members)
{
    std::vector<std::string> declarations;
    for (const Member& member : members) declarations.emplace_back(member.declaration);
    return declarations;
}

// A sample value of each type in the contract.
std::string AnyValue(const std::string& signature)
{
    if (signature == "s") return "'text'";
    if (signature == "b") return "true";
    if (signature == "v") return "<1>";
    return "1";
}

// A one-element tuple needs a trailing comma.
GVariant* AnyArguments(const GDBusMethodInfo* method)
{
    std::string type = "(";
    std::vector<std::string> values;
    for (GDBusArgInfo* const* argument = method->in_args; argument != nullptr && *argument != nullptr; ++argument)
    {
        type += (*argument)->signature;
        values.push_back(AnyValue((*argument)->signature));
    }
    const std::string text = "(" + Join(values, ", ") + (values.size() == 1 ? ",)" : ")");
    return g_variant_parse(G_VARIANT_TYPE((type + ")").c_str()), text.c_str(), nullptr, nullptr, nullptr);
}

// The outcome of a call; empty while it is pending.
void WriteOutcome(GObject* connection, GAsyncResult* result, gpointer outcome)
{
    GError* error = nullptr;
    GVariant* const reply = g_dbus_connection_call_finish(G_DBUS_CONNECTION(connection), result, &error);
    *static_cast<std::string*>(outcome) = error == nullptr ? "answered" : error->message;
    if (reply != nullptr) g_variant_unref(reply);
    g_clear_error(&error);
}

// Caller and skeleton share a thread, so the loop must run during the call.
std::string OutcomeOf(const GDBusMethodInfo* method, GDBusConnection* connection)
{
    std::string outcome;
    GVariant* const arguments = AnyArguments(method);
    g_dbus_connection_call(connection, g_dbus_connection_get_unique_name(connection), "/bare", "com.zarn.linux.ipod",
                           method->name, arguments, nullptr, G_DBUS_CALL_FLAGS_NONE, -1, nullptr, WriteOutcome,
                           &outcome);
    g_variant_unref(arguments);
    RunLoopUntil([&outcome] { return !outcome.empty(); });
    return outcome;
}

TEST(ContractTest, HasItsMethodsInOrder)
{
    const GDBusInterfaceInfo* const info = com_zarn_linux_ipod_interface_info();

    std::vector<std::string> methods;
    for (GDBusMethodInfo* const* method = info->methods; *method != nullptr; ++method)
        methods.push_back((*method)->name + Declaration((*method)->in_args) + " -> " +
                          Declaration((*method)->out_args));

    EXPECT_STREQ(info->name, "com.zarn.linux.ipod");
    EXPECT_EQ(methods.size(), 46U);
    EXPECT_THAT(methods, ElementsAreArray(Declarations(kMethods)));
}

TEST(ContractTest, HasItsSignalsInOrder)
{
    const GDBusInterfaceInfo* const info = com_zarn_linux_ipod_interface_info();

    std::vector<std::string> signals;
    for (GDBusSignalInfo* const* signal = info->signals; *signal != nullptr; ++signal)
        signals.push_back((*signal)->name + Declaration((*signal)->args));

    EXPECT_EQ(signals.size(), 20U);
    EXPECT_THAT(signals, ElementsAreArray(Declarations(kSignals)));
}

TEST(ContractTest, HasNoPropertiesAndNoAnnotations)
{
    const GDBusInterfaceInfo* const info = com_zarn_linux_ipod_interface_info();

    EXPECT_TRUE(info->properties == nullptr || *info->properties == nullptr);
    EXPECT_TRUE(info->annotations == nullptr || *info->annotations == nullptr);
}

TEST(ContractTest, NamesItsTypesAfterTheInterface)
{
    EXPECT_STREQ(g_type_name(com_zarn_linux_ipod_get_type()), "ComZarnLinuxIpod");
    EXPECT_STREQ(g_type_name(com_zarn_linux_ipod_proxy_get_type()), "ComZarnLinuxIpodProxy");
    EXPECT_STREQ(g_type_name(com_zarn_linux_ipod_skeleton_get_type()), "ComZarnLinuxIpodSkeleton");
    EXPECT_TRUE(g_type_is_a(com_zarn_linux_ipod_proxy_get_type(), G_TYPE_DBUS_PROXY));
    EXPECT_TRUE(g_type_is_a(com_zarn_linux_ipod_skeleton_get_type(), G_TYPE_DBUS_INTERFACE_SKELETON));
}

TEST(ContractTest, HasAGObjectSignalForEveryMember)
{
    ComZarnLinuxIpod* const skeleton = com_zarn_linux_ipod_skeleton_new();

    for (const auto& members : {kMethods, kSignals})
        for (const Member& member : members)
            EXPECT_NE(g_signal_lookup(member.gobjectSignal, com_zarn_linux_ipod_get_type()), 0U)
                << member.gobjectSignal;
    guint count = 0;
    g_free(g_signal_list_ids(com_zarn_linux_ipod_get_type(), &count));
    EXPECT_EQ(count, 66U);
    g_object_unref(skeleton);
}

class SkeletonTest : public testing::Test
{
protected:
    void SetUp() override
    {
        connection = g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, nullptr);
        ASSERT_TRUE(
            g_dbus_interface_skeleton_export(G_DBUS_INTERFACE_SKELETON(skeleton), connection, "/bare", nullptr));
    }

    void TearDown() override
    {
        g_object_unref(skeleton);
        g_object_unref(connection);
    }

    PrivateBus bus;
    ComZarnLinuxIpod* skeleton = com_zarn_linux_ipod_skeleton_new();
    GDBusConnection* connection = nullptr;
};

TEST_F(SkeletonTest, RepliesThatNoMethodIsImplemented)
{
    const GDBusInterfaceInfo* const info = com_zarn_linux_ipod_interface_info();
    for (GDBusMethodInfo* const* method = info->methods; *method != nullptr; ++method)
    {
        const std::string name = (*method)->name;

        EXPECT_EQ(OutcomeOf(*method, connection), "GDBus.Error:org.freedesktop.DBus.Error.UnknownMethod: Method " +
                                                      name + " is not implemented on interface com.zarn.linux.ipod");
    }
}

TEST_F(SkeletonTest, PassesPairingInformationAsAnArrayOfStructures)
{
    std::string received;
    const auto write = +[](ComZarnLinuxIpod*, const gchar* address, GVariant* bytes, gpointer to)
    { *static_cast<std::string*>(to) = std::string(address) + " " + g_variant_get_type_string(bytes); };
    ComZarnLinuxIpod* const proxy =
        com_zarn_linux_ipod_proxy_new_sync(connection, G_DBUS_PROXY_FLAGS_DO_NOT_LOAD_PROPERTIES,
                                           g_dbus_connection_get_unique_name(connection), "/bare", nullptr, nullptr);
    g_signal_connect(proxy, "on-oobpairing-info", G_CALLBACK(write), &received);

    com_zarn_linux_ipod_emit_on_oobpairing_info(skeleton, "aa:bb", g_variant_new_parsed("[(byte 1,), (byte 2,)]"));

    EXPECT_TRUE(RunLoopUntil([&received] { return !received.empty(); }));
    EXPECT_EQ(received, "aa:bb a(y)");
    g_object_unref(proxy);
}
}  // namespace
}  // namespace test
