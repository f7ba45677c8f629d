// Events of the service: each is logged, checked, and delivered to the listeners under the registry's lock. The order
// of the steps is where the operations differ.
#include <QBXSource.h>

#include "QBXIpod_MediaPlayer_Client.h"
#include "internal/log.h"
#include "internal/module_state.h"
#include "internal/notify.h"
#include "internal/records.h"
#include "signal_callbacks.h"
#include "source_names.h"

using qbx::clientCreated;
using qbx::Notify;
using Listener = IQBXIpodPlayerListener;

namespace
{
constexpr int kReleaseReason = 1;

// Releases at most one source: the first active one.
void ReleaseActiveSource()
{
    for (const int source : {qbx::kSourceIpod0, qbx::kSourceIpod1})
    {
        if (!QBXSource::IsActived(source)) continue;
        QBXSource::Release(source, kReleaseReason);
        return;
    }
}

// The bus carries no null strings, but code that emits the signal on the proxy may pass one.
std::string ToText(const gchar* text)
{
    return text == nullptr ? std::string() : std::string(text);
}

// The pairing bytes arrive as an array of one-byte structures.
std::vector<unsigned char> PairingBytes(GVariant* bytes)
{
    std::vector<unsigned char> result;
    if (bytes == nullptr || !g_variant_is_of_type(bytes, G_VARIANT_TYPE("a(y)"))) return result;
    gsize count = 0;
    const auto* const first = static_cast<const unsigned char*>(g_variant_get_fixed_array(bytes, &count, 1));
    if (count > 0) result.assign(first, first + count);
    return result;
}
}  // namespace

void QBXIpod_MediaPlayer_Client::OnIpodDeviceStatusChange(QBXAppleDeviceDetectStatus status, int mediaRestart)
{
    LOG_INFO("OnIpodDeviceStatusChange() - %d", status);
    if (!clientCreated) return;
    Notify(*this, &Listener::OnIpodDeviceStatusChange, status, mediaRestart);
}

void QBXIpod_MediaPlayer_Client::OnPlayStatusChanged(iPodPlayerPlayStatus status)
{
    if (!clientCreated) return;
    LOG_INFO("OnPlayStatusChanged() - %d", status);
    Notify(*this, &Listener::OnPlayStatusChanged, status);
}

void QBXIpod_MediaPlayer_Client::OnPlayProgressChanged(int pos, int duration)
{
    if (!clientCreated) return;
    Notify(*this, &Listener::OnPlayProgressChange, pos, duration);
}

void QBXIpod_MediaPlayer_Client::OnIpodRepeatModeChange(iPodPlayerRepeatStatus mode)
{
    LOG_INFO("OnIpodRepeatModeChange() - %d", mode);
    if (!clientCreated) return;
    Notify(*this, &Listener::OnIpodRepeatModeChange, mode);
}

void QBXIpod_MediaPlayer_Client::OnIpodShuffleModeChange(iPodPlayerShuffleStatus mode)
{
    LOG_INFO("OnIpodRandomModeChange() - %d", mode);
    if (!clientCreated) return;
    Notify(*this, &Listener::OnIpodShuffleModeChange, mode);
}

void QBXIpod_MediaPlayer_Client::OnIpodPlayingTrackChange(int index, QBXiPodTrackInfo info)
{
    LOG_INFO("OnIpodPlayingTrackChange() - %d, %s", index, info.text1.c_str());
    if (!clientCreated) return;
    Notify(*this, &Listener::OnIpodPlayingTrackChange, index, info);
}

void QBXIpod_MediaPlayer_Client::OnIpodPlayingListAmountChange(int amount)
{
    if (!clientCreated) return;
    Notify(*this, &Listener::OnIpodPlayingListAmountChange, amount);
}

void QBXIpod_MediaPlayer_Client::OnIpodSourceValidStatusChange(int valid)
{
    LOG_INFO("OnIpodSourceValidStatusChange() - %d", valid);
    if (!clientCreated) return;
    const qbx::ListenerLock lock(*this);
    if (valid == 0) ReleaseActiveSource();
    qbx::Dispatch(*this, &Listener::OnIpodSourceValidStatusChange, valid);
}

void QBXIpod_MediaPlayer_Client::OnCarplayDeviceDetectStatusChange(QBXAppleDeviceDetectStatus status,
                                                                   std::string serialNumber)
{
    LOG_INFO("OnCarplayDeviceDetectStatusChange() - %d -%s", status, serialNumber.c_str());
    if (!clientCreated) return;
    Notify(*this, &Listener::OnCarplayDeviceDetectStatusChange, status, serialNumber);
}

void QBXIpod_MediaPlayer_Client::OnIpodPhoneCallChange(const iPodPhoneCall_t& call)
{
    LOG_INFO("OnIpodPhoneCallChange()");
    if (!clientCreated) return;
    Notify(*this, &Listener::OnIpodPhoneCallChange, call);
}

void QBXIpod_MediaPlayer_Client::OnIpodBatteryChange(const iPodBattery_t& battery)
{
    if (!clientCreated) return;
    Notify(*this, &Listener::OnIpodBatteryChange, battery);
}

void QBXIpod_MediaPlayer_Client::OnIpodLocationStatusChange(LocationStatus status)
{
    LOG_INFO("OnIpodLocationStatusChange()");
    if (!clientCreated) return;
    Notify(*this, &Listener::OnIpodLocationStatusChange, status);
}

void QBXIpod_MediaPlayer_Client::OnIpodAPPBundleNameChange(std::string bundleName)
{
    LOG_INFO("OnIpodAPPBundleNameChange()");
    if (!clientCreated) return;
    Notify(*this, &Listener::OnIpodAPPBundleNameChange, bundleName);
}

void QBXIpod_MediaPlayer_Client::OnCarlifeDeviceDetectStatusChange(QBXAppleDeviceDetectStatus status)
{
    LOG_INFO("OnCarlifeDeviceDetectStatusChange() - %d", status);
    if (!clientCreated) return;
    Notify(*this, &Listener::OnCarlifeDeviceDetectStatusChange, status);
}

void QBXIpod_MediaPlayer_Client::OnWirelessCarPlayUpdate(bool available, const std::string& deviceAddress)
{
    LOG_INFO("OnWirelessCarPlayUpdate() - %d, %s", available, deviceAddress.c_str());
    if (!clientCreated) return;
    Notify(*this, &Listener::OnWirelessCarPlayUpdate, available, deviceAddress);
}

void QBXIpod_MediaPlayer_Client::OnOOBPairingInfo(std::string btAddress, const std::vector<unsigned char>& bytes)
{
    LOG_INFO("OnOOBPairingInfo() - %s, %d", btAddress.c_str(), static_cast<int>(bytes.size()));
    if (!clientCreated) return;
    Notify(*this, &Listener::OnOOBPairingInfo, btAddress, bytes);
}

namespace qbx
{
gboolean CallBack_OnIpodPlayingTrackChange(ComZarnLinuxIpod* proxy, gint index, GVariant* trackInfo, gpointer client)
{
    return Deliver(proxy, client, &QBXIpod_MediaPlayer_Client::OnIpodPlayingTrackChange, index,
                   ToTrackInfo(DecodeRecord<TrackRecord>(trackInfo)));
}

gboolean CallBack_OnCarplayDeviceDetectStatusChange(ComZarnLinuxIpod* proxy, guchar status, const gchar* serialNumber,
                                                    gpointer client)
{
    return Deliver(proxy, client, &QBXIpod_MediaPlayer_Client::OnCarplayDeviceDetectStatusChange, status,
                   ToText(serialNumber));
}

gboolean CallBack_OnIpodAPPBundleNameChange(ComZarnLinuxIpod* proxy, const gchar* bundleName, gpointer client)
{
    return Deliver(proxy, client, &QBXIpod_MediaPlayer_Client::OnIpodAPPBundleNameChange, ToText(bundleName));
}

gboolean CallBack_OnWirelessCarPlayUpdate(ComZarnLinuxIpod* proxy, gboolean available, const gchar* deviceAddress,
                                          gpointer client)
{
    const std::string address = ToText(deviceAddress);
    return Deliver(proxy, client, &QBXIpod_MediaPlayer_Client::OnWirelessCarPlayUpdate, available, address);
}

gboolean CallBack_OnOOBPairingInfo(ComZarnLinuxIpod* proxy, const gchar* btAddress, GVariant* bytes, gpointer client)
{
    const std::vector<unsigned char> info = PairingBytes(bytes);
    return Deliver(proxy, client, &QBXIpod_MediaPlayer_Client::OnOOBPairingInfo, ToText(btAddress), info);
}
}  // namespace qbx
