// The 46 methods of com.zarn.linux.ipod in the order of the XML, with their handlers.
#include <iterator>

#include "service/answer.h"
#include "service/requests.h"

namespace ipodsim
{
namespace
{
using Interface = ComZarnLinuxIpodIface;

// The generated names of one member: the reply function and the request signal.
#define ROW(member, handler) \
    Method<com_zarn_linux_ipod_complete_##member, &requests::handler>("handle_" #member, &Interface::handle_##member)

const MethodRow kMethods[] = {
    ROW(get_current_media_info, GetCurrentMediaInfo),
    ROW(play, Play),
    ROW(pause, Pause),
    ROW(stop, Stop),
    ROW(get_play_position, GetPlayPosition),
    ROW(get_ffw_fbw_status, GetFfwFbwStatus),
    ROW(get_play_status, GetPlayStatus),
    ROW(set_shuffle_mode, SetShuffleMode),
    ROW(set_repeat_mode, SetRepeatMode),
    ROW(get_shuffle_mode, GetShuffleMode),
    ROW(get_repeat_mode, GetRepeatMode),
    ROW(set_button_status, SetButtonStatus),
    ROW(set_transmission_state, SetTransmissionState),
    ROW(get_playing_track_idx, GetPlayingTrackIdx),
    ROW(get_playing_list_items_amount, GetPlayingListItemsAmount),
    ROW(get_cur_db_list_items_amount, GetCurDbListItemsAmount),
    ROW(get_playing_list_items, GetPlayingListItems),
    ROW(get_cur_db_list_items, GetCurDbListItems),
    ROW(get_cur_db_list_items_pinyin, GetCurDbListItemsPinyin),
    ROW(get_update_list_items, GetUpdateListItems),
    ROW(get_update_list_items_pinyin, GetUpdateListItemsPinyin),
    ROW(play_db_list, PlayDbList),
    ROW(play_playing_list, PlayPlayingList),
    ROW(enter_db_root, EnterDbRoot),
    ROW(is_ipod_in_db_root, IsIPodInDbRoot),
    ROW(enter_db_parent_list, EnterDbParentList),
    ROW(enter_db_child_list, EnterDbChildList),
    ROW(seek, Seek),
    ROW(enter_device_child_list, EnterDeviceChildList),
    ROW(get_device_list, GetDeviceList),
    ROW(get_device_amount, GetDeviceAmount),
    ROW(next, Next),
    ROW(previous, Previous),
    ROW(get_playing_track_album_artwork, GetPlayingTrackAlbumArtwork),
    ROW(fast_forward, FastForward),
    ROW(fast_backward, FastBackward),
    ROW(stop_ffw_fbw, StopFfwFbw),
    ROW(set_hub_test_mode, SetHubTestMode),
    ROW(get_carplay_device_detect_status, GetCarplayDeviceDetectStatus),
    ROW(get_ipod_name, GetIpodName),
    ROW(get_ipod_app_bundle_name, GetIpodAppBundleName),
    ROW(eap_launch_app, EapLaunchApp),
    ROW(eap_write, EapWrite),
    ROW(get_carlife_device_detect_status, GetCarlifeDeviceDetectStatus),
    ROW(eap_init, EapInit),
    ROW(carplay_connect_status_notify, CarplayConnectStatusNotify),
};
#undef ROW
static_assert(std::size(kMethods) == 46, "every method of the interface needs a row");
}  // namespace

void AnswerRequests(ComZarnLinuxIpod* skeleton, Service& service)
{
    Connect(skeleton, kMethods, service);
}
}  // namespace ipodsim
