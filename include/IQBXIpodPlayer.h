/// @file
/// The player: control of the Apple device attached to the head unit. Read this header first.
///
/// **Use.** Obtain the one player object, initialize it, register listeners, run a GLib main loop:
///
///     IQBXIpodPlayer* player = QBX_GetIpodPlayer();
///     if (!player->InitInstance()) … the service is absent; try again later …
///     player->AddListener(&myListener);
///     g_main_loop_run(loop);
///     player->RemoveListener(&myListener);
///     player->ExitInstance();
///     QBX_DestroyIpodPlayer();
///
/// **Blocking.** Every command but CarPlayConnectStatusNotify() blocks the calling thread for one round trip
/// over the session bus: typically well below a millisecond, at most 25 seconds (GDBus's default timeout) when the
/// service hangs. InitInstance() blocks while the proxy is created.
///
/// **Threads.** The library starts none. Commands and QBX_GetIpodPlayer() may be called from any thread, even
/// concurrently; callers must serialize requests that return data through the same shared vector (see each command).
/// Events are delivered in the GLib main context that was the thread default when InitInstance() was called; without a
/// running main loop, none arrives. InitInstance() and QBX_DestroyIpodPlayer() must not run while other threads use the
/// player.
///
/// **Failure.** Only EapWrite() and the first QBX_GetIpodPlayer() throw, if shared memory cannot be used. A call that
/// fails is logged once at level ERROR with the bus's reason. Three values can come back from a command:
///
///   * its result, when the service answered;
///   * its *not-ready* value, when no player object was ever built in this process: no call is made;
///   * its *failure* value, when the call failed. Where the description says "unset", the returned value
///     means nothing, and the failure shows in the log only.
///
/// The failure of a command that returns and writes nothing appears only in the log: if success matters, wait for the
/// event that confirms the command, or read the state back. Such a command makes no call if it is not ready.
///
/// **Before InitInstance() succeeded.** Until InitInstance() has created a proxy (before its first call, and after
/// one that did not reach the session bus) commands make no call: GLib prints a critical warning, the library logs
/// no failure line, and the failure value comes back. When InitInstance() returned false because nobody owns the
/// service's name, the proxy exists: commands fail and are logged as usual, and work as soon as the service appears.
/// Events arrive only after InitInstance() returned true.
///
/// **Memory.** Results belong to the caller; commands keep no reference to their arguments. Some calls leave memory
/// behind by contract: a failed call keeps 96 to 176 bytes, and GetIpodName(), GetIpodAPPBundleName()
/// and GetCarplayDeviceDetectStatus() keep the text of each reply, 32 bytes for one of 16 characters. Pages,
/// GetCurrentMediaInfo() and GetPlayingTrackAlbumArtwork() keep nothing. An application that polls should increase
/// the interval while calls fail. docs/reliability.md has the figures.
///
/// **Size of bulk data.** A name holds up to 255 bytes. The six lists share a segment of 5 MiB: fewer than 20,480
/// names, all lists together. Artwork requested, artwork announced, and accessory bytes sent and received share a
/// segment of 1 MiB. A growing vector may need its old and its new allocation at once, so less fits when the other
/// vectors are large. The service decides how it reports a page or an image that does not fit; the library returns what
/// the service answers and what the vector holds. An accessory payload that does not fit makes EapWrite() throw.
///
/// **End of the bus.** GLib terminates a process whose session bus disappears; an application that wants to survive
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

/// The player. AddListener(), RemoveListener(), and the rest of the registry come from IQBXListener.h. From
/// IQBXService.h come:
///
///   * InitInstance() connects to the service. Returns true when the service is on the bus: events are then
///     delivered. Returns false when there is no session bus or nobody owns the service's name; it may be called again
///     later. It never returns when its first attempt to create the proxy fails and a later one succeeds:
///     never let the bus activate the service, which is how that happens.
///     Each call that returns true subscribes once more, so that every event arrives once per such call:
///     call it until it returns true, then no more.
///   * ExitInstance() returns true and releases nothing; commands still work after it.
class IQBXIpodPlayer : public IQBXService<IQBXIpodPlayerListener>
{
public:
    /// Returns the details of the playing track. Not ready: makes the call anyway. Failure: empty strings and zeros.
    virtual QBXiPodTrackInfo GetCurrentMediaInfo() = 0;

    /// Requests or confirms an audio source, or starts playback, depending on @p option:
    ///   1, 2     request source 10 or 11 from the audio-source manager; returns its code (1 and 2: granted)
    ///   3, 4, 5  start playback, if the source that was granted last is active; returns 1 when it started
    ///   6, 7     confirm activation or deactivation with @p confirmArg; returns 1
    /// A refused request returns the manager's code, which is neither 1 nor 2. Every other case returns 0. Only options
    /// 3 to 5 use the bus. Not ready: 0. Failure: 0.
    virtual int Play(iPodPlayerPlayOption_e option, int confirmArg) = 0;

    /// Pauses playback; true when the device paused. Not ready: false. Failure: unset.
    virtual bool Pause() = 0;

    /// Stops playback; true when the device stopped. Not ready: false. Failure: unset.
    virtual bool Stop() = 0;

    /// Writes the position in the track and its length, in milliseconds. Not ready, failure: both unchanged.
    virtual void GetPlayPosition(int& pos, int& duration) = 0;

    /// Returns 0 during fast-forward, 1 during rewind, and 2 otherwise. Not ready: 2. Failure: unset.
    virtual int GetFfwFbwStatus() = 0;

    /// Returns the play state, an #iPodPlayerPlayStatus. Not ready: 255. Failure: unset.
    virtual int GetPlayStatus() = 0;

    /// Selects the shuffle mode; only its low 8 bits are sent. The service confirms with OnIpodShuffleModeChange().
    /// Failure: in the log only.
    virtual void SetShuffleMode(iPodPlayerShuffleStatus mode) = 0;

    /// Selects the repeat mode; only its low 8 bits are sent. The service confirms with OnIpodRepeatModeChange().
    /// Failure: in the log only.
    virtual void SetRepeatMode(iPodPlayerRepeatStatus mode) = 0;

    /// Returns the shuffle mode, an #iPodPlayerShuffleStatus. Not ready: 255. Failure: 255.
    virtual int GetShuffleMode() = 0;

    /// Returns the repeat mode, an #iPodPlayerRepeatStatus. Not ready: 0. Failure: 0.
    virtual int GetRepeatMode() = 0;

    /// Presses or releases an accessory button; true when the device accepted it. Not ready: false. Failure: false.
    virtual bool SetButtonStatus(iPodPlayerButtonControl control) = 0;

    /// Informs the device whether the head unit receives its audio (non-zero) or not. Failure: in the log only.
    virtual void SetTransmissionState(unsigned char state) = 0;

    /// Returns the index of the playing entry within the playing list, from 0; -1 when nothing plays. Not ready: -1.
    /// Failure: unset.
    virtual int GetPlayingTrackIdx() = 0;

    /// Returns the number of entries of the playing list. Not ready: 0. Failure: unset.
    virtual int GetPlayingListItemsAmount() = 0;

    /// Returns the number of entries of the current database level, or of the top level when @p fromTop is not 0.
    /// Not ready: 0. Failure: unset.
    virtual int GetCurDBListItemsAmount(int fromTop) = 0;

    /// Reads a page of the playing list. The five other page requests work the same way:
    ///
    /// @param beginIdx  first index, from 0
    /// @param endIdx    last index, inclusive; both are passed to the service unchecked
    /// @param list      replaced by all names in the shared vector of this kind of list, regardless of the requested
    ///                  range; each name ends at its first NUL or after 256 bytes
    /// @return 1 when the service filled the page, else 0. Not ready: 0, with @p list unchanged.
    ///
    /// **After a failed call** the result is 0 and @p list holds the previous page of this kind: check the
    /// result before the list. Two threads must not request the same kind of page at the same time.
    virtual int GetPlayingListItems(int beginIdx, int endIdx, std::vector<std::string>& list) = 0;

    /// Reads a page of the current level of the music database. Sets @p bFolder to 1 if its entries can be entered and
    /// to 0 if they are songs, and @p bDBRoot to 1 at the root, else to 0. Not ready, failure: both unchanged.
    virtual int GetCurDBListItems(int beginIdx, int endIdx, std::vector<std::string>& list, int& bFolder,
                                  int& bDBRoot) = 0;

    /// Reads the pinyin forms of the same level, entry for entry. Otherwise like GetCurDBListItems().
    virtual int GetCurDBListItemsPinyin(int beginIdx, int endIdx, std::vector<std::string>& list, int& bFolder,
                                        int& bDBRoot) = 0;

    /// Reads a page of the list that the device is updating.
    virtual int GetUpdateListItems(int beginIdx, int endIdx, std::vector<std::string>& list) = 0;

    /// Reads the pinyin forms of the same list, entry for entry.
    virtual int GetUpdateListItemsPinyin(int beginIdx, int endIdx, std::vector<std::string>& list) = 0;

    /// Plays the current database level, starting at entry @p index (from 0). The level becomes the playing list.
    /// Failure: in the log only.
    virtual void PlayDBList(int index) = 0;

    /// Jumps to entry @p index (from 0) of the playing list. Failure: in the log only.
    virtual void PlayPlayingList(int index) = 0;

    /// Goes to the root of the database. Not ready: false. Failure: unset.
    virtual bool EnterDBRoot() = 0;

    /// Returns whether the current level is the root. Not ready: false. Failure: unset.
    virtual bool IsiPodInDBRoot() = 0;

    /// Goes one level up; false at the root. Not ready: false. Failure: unset.
    virtual bool EnterDBParentList() = 0;

    /// Enters entry @p index (from 0) of the current level; false when it is a song or does not exist.
    /// Not ready: false. Failure: unset.
    virtual bool EnterDBChildList(int index) = 0;

    /// Moves playback to @p sec seconds from the start of the track. Failure: in the log only.
    virtual void Seek(int sec) = 0;

    /// Selects the device to browse, @p index from 0; false when no device has that index. Not ready: false.
    /// Failure: false.
    virtual bool EnterDeviceChildList(int index) = 0;

    /// Reads the names of the attached devices: the whole list, otherwise like the page requests above.
    virtual int GetDeviceList(std::vector<std::string>& list) = 0;

    /// Returns the number of attached devices. Not ready: 0. Failure: unset.
    virtual int GetDeviceAmount() = 0;

    /// Skips to the next track; true when the device did. Not ready: false. Failure: false.
    virtual bool Next() = 0;

    /// Skips to the previous track; true when the device did. Not ready: false. Failure: false.
    virtual bool Previous() = 0;

    /// Returns the artwork of the playing track. Not ready: words 1, 0, 0, 0 and no image. Failure: words 0, 0, 0, 0
    /// and the image of the last successful request. Two threads must not request artwork at the same time.
    virtual QBXTrackArtwork GetPlayingTrackAlbumArtwork() = 0;

    /// Fast-forwards until StopFfwFbw(); true if the device started. Not ready: false. Failure: false.
    virtual bool FastForward() = 0;

    /// Rewinds until StopFfwFbw(); true if the device started. Not ready: false. Failure: false.
    virtual bool FastBackward() = 0;

    /// Stops fast-forward or rewind; true when the device stopped. Not ready: false. Failure: false.
    virtual bool StopFfwFbw() = 0;

    /// Puts the head unit's USB hub into an electrical test mode; 0 ends it. For production and maintenance only.
    /// Failure: in the log only.
    virtual void SetHUBTestMode(unsigned char mode) = 0;

    /// Writes the detection status into the lowest byte of @p status; the caller sets the others to 0 first.
    /// @p serialNumber is **not** returned and stays unchanged: it arrives with the event
    /// OnCarplayDeviceDetectStatusChange(). Not ready, failure: both unchanged.
    virtual void GetCarplayDeviceDetectStatus(QBXAppleDeviceDetectStatus& status, std::string& serialNumber) = 0;

    /// Requests the device's name, which is **not** returned: @p name stays unchanged. Failure: in the log only.
    virtual void GetIpodName(std::string& name) = 0;

    /// Requests the foreground app, which is **not** returned: @p bundleName stays unchanged. It arrives with the event
    /// OnIpodAPPBundleNameChange(). Failure: in the log only.
    virtual void GetIpodAPPBundleName(std::string& bundleName) = 0;

    /// Requests that the device start the app @p AppBundleID (a bundle identifier); 1 if the service sent the request.
    /// Not ready, failure: 0.
    virtual int EapLaunchApp(std::string& AppBundleID) = 0;

    /// Sends @p data on an accessory session; 1 when the service accepted it. Not ready, failure: 0.
    /// Calls must not overlap: there is one write buffer. An empty payload is sent, too.
    ///
    /// @throws boost::interprocess::bad_alloc  the payload does not fit into the segment of 1 MiB; no call is made
    /// @throws boost::interprocess::lock_exception  the segment is locked by a process that died (after 10 seconds);
    ///         no call is made
    /// @throws boost::interprocess::interprocess_exception  the segment is damaged or was never attached; no call is
    ///         made
    virtual int EapWrite(unsigned short SessionID, std::vector<unsigned char>& data) = 0;

    /// Returns the CarLife detection status, a #QBXAppleDeviceDetectStatus. Not ready: 1. Failure: unset.
    virtual int GetCarlifeDeviceDetectStatus() = 0;

    /// Announces the head unit's accessory protocols; each text is truncated to its first 255 bytes. Failure: in the
    /// log only.
    virtual void EapInit(EAPInfo info) = 0;

    /// Notifies the service of the state of the CarPlay session (non-zero is true). Returns without waiting for the
    /// answer; a failure shows in the log only, once the main loop has run.
    virtual void CarPlayConnectStatusNotify(int isconnected, int iswifi) = 0;
};

#pragma GCC visibility push(default)

/// Returns the player object of this process, built at the first call. Never null. Owned by the library.
///
/// The first call attaches the shared-memory segments, creating them where they are missing.
///
/// @throws boost::interprocess::interprocess_exception  the segments cannot be attached: access denied, no
///         space, damaged, made for another word size, never finished by their creator (after 5 seconds), or
///         locked by a process that died (after 10 seconds). The attachment is not retried. The lock that guards the
///         creation stays held: a second call on the same thread returns a player with commands but without shared
///         data; on any other thread it blocks forever. End the process, or continue without the player.
IQBXIpodPlayer* QBX_GetIpodPlayer();

/// Deletes the player object; has no effect if there is none. A later QBX_GetIpodPlayer() builds a new one, which needs
/// InitInstance() and its listeners again. Events in flight for the deleted object are dropped. Must not be called
/// inside a callback: the running dispatch uses the object.
void QBX_DestroyIpodPlayer();

#pragma GCC visibility pop
