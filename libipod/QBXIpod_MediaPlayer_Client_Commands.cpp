// The thin commands: each checks whether a client exists, makes one call, and returns the reply's value. "Unset{}"
// marks a reply holder without an initial value: after a failure the returned value is meaningless.
#include <gvariant_data.h>

#include <cstring>

#include "QBXIpod_MediaPlayer_Client.h"
#include "internal/call.h"

using qbx::Ask;
using qbx::Call;
using qbx::clientCreated;
using qbx::Unset;

namespace
{
// Copies the caller's text into the reply, without a terminator: applications receive these texts by event, and rely on
// their own strings staying unchanged. The reply is never released.
void CopyOut(const std::string& text, gchar* reply)
{
    if (reply != nullptr) text.copy(reply, std::strlen(reply));
}

// Finished on the proxy of the call: InitInstance() may have replaced the current one since.
void CarPlayConnectStatusNotifyCallback(GObject* proxy, GAsyncResult* result, gpointer)
{
    GError* error = nullptr;
    com_zarn_linux_ipod_call_carplay_connect_status_notify_finish(COM_ZARN_LINUX_IPOD(proxy), result, &error);
    if (error != nullptr)
        LOG_ERROR("CarPlayConnectStatusNotifyCallback: Failed to call dbus method. Reason: %s.", error->message);
}
}  // namespace

int QBXIpod_MediaPlayer_Client::GetPlayingTrackIdx()
{
    if (!clientCreated) return -1;
    return Ask<gint>(SYNC(com_zarn_linux_ipod_call_get_playing_track_idx_sync), Unset{});
}

bool QBXIpod_MediaPlayer_Client::Pause()
{
    if (!clientCreated) return false;
    LOG_INFO("%s()", __func__);
    return Ask<gboolean>(SYNC(com_zarn_linux_ipod_call_pause_sync), Unset{});
}

bool QBXIpod_MediaPlayer_Client::Stop()
{
    if (!clientCreated) return false;
    LOG_INFO("%s()", __func__);
    return Ask<gboolean>(SYNC(com_zarn_linux_ipod_call_stop_sync), Unset{});
}

void QBXIpod_MediaPlayer_Client::GetPlayPosition(int& pos, int& duration)
{
    if (!clientCreated) return;
    Call(SYNC(com_zarn_linux_ipod_call_get_play_position_sync), &pos, &duration);
}

int QBXIpod_MediaPlayer_Client::GetFfwFbwStatus()
{
    if (!clientCreated) return 2;
    return Ask<gint>(SYNC(com_zarn_linux_ipod_call_get_ffw_fbw_status_sync), Unset{});
}

int QBXIpod_MediaPlayer_Client::GetPlayStatus()
{
    if (!clientCreated) return 255;
    return Ask<gint>(SYNC(com_zarn_linux_ipod_call_get_play_status_sync), Unset{});
}

int QBXIpod_MediaPlayer_Client::GetPlayingListItemsAmount()
{
    if (!clientCreated) return 0;
    return Ask<gint>(SYNC(com_zarn_linux_ipod_call_get_playing_list_items_amount_sync), Unset{});
}

int QBXIpod_MediaPlayer_Client::GetCurDBListItemsAmount(int fromTop)
{
    if (!clientCreated) return 0;
    return Ask<gint>(SYNC(com_zarn_linux_ipod_call_get_cur_db_list_items_amount_sync), Unset{}, fromTop != 0);
}

void QBXIpod_MediaPlayer_Client::PlayDBList(int index)
{
    if (!clientCreated) return;
    Call(SYNC(com_zarn_linux_ipod_call_play_db_list_sync), index);
}

void QBXIpod_MediaPlayer_Client::PlayPlayingList(int index)
{
    if (!clientCreated) return;
    Call(SYNC(com_zarn_linux_ipod_call_play_playing_list_sync), index);
}

bool QBXIpod_MediaPlayer_Client::EnterDBRoot()
{
    if (!clientCreated) return false;
    return Ask<gboolean>(SYNC(com_zarn_linux_ipod_call_enter_db_root_sync), Unset{});
}

bool QBXIpod_MediaPlayer_Client::IsiPodInDBRoot()
{
    if (!clientCreated) return false;
    return Ask<gboolean>(SYNC(com_zarn_linux_ipod_call_is_ipod_in_db_root_sync), Unset{});
}

bool QBXIpod_MediaPlayer_Client::EnterDBParentList()
{
    if (!clientCreated) return false;
    return Ask<gboolean>(SYNC(com_zarn_linux_ipod_call_enter_db_parent_list_sync), Unset{});
}

bool QBXIpod_MediaPlayer_Client::EnterDBChildList(int index)
{
    if (!clientCreated) return false;
    return Ask<gboolean>(SYNC(com_zarn_linux_ipod_call_enter_db_child_list_sync), Unset{}, index);
}

void QBXIpod_MediaPlayer_Client::SetShuffleMode(iPodPlayerShuffleStatus mode)
{
    if (!clientCreated) return;
    Call(SYNC(com_zarn_linux_ipod_call_set_shuffle_mode_sync), static_cast<guchar>(mode));
}

void QBXIpod_MediaPlayer_Client::SetRepeatMode(iPodPlayerRepeatStatus mode)
{
    if (!clientCreated) return;
    Call(SYNC(com_zarn_linux_ipod_call_set_repeat_mode_sync), static_cast<guchar>(mode));
}

void QBXIpod_MediaPlayer_Client::SetTransmissionState(unsigned char state)
{
    if (!clientCreated) return;
    Call(SYNC(com_zarn_linux_ipod_call_set_transmission_state_sync), state);
}

int QBXIpod_MediaPlayer_Client::GetShuffleMode()
{
    if (!clientCreated) return 255;
    return Ask<gint>(SYNC(com_zarn_linux_ipod_call_get_shuffle_mode_sync), 255);
}

int QBXIpod_MediaPlayer_Client::GetRepeatMode()
{
    if (!clientCreated) return 0;
    return Ask<gint>(SYNC(com_zarn_linux_ipod_call_get_repeat_mode_sync), 0);
}

void QBXIpod_MediaPlayer_Client::Seek(int sec)
{
    if (!clientCreated) return;
    Call(SYNC(com_zarn_linux_ipod_call_seek_sync), sec);
}

bool QBXIpod_MediaPlayer_Client::EnterDeviceChildList(int index)
{
    if (!clientCreated) return false;
    return Ask<gboolean>(SYNC(com_zarn_linux_ipod_call_enter_device_child_list_sync), FALSE, index);
}

int QBXIpod_MediaPlayer_Client::GetDeviceAmount()
{
    if (!clientCreated) return 0;
    return Ask<gint>(SYNC(com_zarn_linux_ipod_call_get_device_amount_sync), Unset{});
}

bool QBXIpod_MediaPlayer_Client::Next()
{
    if (!clientCreated) return false;
    return Ask<gboolean>(SYNC(com_zarn_linux_ipod_call_next_sync), FALSE);
}

bool QBXIpod_MediaPlayer_Client::Previous()
{
    if (!clientCreated) return false;
    return Ask<gboolean>(SYNC(com_zarn_linux_ipod_call_previous_sync), FALSE);
}

bool QBXIpod_MediaPlayer_Client::FastForward()
{
    if (!clientCreated) return false;
    return Ask<gboolean>(SYNC(com_zarn_linux_ipod_call_fast_forward_sync), FALSE);
}

bool QBXIpod_MediaPlayer_Client::FastBackward()
{
    if (!clientCreated) return false;
    return Ask<gboolean>(SYNC(com_zarn_linux_ipod_call_fast_backward_sync), FALSE);
}

bool QBXIpod_MediaPlayer_Client::StopFfwFbw()
{
    if (!clientCreated) return false;
    return Ask<gboolean>(SYNC(com_zarn_linux_ipod_call_stop_ffw_fbw_sync), FALSE);
}

bool QBXIpod_MediaPlayer_Client::SetButtonStatus(iPodPlayerButtonControl control)
{
    if (!clientCreated) return false;
    return Ask<gboolean>(SYNC(com_zarn_linux_ipod_call_set_button_status_sync), FALSE,
                         gvariant_data_build(&control, sizeof(control)));
}

void QBXIpod_MediaPlayer_Client::SetHUBTestMode(unsigned char mode)
{
    LOG_INFO("SetHUBTestMode()");
    if (!clientCreated) return;
    Call(SYNC(com_zarn_linux_ipod_call_set_hub_test_mode_sync), mode);
}

int QBXIpod_MediaPlayer_Client::GetCarlifeDeviceDetectStatus()
{
    LOG_INFO("GetCarlifeDeviceDetectStatus()");
    if (!clientCreated) return 1;
    return Ask<gint>(SYNC(com_zarn_linux_ipod_call_get_carlife_device_detect_status_sync), Unset{});
}

// Writes only the lowest byte of the caller's status: the bus carries one byte.
void QBXIpod_MediaPlayer_Client::GetCarplayDeviceDetectStatus(QBXAppleDeviceDetectStatus& status,
                                                              std::string& serialNumber)
{
    LOG_INFO("GetCarplayDeviceDetectStatus()");
    if (!clientCreated) return;
    gchar* reply = nullptr;
    const auto site = SYNC(com_zarn_linux_ipod_call_get_carplay_device_detect_status_sync);
    const GError* const error = qbx::TryCall(site, reinterpret_cast<guchar*>(&status), &reply);
    CopyOut(serialNumber, reply);
    qbx::LogFailure(site.where, site.failure, error);
}

void QBXIpod_MediaPlayer_Client::GetIpodName(std::string& name)
{
    LOG_INFO("GetIpodName()");
    if (!clientCreated) return;
    gchar* reply = nullptr;
    const auto site = SYNC(com_zarn_linux_ipod_call_get_ipod_name_sync);
    const GError* const error = qbx::TryCall(site, &reply);
    CopyOut(name, reply);
    LOG_INFO("%s, IpodName : %s", __func__, name.c_str());
    qbx::LogFailure(site.where, site.failure, error);
}

void QBXIpod_MediaPlayer_Client::GetIpodAPPBundleName(std::string& bundleName)
{
    LOG_INFO("GetIpodAPPBundleName()");
    if (!clientCreated) return;
    gchar* reply = nullptr;
    const auto site = SYNC(com_zarn_linux_ipod_call_get_ipod_app_bundle_name_sync);
    const GError* const error = qbx::TryCall(site, &reply);
    CopyOut(bundleName, reply);
    LOG_INFO("%s, IpodAPPBundleName : %s", __func__, bundleName.c_str());
    qbx::LogFailure(site.where, site.failure, error);
}

void QBXIpod_MediaPlayer_Client::CarPlayConnectStatusNotify(int isconnected, int iswifi)
{
    if (!clientCreated) return;
    com_zarn_linux_ipod_call_carplay_connect_status_notify(qbx::serviceProxy, isconnected != 0, iswifi != 0, nullptr,
                                                           CarPlayConnectStatusNotifyCallback, nullptr);
}
