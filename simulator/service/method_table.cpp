// The 46 methods of com.zarn.linux.ipod in the order of its XML: who replies, what is done, which signal asks for it.
#include <iterator>

#include "service/answer.h"
#include "service/requests.h"

namespace ipodsim
{
namespace
{
using Interface = ComZarnLinuxIpodIface;

// clang-format off
const MethodRow kMethods[] = {
    Method<com_zarn_linux_ipod_complete_get_current_media_info, &requests::GetCurrentMediaInfo>("handle-get-current-media-info", &Interface::handle_get_current_media_info),
    Method<com_zarn_linux_ipod_complete_play, &requests::Play>("handle-play", &Interface::handle_play),
    Method<com_zarn_linux_ipod_complete_pause, &requests::Pause>("handle-pause", &Interface::handle_pause),
    Method<com_zarn_linux_ipod_complete_stop, &requests::Stop>("handle-stop", &Interface::handle_stop),
    Method<com_zarn_linux_ipod_complete_get_play_position, &requests::GetPlayPosition>("handle-get-play-position", &Interface::handle_get_play_position),
    Method<com_zarn_linux_ipod_complete_get_ffw_fbw_status, &requests::GetFfwFbwStatus>("handle-get-ffw-fbw-status", &Interface::handle_get_ffw_fbw_status),
    Method<com_zarn_linux_ipod_complete_get_play_status, &requests::GetPlayStatus>("handle-get-play-status", &Interface::handle_get_play_status),
    Method<com_zarn_linux_ipod_complete_set_shuffle_mode, &requests::SetShuffleMode>("handle-set-shuffle-mode", &Interface::handle_set_shuffle_mode),
    Method<com_zarn_linux_ipod_complete_set_repeat_mode, &requests::SetRepeatMode>("handle-set-repeat-mode", &Interface::handle_set_repeat_mode),
    Method<com_zarn_linux_ipod_complete_get_shuffle_mode, &requests::GetShuffleMode>("handle-get-shuffle-mode", &Interface::handle_get_shuffle_mode),
    Method<com_zarn_linux_ipod_complete_get_repeat_mode, &requests::GetRepeatMode>("handle-get-repeat-mode", &Interface::handle_get_repeat_mode),
    Method<com_zarn_linux_ipod_complete_set_button_status, &requests::SetButtonStatus>("handle-set-button-status", &Interface::handle_set_button_status),
    Method<com_zarn_linux_ipod_complete_set_transmission_state, &requests::SetTransmissionState>("handle-set-transmission-state", &Interface::handle_set_transmission_state),
    Method<com_zarn_linux_ipod_complete_get_playing_track_idx, &requests::GetPlayingTrackIdx>("handle-get-playing-track-idx", &Interface::handle_get_playing_track_idx),
    Method<com_zarn_linux_ipod_complete_get_playing_list_items_amount, &requests::GetPlayingListItemsAmount>("handle-get-playing-list-items-amount", &Interface::handle_get_playing_list_items_amount),
    Method<com_zarn_linux_ipod_complete_get_cur_db_list_items_amount, &requests::GetCurDbListItemsAmount>("handle-get-cur-db-list-items-amount", &Interface::handle_get_cur_db_list_items_amount),
    Method<com_zarn_linux_ipod_complete_get_playing_list_items, &requests::GetPlayingListItems>("handle-get-playing-list-items", &Interface::handle_get_playing_list_items),
    Method<com_zarn_linux_ipod_complete_get_cur_db_list_items, &requests::GetCurDbListItems>("handle-get-cur-db-list-items", &Interface::handle_get_cur_db_list_items),
    Method<com_zarn_linux_ipod_complete_get_cur_db_list_items_pinyin, &requests::GetCurDbListItemsPinyin>("handle-get-cur-db-list-items-pinyin", &Interface::handle_get_cur_db_list_items_pinyin),
    Method<com_zarn_linux_ipod_complete_get_update_list_items, &requests::GetUpdateListItems>("handle-get-update-list-items", &Interface::handle_get_update_list_items),
    Method<com_zarn_linux_ipod_complete_get_update_list_items_pinyin, &requests::GetUpdateListItemsPinyin>("handle-get-update-list-items-pinyin", &Interface::handle_get_update_list_items_pinyin),
    Method<com_zarn_linux_ipod_complete_play_db_list, &requests::PlayDbList>("handle-play-db-list", &Interface::handle_play_db_list),
    Method<com_zarn_linux_ipod_complete_play_playing_list, &requests::PlayPlayingList>("handle-play-playing-list", &Interface::handle_play_playing_list),
    Method<com_zarn_linux_ipod_complete_enter_db_root, &requests::EnterDbRoot>("handle-enter-db-root", &Interface::handle_enter_db_root),
    Method<com_zarn_linux_ipod_complete_is_ipod_in_db_root, &requests::IsIPodInDbRoot>("handle-is-ipod-in-db-root", &Interface::handle_is_ipod_in_db_root),
    Method<com_zarn_linux_ipod_complete_enter_db_parent_list, &requests::EnterDbParentList>("handle-enter-db-parent-list", &Interface::handle_enter_db_parent_list),
    Method<com_zarn_linux_ipod_complete_enter_db_child_list, &requests::EnterDbChildList>("handle-enter-db-child-list", &Interface::handle_enter_db_child_list),
    Method<com_zarn_linux_ipod_complete_seek, &requests::Seek>("handle-seek", &Interface::handle_seek),
    Method<com_zarn_linux_ipod_complete_enter_device_child_list, &requests::EnterDeviceChildList>("handle-enter-device-child-list", &Interface::handle_enter_device_child_list),
    Method<com_zarn_linux_ipod_complete_get_device_list, &requests::GetDeviceList>("handle-get-device-list", &Interface::handle_get_device_list),
    Method<com_zarn_linux_ipod_complete_get_device_amount, &requests::GetDeviceAmount>("handle-get-device-amount", &Interface::handle_get_device_amount),
    Method<com_zarn_linux_ipod_complete_next, &requests::Next>("handle-next", &Interface::handle_next),
    Method<com_zarn_linux_ipod_complete_previous, &requests::Previous>("handle-previous", &Interface::handle_previous),
    Method<com_zarn_linux_ipod_complete_get_playing_track_album_artwork, &requests::GetPlayingTrackAlbumArtwork>("handle-get-playing-track-album-artwork", &Interface::handle_get_playing_track_album_artwork),
    Method<com_zarn_linux_ipod_complete_fast_forward, &requests::FastForward>("handle-fast-forward", &Interface::handle_fast_forward),
    Method<com_zarn_linux_ipod_complete_fast_backward, &requests::FastBackward>("handle-fast-backward", &Interface::handle_fast_backward),
    Method<com_zarn_linux_ipod_complete_stop_ffw_fbw, &requests::StopFfwFbw>("handle-stop-ffw-fbw", &Interface::handle_stop_ffw_fbw),
    Method<com_zarn_linux_ipod_complete_set_hub_test_mode, &requests::SetHubTestMode>("handle-set-hub-test-mode", &Interface::handle_set_hub_test_mode),
    Method<com_zarn_linux_ipod_complete_get_carplay_device_detect_status, &requests::GetCarplayDeviceDetectStatus>("handle-get-carplay-device-detect-status", &Interface::handle_get_carplay_device_detect_status),
    Method<com_zarn_linux_ipod_complete_get_ipod_name, &requests::GetIpodName>("handle-get-ipod-name", &Interface::handle_get_ipod_name),
    Method<com_zarn_linux_ipod_complete_get_ipod_app_bundle_name, &requests::GetIpodAppBundleName>("handle-get-ipod-app-bundle-name", &Interface::handle_get_ipod_app_bundle_name),
    Method<com_zarn_linux_ipod_complete_eap_launch_app, &requests::EapLaunchApp>("handle-eap-launch-app", &Interface::handle_eap_launch_app),
    Method<com_zarn_linux_ipod_complete_eap_write, &requests::EapWrite>("handle-eap-write", &Interface::handle_eap_write),
    Method<com_zarn_linux_ipod_complete_get_carlife_device_detect_status, &requests::GetCarlifeDeviceDetectStatus>("handle-get-carlife-device-detect-status", &Interface::handle_get_carlife_device_detect_status),
    Method<com_zarn_linux_ipod_complete_eap_init, &requests::EapInit>("handle-eap-init", &Interface::handle_eap_init),
    Method<com_zarn_linux_ipod_complete_carplay_connect_status_notify, &requests::CarplayConnectStatusNotify>("handle-carplay-connect-status-notify", &Interface::handle_carplay_connect_status_notify),
};
// clang-format on
static_assert(std::size(kMethods) == 46, "every method of the interface has its row");
}  // namespace

void AnswerRequests(ComZarnLinuxIpod* skeleton, Service& service)
{
    Connect(skeleton, kMethods, service);
}
}  // namespace ipodsim
