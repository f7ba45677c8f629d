/// @file
/// The player object: the commands of IQBXIpodPlayer, and the receiver of the service's events, which it forwards to
/// the registered listeners. One object per process at a time; see IQBXIpodPlayer.h for its use.
#pragma once

#include <IQBXIpodPlayer.h>
#include <ipod_dbus.h>

class QBXIpod_MediaPlayer_Client : public IQBXIpodPlayer, public IQBXAppListener
{
public:
    QBXIpod_MediaPlayer_Client();
    ~QBXIpod_MediaPlayer_Client() override;

    bool InitInstance() override;
    bool ExitInstance() override;
    void InitListener() override {}
    void ExitListener() override {}
    void OnListenerRemoved(IQBXIpodPlayerListener* listener) override;

    // Commands.
    QBXiPodTrackInfo GetCurrentMediaInfo() override;
    int Play(iPodPlayerPlayOption_e option, int confirmArg) override;
    bool Pause() override;
    bool Stop() override;
    void GetPlayPosition(int& pos, int& duration) override;
    int GetFfwFbwStatus() override;
    int GetPlayStatus() override;
    void SetShuffleMode(iPodPlayerShuffleStatus mode) override;
    void SetRepeatMode(iPodPlayerRepeatStatus mode) override;
    int GetShuffleMode() override;
    int GetRepeatMode() override;
    bool SetButtonStatus(iPodPlayerButtonControl control) override;
    void SetTransmissionState(unsigned char state) override;
    int GetPlayingTrackIdx() override;
    int GetPlayingListItemsAmount() override;
    int GetCurDBListItemsAmount(int fromTop) override;
    int GetPlayingListItems(int beginIdx, int endIdx, std::vector<std::string>& list) override;
    int GetCurDBListItems(int beginIdx, int endIdx, std::vector<std::string>& list, int& bFolder,
                          int& bDBRoot) override;
    int GetCurDBListItemsPinyin(int beginIdx, int endIdx, std::vector<std::string>& list, int& bFolder,
                                int& bDBRoot) override;
    int GetUpdateListItems(int beginIdx, int endIdx, std::vector<std::string>& list) override;
    int GetUpdateListItemsPinyin(int beginIdx, int endIdx, std::vector<std::string>& list) override;
    void PlayDBList(int index) override;
    void PlayPlayingList(int index) override;
    bool EnterDBRoot() override;
    bool IsiPodInDBRoot() override;
    bool EnterDBParentList() override;
    bool EnterDBChildList(int index) override;
    void Seek(int sec) override;
    bool EnterDeviceChildList(int index) override;
    int GetDeviceList(std::vector<std::string>& list) override;
    int GetDeviceAmount() override;
    bool Next() override;
    bool Previous() override;
    QBXTrackArtwork GetPlayingTrackAlbumArtwork() override;
    bool FastForward() override;
    bool FastBackward() override;
    bool StopFfwFbw() override;
    void SetHUBTestMode(unsigned char mode) override;
    void GetCarplayDeviceDetectStatus(QBXAppleDeviceDetectStatus& status, std::string& serialNumber) override;
    void GetIpodName(std::string& name) override;
    void GetIpodAPPBundleName(std::string& bundleName) override;
    int EapLaunchApp(std::string& AppBundleID) override;
    int EapWrite(unsigned short SessionID, std::vector<unsigned char>& data) override;
    int GetCarlifeDeviceDetectStatus() override;
    void EapInit(EAPInfo info) override;
    void CarPlayConnectStatusNotify(int isconnected, int iswifi) override;

    // Events of the service, forwarded to the listeners.
    void OnIpodDeviceStatusChange(QBXAppleDeviceDetectStatus status, int mediaRestart) override;
    void OnPlayStatusChanged(iPodPlayerPlayStatus status) override;
    void OnIpodRepeatModeChange(iPodPlayerRepeatStatus mode) override;
    void OnIpodShuffleModeChange(iPodPlayerShuffleStatus mode) override;
    void OnIpodPlayingTrackChange(int index, QBXiPodTrackInfo info) override;
    void OnIpodPlayingListAmountChange(int amount) override;
    void OnIpodSourceValidStatusChange(int valid) override;
    void OnIpodArtworkChange(QBXTrackArtwork artwork) override;
    void OnCarplayDeviceDetectStatusChange(QBXAppleDeviceDetectStatus status, std::string serialNumber) override;
    void OnIpodPhoneCallChange(const iPodPhoneCall_t& call) override;
    void OnIpodBatteryChange(const iPodBattery_t& battery) override;
    void OnIpodLocationStatusChange(LocationStatus status) override;
    void OnIpodAPPBundleNameChange(std::string bundleName) override;
    void OnIpodStartEapSession(unsigned char protocol, unsigned short session) override;
    void OnIpodStopEapSession(unsigned short session) override;
    void OnIpodReceiveEapData(unsigned short session, std::vector<unsigned char>& data) override;
    void OnCarlifeDeviceDetectStatusChange(QBXAppleDeviceDetectStatus status) override;
    void OnWirelessCarPlayUpdate(bool available, const std::string& deviceAddress) override;
    void OnOOBPairingInfo(std::string btAddress, const std::vector<unsigned char>& bytes) override;

    /// Not the listener's OnPlayProgressChange, which keeps its empty body here: the spellings differ intentionally.
    virtual void OnPlayProgressChanged(int pos, int duration);

private:
    void InitShareMemory();
    bool InitDBusConnect();
    void RegisterDBusSignal();
};
