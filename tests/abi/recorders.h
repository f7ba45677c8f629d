/// @file
/// Implementations of the interfaces that record which operation was called.
#pragma once

#include <IQBXIpodPlayer.h>

#include <string>

namespace slots
{
/// The last call to any recorder. Cleared by the test.
inline std::string called;

template <class Result>
Result Note(const char* name)
{
    called = name;
    return Result();
}

// The body of every override: the operation's own name.
#define NOTES(Result)                  \
    override                           \
    {                                  \
        return Note<Result>(__func__); \
    }

class RecordingListener : public IQBXIpodPlayerListener
{
public:
    ~RecordingListener() override { called = "~IQBXIpodPlayerListener"; }
    void OnIpodDeviceStatusChange(QBXAppleDeviceDetectStatus,
                                  int) NOTES(void) void OnPlayStatusChanged(iPodPlayerPlayStatus)
        NOTES(void) void OnPlayProgressChange(int, int) NOTES(void) void OnIpodRepeatModeChange(iPodPlayerRepeatStatus)
            NOTES(void) void OnIpodShuffleModeChange(iPodPlayerShuffleStatus) NOTES(void) void OnIpodPlayingTrackChange(
                int, QBXiPodTrackInfo) NOTES(void) void OnIpodPlayingListAmountChange(int)
                NOTES(void) void OnIpodSourceValidStatusChange(int) NOTES(void) void OnIpodArtworkChange(
                    QBXTrackArtwork) NOTES(void) void OnCarplayDeviceDetectStatusChange(QBXAppleDeviceDetectStatus,
                                                                                        std::string)
                    NOTES(void) void OnIpodPhoneCallChange(const iPodPhoneCall_t&) NOTES(void) void OnIpodBatteryChange(
                        const iPodBattery_t&) NOTES(void) void OnIpodLocationStatusChange(LocationStatus)
                        NOTES(void) void OnIpodAPPBundleNameChange(std::string)
                            NOTES(void) void OnIpodStartEapSession(unsigned char, unsigned short)
                                NOTES(void) void OnIpodStopEapSession(unsigned short)
                                    NOTES(void) void OnIpodReceiveEapData(unsigned short, std::vector<unsigned char>&)
                                        NOTES(void) void OnCarlifeDeviceDetectStatusChange(QBXAppleDeviceDetectStatus)
                                            NOTES(void) void OnWirelessCarPlayUpdate(bool, const std::string&)
                                                NOTES(void) void OnOOBPairingInfo(std::string,
                                                                                  const std::vector<unsigned char>&)
                                                    NOTES(void)
};

class RecordingAppListener : public IQBXAppListener
{
public:
    ~RecordingAppListener() override { called = "~IQBXAppListener"; }
    void OnModuleStatusChanged(AppBootInfo&) NOTES(void) void OnSystemBootStageNotify(BootStage)
        NOTES(void) void OnAndroidAutoAbortHandle(int)
            NOTES(void) void OnAAConnectionTimeoutNotify(int, const std::string&)
                NOTES(void) void OnReloadLogConfigNotify(eLogLevel) NOTES(void) void OnResourceDataChangeNotify()
                    NOTES(void) void OnProcRebootNotify(ServiceModule) NOTES(void)
};

class RecordingRegistry : public IQBXListener<IQBXIpodPlayerListener>
{
public:
    ~RecordingRegistry() override { called = "~IQBXListener"; }
    void AddListener(IQBXIpodPlayerListener*) NOTES(void) void RemoveListener(IQBXIpodPlayerListener*)
        NOTES(void) std::set<IQBXIpodPlayerListener*>& GetListeners() override
    {
        called = __func__;
        return m_none;
    }
    std::size_t GetListenerCount() NOTES(std::size_t) void LockListener() NOTES(void) void UnlockListener()
        NOTES(void) void OnListenerAdded(IQBXIpodPlayerListener*)
            NOTES(void) void OnListenerRemoved(IQBXIpodPlayerListener*) NOTES(void)

                private : std::set<IQBXIpodPlayerListener*> m_none;
};

class RecordingPlayer : public IQBXIpodPlayer
{
public:
    ~RecordingPlayer() override { called = "~IQBXIpodPlayer"; }
    bool InitInstance() NOTES(bool) bool ExitInstance() NOTES(bool) void InitListener() NOTES(void) void ExitListener()
        NOTES(void) void OnListenerAdded(IQBXIpodPlayerListener*)
            NOTES(void) void OnListenerRemoved(IQBXIpodPlayerListener*) NOTES(void) QBXiPodTrackInfo
        GetCurrentMediaInfo() NOTES(QBXiPodTrackInfo) int Play(iPodPlayerPlayOption_e, int) NOTES(int) bool Pause()
            NOTES(bool) bool Stop() NOTES(bool) void GetPlayPosition(int&, int&) NOTES(void) int GetFfwFbwStatus()
                NOTES(int) int GetPlayStatus() NOTES(int) void SetShuffleMode(iPodPlayerShuffleStatus)
                    NOTES(void) void SetRepeatMode(iPodPlayerRepeatStatus) NOTES(void) int GetShuffleMode()
                        NOTES(int) int GetRepeatMode() NOTES(int) bool SetButtonStatus(iPodPlayerButtonControl) NOTES(
                            bool) void SetTransmissionState(unsigned char) NOTES(void) int GetPlayingTrackIdx()
                            NOTES(int) int GetPlayingListItemsAmount() NOTES(int) int GetCurDBListItemsAmount(int)
                                NOTES(int) int GetPlayingListItems(int, int, std::vector<std::string>&) NOTES(
                                    int) int GetCurDBListItems(int, int, std::vector<std::string>&, int&, int&)
                                    NOTES(int) int GetCurDBListItemsPinyin(int, int, std::vector<std::string>&, int&,
                                                                           int&)
                                        NOTES(int) int GetUpdateListItems(int, int, std::vector<std::string>&)
                                            NOTES(int) int GetUpdateListItemsPinyin(int, int, std::vector<std::string>&)
                                                NOTES(int) void PlayDBList(int) NOTES(void) void PlayPlayingList(int)
                                                    NOTES(void) bool EnterDBRoot() NOTES(bool) bool IsiPodInDBRoot()
                                                        NOTES(bool) bool EnterDBParentList() NOTES(
                                                            bool) bool EnterDBChildList(int) NOTES(bool) void Seek(int)
                                                            NOTES(void) bool EnterDeviceChildList(int)
                                                                NOTES(bool) int GetDeviceList(std::vector<std::string>&)
                                                                    NOTES(int) int GetDeviceAmount()
                                                                        NOTES(int) bool Next()
                                                                            NOTES(bool) bool Previous()
                                                                                NOTES(bool) QBXTrackArtwork
        GetPlayingTrackAlbumArtwork() NOTES(QBXTrackArtwork) bool FastForward() NOTES(bool) bool FastBackward()
            NOTES(bool) bool StopFfwFbw() NOTES(bool) void SetHUBTestMode(unsigned char)
                NOTES(void) void GetCarplayDeviceDetectStatus(QBXAppleDeviceDetectStatus&, std::string&)
                    NOTES(void) void GetIpodName(std::string&) NOTES(void) void GetIpodAPPBundleName(std::string&)
                        NOTES(void) int EapLaunchApp(std::string&)
                            NOTES(int) int EapWrite(unsigned short, std::vector<unsigned char>&)
                                NOTES(int) int GetCarlifeDeviceDetectStatus() NOTES(int) void EapInit(EAPInfo)
                                    NOTES(void) void CarPlayConnectStatusNotify(int, int) NOTES(void)
};

#undef NOTES
}  // namespace slots
