/// @file
/// The handlers of the 46 methods of com.zarn.linux.ipod, which its XML describes. Names are those of the bus. Returned
/// variants are floating; arguments are borrowed.
#pragma once

#include <glib.h>

#include <string>
#include <tuple>

#include "service/service.h"

namespace ipodsim
{
/// Handles every method of @p skeleton from now on.
void AnswerRequests(ComZarnLinuxIpod* skeleton, Service& service);

namespace requests
{
// Playback: requests_playback.cpp
GVariant* GetCurrentMediaInfo(Service& service);
bool Play(Service& service, guchar option);
bool Pause(Service& service);
bool Stop(Service& service);
std::tuple<gint, gint> GetPlayPosition(Service& service);
gint GetFfwFbwStatus(Service& service);
gint GetPlayStatus(Service& service);
void SetShuffleMode(Service& service, guchar mode);
void SetRepeatMode(Service& service, guchar mode);
gint GetShuffleMode(Service& service);
gint GetRepeatMode(Service& service);
bool SetButtonStatus(Service& service, GVariant* control);
gint GetPlayingTrackIdx(Service& service);
void PlayDbList(Service& service, gint index);
void PlayPlayingList(Service& service, gint index);
void Seek(Service& service, gint seconds);
bool Next(Service& service);
bool Previous(Service& service);
GVariant* GetPlayingTrackAlbumArtwork(Service& service);
bool FastForward(Service& service);
bool FastBackward(Service& service);
bool StopFfwFbw(Service& service);

// Lists: requests_lists.cpp
gint GetPlayingListItemsAmount(Service& service);
gint GetCurDbListItemsAmount(Service& service, gboolean fromTop);
bool GetPlayingListItems(Service& service, gint begin, gint end);
std::tuple<bool, bool, bool> GetCurDbListItems(Service& service, gint begin, gint end);
std::tuple<bool, bool, bool> GetCurDbListItemsPinyin(Service& service, gint begin, gint end);
bool GetUpdateListItems(Service& service, gint begin, gint end);
bool GetUpdateListItemsPinyin(Service& service, gint begin, gint end);
bool EnterDbRoot(Service& service);
bool IsIPodInDbRoot(Service& service);
bool EnterDbParentList(Service& service);
bool EnterDbChildList(Service& service, gint index);
bool EnterDeviceChildList(Service& service, gint index);
bool GetDeviceList(Service& service);
gint GetDeviceAmount(Service& service);

// Device, head unit, and accessory sessions: requests_device.cpp
void SetTransmissionState(Service& service, guchar state);
void SetHubTestMode(Service& service, guchar mode);
std::tuple<guchar, std::string> GetCarplayDeviceDetectStatus(Service& service);
std::string GetIpodName(Service& service);
std::string GetIpodAppBundleName(Service& service);
bool EapLaunchApp(Service& service, const gchar* bundle);
bool EapWrite(Service& service, guint16 session);
gint GetCarlifeDeviceDetectStatus(Service& service);
void EapInit(Service& service, GVariant* info);
void CarplayConnectStatusNotify(Service& service, gboolean connected, gboolean wifi);
}  // namespace requests
}  // namespace ipodsim
