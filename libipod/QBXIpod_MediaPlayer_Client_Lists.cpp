// Pages of names. The call makes the service fill a shared vector. The whole vector is the page, regardless of the
// requested range, even after a failed call: then it still holds the previous page of its kind.
#include "QBXIpod_MediaPlayer_Client.h"
#include "internal/call.h"
#include "internal/segments.h"

namespace
{
template <class Function, class... Args>
int FetchPage(const qbx::CallSite<Function>& site, const QBXStringPageVector* vector, std::vector<std::string>& list,
              Args... args)
{
    gboolean result = FALSE;
    qbx::CallAndRelease(site, args..., &result);
    qbx::CopyNames(qbx::TakeSnapshot(vector, qbx::BoundsOf(vector, qbx::listMapping)), list);
    return result;
}
}  // namespace

int QBXIpod_MediaPlayer_Client::GetCurDBListItems(int beginIdx, int endIdx, std::vector<std::string>& list,
                                                  int& bFolder, int& bDBRoot)
{
    if (!qbx::clientCreated) return 0;
    return FetchPage(SYNC(com_zarn_linux_ipod_call_get_cur_db_list_items_sync), g_VecDBListShareMemory, list, beginIdx,
                     endIdx, &bFolder, &bDBRoot);
}

int QBXIpod_MediaPlayer_Client::GetCurDBListItemsPinyin(int beginIdx, int endIdx, std::vector<std::string>& list,
                                                        int& bFolder, int& bDBRoot)
{
    if (!qbx::clientCreated) return 0;
    return FetchPage(SYNC(com_zarn_linux_ipod_call_get_cur_db_list_items_pinyin_sync), g_VecDBListPinyinShareMemory,
                     list, beginIdx, endIdx, &bFolder, &bDBRoot);
}

int QBXIpod_MediaPlayer_Client::GetPlayingListItems(int beginIdx, int endIdx, std::vector<std::string>& list)
{
    if (!qbx::clientCreated) return 0;
    return FetchPage(SYNC(com_zarn_linux_ipod_call_get_playing_list_items_sync), g_VecPlayingListShareMemory, list,
                     beginIdx, endIdx);
}

int QBXIpod_MediaPlayer_Client::GetUpdateListItems(int beginIdx, int endIdx, std::vector<std::string>& list)
{
    if (!qbx::clientCreated) return 0;
    return FetchPage(SYNC(com_zarn_linux_ipod_call_get_update_list_items_sync), g_VecUpdateListShareMemory, list,
                     beginIdx, endIdx);
}

int QBXIpod_MediaPlayer_Client::GetUpdateListItemsPinyin(int beginIdx, int endIdx, std::vector<std::string>& list)
{
    if (!qbx::clientCreated) return 0;
    return FetchPage(SYNC(com_zarn_linux_ipod_call_get_update_list_items_pinyin_sync), g_VecUpdateListPinyinShareMemory,
                     list, beginIdx, endIdx);
}

int QBXIpod_MediaPlayer_Client::GetDeviceList(std::vector<std::string>& list)
{
    if (!qbx::clientCreated) return 0;
    return FetchPage(SYNC(com_zarn_linux_ipod_call_get_device_list_sync), g_VecDeviceListShareMemory, list);
}
