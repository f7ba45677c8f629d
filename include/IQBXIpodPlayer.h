/// @file
/// The player: control of the Apple device attached to the unit. Read this header first.
///
/// **Use.** Obtain the one player object, initialise it, register listeners, run a GLib main loop:
///
///     IQBXIpodPlayer* player = QBX_GetIpodPlayer();
///     if (!player->InitInstance()) … the service is not there; try again later …
///     player->AddListener(&myListener);
///     g_main_loop_run(loop);
///     player->RemoveListener(&myListener);
///     player->ExitInstance();
///     QBX_DestroyIpodPlayer();
///
/// **Blocking.** Every command but CarPlayConnectStatusNotify() blocks the calling thread for one round trip
/// over the session bus: well below a millisecond as a rule, up to 25 seconds when the service hangs.
/// InitInstance() blocks while the proxy is made.
///
/// **Threads.** The library starts none. Commands and QBX_GetIpodPlayer() may be called from any thread, also at the
/// same time; but
/// requests that return data through the same shared vector (see each command) must be serialised by the
/// callers. Events are delivered in the GLib main context that was the thread-default one of the thread that
/// called InitInstance(); without a running main loop none arrives. InitInstance() and QBX_DestroyIpodPlayer()
/// must not run while other threads use the player.
///
/// **Failure.** Nothing throws but EapWrite() and the first QBX_GetIpodPlayer(), both when shared memory cannot
/// be used. A call that fails is logged once at level ERROR with the bus's reason. Three values can come back
/// from a command:
///
///   * its result, when the service answered;
///   * its *not-ready* value, when no player object was ever built in this process: no call is made;
///   * its *failure* value, when the call failed. Where the description says "unset", the value that comes back
///     means nothing, and the failure shows in the log only.
///
/// Calls made before InitInstance() succeeded fail in the same way, but GLib reports them, not the log line.
///
/// **End of the bus.** GLib ends a process whose session bus goes away; an application that wants to survive
/// that calls `g_dbus_connection_set_exit_on_close()` with FALSE on the connection of `g_bus_get_sync()`.
///
/// **Compatibility.** The order of the virtual operations is part of the published interface: append, never
/// insert. Spellings differ from those of the bus contract ("DB", "HUB", "APP", "CarPlay") and are kept.
#pragma once

#include <IQBXAppListener.h>
#include <IQBXIpodPlayerListener.h>
#include <IQBXService.h>
#include <QBXIpodTypes.h>

#include <string>
#include <vector>

/// The player. AddListener(), RemoveListener() and the rest of the registry come from IQBXListener.h, and
/// from IQBXService.h:
///
///   * InitInstance() connects to the service. True when the service is on the bus: events are then delivered.
///     False when there is no session bus or nobody owns the service's name; it may be called again later.
///     It does not return at all when its first attempt to make the proxy fails and a later one succeeds:
///     never let the bus activate the service, which is how that happens.
///     Each call that returns true subscribes once more, so that every event arrives once per such call:
///     call it until it returns true, then no more.
///   * ExitInstance() returns true and releases nothing; commands still work after it.
class IQBXIpodPlayer : public IQBXService<IQBXIpodPlayerListener>
{
public:
    /// Details of the playing track. Not ready: asks all the same. Failure: empty texts, zeros.
    virtual QBXiPodTrackInfo GetCurrentMediaInfo() = 0;

    /// Takes part in the arbitration of audio sources, or starts playback, as @p option says:
    ///   1, 2     request source 10 or 11 from the audio-source manager; returns its code (1 and 2: granted)
    ///   3, 4, 5  start playback, if the source that was granted last is active; returns 1 when it started
    ///   6, 7     confirm activation or deactivation with @p confirmArg; returns 1
    /// Everything else returns 0. Only options 3 to 5 use the bus. Not ready: 0. Failure: 0.
    virtual int Play(iPodPlayerPlayOption_e option, int confirmArg) = 0;

    /// True when the device paused. Not ready: false. Failure: unset.
    virtual bool Pause() = 0;

    /// True when the device stopped. Not ready: false. Failure: unset.
    virtual bool Stop() = 0;

    /// Position in the track and its length, in milliseconds. Not ready, failure: both as they were.
    virtual void GetPlayPosition(int& pos, int& duration) = 0;

    /// 0 winds forward, 1 backward, 2 neither. Not ready: 2. Failure: unset.
    virtual int GetFfwFbwStatus() = 0;

    /// An #iPodPlayerPlayStatus. Not ready: 255. Failure: unset.
    virtual int GetPlayStatus() = 0;

    /// Only the low 8 bits of the mode are sent. The service confirms with OnIpodShuffleModeChange().
    virtual void SetShuffleMode(iPodPlayerShuffleStatus mode) = 0;

    /// Only the low 8 bits of the mode are sent. The service confirms with OnIpodRepeatModeChange().
    virtual void SetRepeatMode(iPodPlayerRepeatStatus mode) = 0;

    /// An #iPodPlayerShuffleStatus. Not ready: 255. Failure: 255.
    virtual int GetShuffleMode() = 0;

    /// An #iPodPlayerRepeatStatus. Not ready: 0. Failure: 0.
    virtual int GetRepeatMode() = 0;

    /// Presses accessory buttons; true when the device took them. Not ready: false. Failure: false.
    virtual bool SetButtonStatus(iPodPlayerButtonControl control) = 0;

    /// Tells the device whether the unit takes its audio (non-zero) or not.
    virtual void SetTransmissionState(unsigned char state) = 0;

    /// Index of the playing entry within the playing list, from 0; -1 when nothing plays. Not ready: -1.
    /// Failure: unset.
    virtual int GetPlayingTrackIdx() = 0;

    /// Number of entries of the playing list. Not ready: 0. Failure: unset.
    virtual int GetPlayingListItemsAmount() = 0;

    /// Number of entries of the current database level, or of the top level when @p fromTop is not 0.
    /// Not ready: 0. Failure: unset.
    virtual int GetCurDBListItemsAmount(int fromTop) = 0;

    /// A page of names. This and the five other page requests work alike:
    ///
    /// @param beginIdx  first index, from 0
    /// @param endIdx    last index, inclusive; both are handed to the service unchecked
    /// @param list      replaced by what the service put into the shared vector of this kind of list
    /// @return 1 when the service filled the page, else 0. Not ready: 0, @p list as it was.
    ///
    /// **After a failed call** the result is 0 and @p list holds the previous page of this kind: look at the
    /// result before the list. Two threads must not ask for the same kind of page at the same time.
    /// This one returns the playing list.
    virtual int GetPlayingListItems(int beginIdx, int endIdx, std::vector<std::string>& list) = 0;

    /// The current level of the music database. @p bFolder becomes 1 when its entries can be entered and 0
    /// when they are songs, @p bDBRoot 1 when it is the root, else 0. Not ready, failure: both as they were.
    virtual int GetCurDBListItems(int beginIdx, int endIdx, std::vector<std::string>& list, int& bFolder,
                                  int& bDBRoot) = 0;

    /// The same level in pinyin, entry for entry.
    virtual int GetCurDBListItemsPinyin(int beginIdx, int endIdx, std::vector<std::string>& list, int& bFolder,
                                        int& bDBRoot) = 0;

    /// The list that the device is updating.
    virtual int GetUpdateListItems(int beginIdx, int endIdx, std::vector<std::string>& list) = 0;

    /// The same list in pinyin, entry for entry.
    virtual int GetUpdateListItemsPinyin(int beginIdx, int endIdx, std::vector<std::string>& list) = 0;

    /// Plays the current database level from entry @p index on; it becomes the playing list.
    virtual void PlayDBList(int index) = 0;

    /// Jumps to entry @p index of the playing list.
    virtual void PlayPlayingList(int index) = 0;

    /// Goes to the root of the database. Not ready: false. Failure: unset.
    virtual bool EnterDBRoot() = 0;

    /// Whether the current level is the root. Not ready: false. Failure: unset.
    virtual bool IsiPodInDBRoot() = 0;

    /// Goes one level up; false at the root. Not ready: false. Failure: unset.
    virtual bool EnterDBParentList() = 0;

    /// Enters entry @p index of the current level; false when it is a song or not there.
    /// Not ready: false. Failure: unset.
    virtual bool EnterDBChildList(int index) = 0;

    /// Moves playback to @p sec seconds from the start of the track.
    virtual void Seek(int sec) = 0;

    /// Chooses the device to browse; false when there is none of that index. Not ready: false. Failure: false.
    virtual bool EnterDeviceChildList(int index) = 0;

    /// Names of the attached devices: a whole list, otherwise as the page requests above.
    virtual int GetDeviceList(std::vector<std::string>& list) = 0;

    /// Number of attached devices. Not ready: 0. Failure: unset.
    virtual int GetDeviceAmount() = 0;

    /// Next track. Not ready: false. Failure: false.
    virtual bool Next() = 0;

    /// Previous track. Not ready: false. Failure: false.
    virtual bool Previous() = 0;

    /// The picture of the playing track. Not ready: words 1, 0, 0, 0 and no image. Failure: words of zero and
    /// the picture of the last successful request.
    virtual QBXTrackArtwork GetPlayingTrackAlbumArtwork() = 0;

    /// Winds forward until StopFfwFbw(). Not ready: false. Failure: false.
    virtual bool FastForward() = 0;

    /// Winds backward until StopFfwFbw(). Not ready: false. Failure: false.
    virtual bool FastBackward() = 0;

    /// Stops winding. Not ready: false. Failure: false.
    virtual bool StopFfwFbw() = 0;

    /// Puts the unit's USB hub into an electrical test mode, 0 ends it. For production and service only.
    virtual void SetHUBTestMode(unsigned char mode) = 0;

    /// Writes the detection status into the lowest byte of @p status; the caller sets the others to 0 first.
    /// @p serialNumber is **not** handed over and stays as it was: it arrives with the event
    /// OnCarplayDeviceDetectStatusChange(). Not ready, failure: both as they were.
    virtual void GetCarplayDeviceDetectStatus(QBXAppleDeviceDetectStatus& status, std::string& serialNumber) = 0;

    /// Asks for the device's name, which is **not** handed over: @p name stays as it was.
    virtual void GetIpodName(std::string& name) = 0;

    /// Asks for the foreground app, which is **not** handed over: @p bundleName stays as it was. It arrives
    /// with the event OnIpodAPPBundleNameChange().
    virtual void GetIpodAPPBundleName(std::string& bundleName) = 0;

    /// Asks the device to start the app @p AppBundleID; 1 when the request was sent. Not ready, failure: 0.
    virtual int EapLaunchApp(std::string& AppBundleID) = 0;

    /// Sends @p data on an accessory session; 1 when the service accepted it. Not ready, failure: 0.
    /// Calls must not overlap: there is one write buffer.
    ///
    /// @throws boost::interprocess::bad_alloc  the payload does not fit into the segment of 1 MiB; no call is made
    /// @throws boost::interprocess::lock_exception  the segment is locked by a process that died (after 10 seconds);
    ///         no call is made
    /// @throws boost::interprocess::interprocess_exception  the segment is damaged or was never attached; no call is
    ///         made
    virtual int EapWrite(unsigned short SessionID, std::vector<unsigned char>& data) = 0;

    /// A #QBXAppleDeviceDetectStatus. Not ready: 1. Failure: unset.
    virtual int GetCarlifeDeviceDetectStatus() = 0;

    /// Announces the unit's accessory protocols; each text is cut to its first 255 bytes.
    virtual void EapInit(EAPInfo info) = 0;

    /// Tells the service of the CarPlay session (non-zero is true). Returns at once; a failure shows in the
    /// log only, once the main loop has run.
    virtual void CarPlayConnectStatusNotify(int isconnected, int iswifi) = 0;
};

#pragma GCC visibility push(default)

/// The player object of this process, built at the first call. Never null. Owned by the library.
///
/// The first call attaches the shared-memory segments, creating them where they are missing.
///
/// @throws boost::interprocess::interprocess_exception  the segments cannot be attached: access denied, no
///         space, damaged, made for another word size, never finished by their creator (after 5 seconds), or
///         locked by a process that died (after 10 seconds). There is no second try. The lock that guards the
///         creation stays held: on the same thread a second call gives a player that can use commands but no
///         shared data, on any other thread it blocks for ever. End the process, or go on without the player.
IQBXIpodPlayer* QBX_GetIpodPlayer();

/// Deletes the player object; does nothing when there is none. A later QBX_GetIpodPlayer() builds a new one,
/// which needs InitInstance() and its listeners again. Events in flight for the deleted object are dropped.
/// Not to be called from inside a callback: the dispatch that is running belongs to the object.
void QBX_DestroyIpodPlayer();

#pragma GCC visibility pop
