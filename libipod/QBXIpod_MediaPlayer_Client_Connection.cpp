// The proxy of the service, and the subscription to its twenty signals.
#include "QBXIpod_MediaPlayer_Client.h"
#include "internal/log.h"
#include "internal/module_state.h"
#include "signal_callbacks.h"

using qbx::serviceProxy;

namespace
{
constexpr char kBusName[] = "com.zarn.linux.ipod";
constexpr char kObjectPath[] = "/com/zarn/linux/ipod";
constexpr int kLastRetry = 5;

// A number instead of a name, because every event looks it up.
GQuark SubscriberKey()
{
    static const GQuark key = g_quark_from_static_string("qbx-subscriber");
    return key;
}

// Stores the new proxy, even if it is null.
bool CreateProxy(GError** error)
{
    serviceProxy = com_zarn_linux_ipod_proxy_new_for_bus_sync(G_BUS_TYPE_SESSION, G_DBUS_PROXY_FLAGS_NONE, kBusName,
                                                              kObjectPath, nullptr, error);
    return serviceProxy != nullptr;
}

struct SignalRow
{
    const char* name;
    GCallback callback;
};

#define CALLBACK_TYPE(signal) qbx::CallbackFor<decltype(ComZarnLinuxIpodIface::signal)>
#define FORWARD(name, signal, event)                                                          \
    {                                                                                         \
        name, G_CALLBACK(&CALLBACK_TYPE(signal)::Forward<&QBXIpod_MediaPlayer_Client::event>) \
    }
#define CONVERT(name, signal, event)                                                       \
    {                                                                                      \
        name, G_CALLBACK(static_cast<CALLBACK_TYPE(signal)::Type>(&qbx::CallBack_##event)) \
    }

// All signals, in the order of connection. The names mix underscores and hyphens; GLib accepts both.
const SignalRow kSignals[] = {
    FORWARD("on_carlife_device_detect_status_change", on_carlife_device_detect_status_change,
            OnCarlifeDeviceDetectStatusChange),
    CONVERT("on_carplay_device_detect_status_change", on_carplay_device_detect_status_change,
            OnCarplayDeviceDetectStatusChange),
    CONVERT("on_ipod_app_bundle_name_change", on_ipod_app_bundle_name_change, OnIpodAPPBundleNameChange),
    CONVERT("on_ipod_artwork_change", on_ipod_artwork_change, OnIpodArtworkChange),
    FORWARD("on_ipod_device_status_change", on_ipod_device_status_change, OnIpodDeviceStatusChange),
    FORWARD("on_ipod_location_status_change", on_ipod_location_status_change, OnIpodLocationStatusChange),
    CONVERT("on-ipod-phone-call-change", on_ipod_phone_call_change, OnIpodPhoneCallChange),
    CONVERT("on-ipod-battery-change", on_ipod_battery_change, OnIpodBatteryChange),
    FORWARD("on_ipod_playing_list_amount_change", on_ipod_playing_list_amount_change, OnIpodPlayingListAmountChange),
    CONVERT("on_ipod_playing_track_change", on_ipod_playing_track_change, OnIpodPlayingTrackChange),
    CONVERT("on_ipod_receive_eap_data", on_ipod_receive_eap_data, OnIpodReceiveEapData),
    FORWARD("on_ipod_repeat_mode_change", on_ipod_repeat_mode_change, OnIpodRepeatModeChange),
    FORWARD("on_ipod_shuffle_mode_change", on_ipod_shuffle_mode_change, OnIpodShuffleModeChange),
    FORWARD("on_ipod_source_valid_status_change", on_ipod_source_valid_status_change, OnIpodSourceValidStatusChange),
    FORWARD("on_ipod_start_eap_session", on_ipod_start_eap_session, OnIpodStartEapSession),
    FORWARD("on_ipod_stop_eap_session", on_ipod_stop_eap_session, OnIpodStopEapSession),
    FORWARD("on_play_progress_change", on_play_progress_change, OnPlayProgressChanged),
    FORWARD("on_play_status_changed", on_play_status_changed, OnPlayStatusChanged),
    CONVERT("on-wireless-car-play-update", on_wireless_car_play_update, OnWirelessCarPlayUpdate),
    CONVERT("on-oobpairing-info", on_oobpairing_info, OnOOBPairingInfo),
};
}  // namespace

namespace qbx
{
void NoteSubscriber(ComZarnLinuxIpod* proxy)
{
    g_object_set_qdata(G_OBJECT(proxy), SubscriberKey(), GUINT_TO_POINTER(clientsBuilt));
}

bool SubscriberIsGone(ComZarnLinuxIpod* proxy)
{
    if (proxy == nullptr) return false;
    const unsigned subscriber = GPOINTER_TO_UINT(g_object_get_qdata(G_OBJECT(proxy), SubscriberKey()));
    return subscriber != 0 && subscriber != LivingClient();
}
}  // namespace qbx

// After a failed attempt a successful one does not end the loop: only further failures do (docs/oddities.md).
bool QBXIpod_MediaPlayer_Client::InitDBusConnect()
{
    GError* error = nullptr;
    bool noFailureYet = true;
    for (int attempt = 0;;)
    {
        if (CreateProxy(&error))
        {
            if (noFailureYet) break;
            continue;
        }
        LOG_ERROR("InitDBusConnect: Failed to create proxy. Reason: %s.retry->%d", error->message, attempt);
        g_error_free(error);
        error = nullptr;
        if (attempt > kLastRetry) return false;
        ++attempt;
        noFailureYet = false;
    }
    gchar* const owner = g_dbus_proxy_get_name_owner(G_DBUS_PROXY(serviceProxy));
    if (owner == nullptr)
    {
        LOG_WARN("persist_proxy_get_service_dbus_ready_status Owner Name is nullptr");
        return false;
    }
    LOG_INFO("persist_proxy_get_service_dbus_ready_status Owner Name: %s", owner);
    RegisterDBusSignal();
    g_free(owner);
    return true;
}

void QBXIpod_MediaPlayer_Client::RegisterDBusSignal()
{
    qbx::NoteSubscriber(serviceProxy);
    for (const SignalRow& row : kSignals)
        g_signal_connect_data(serviceProxy, row.name, row.callback, this, nullptr, static_cast<GConnectFlags>(0));
}
