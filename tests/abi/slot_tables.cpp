#include "slot_tables.h"

// Each name is written once; the pointer to member selects the interface's table.
#define ROW(Interface, operation, Result, ...) \
    MakeRow<Interface>(#operation, static_cast<Result (Interface::*)(__VA_ARGS__)>(&Interface::operation))

namespace slots
{
std::vector<Row<IQBXIpodPlayerListener>> ListenerTable()
{
    using I = IQBXIpodPlayerListener;
    using Bytes = std::vector<unsigned char>;
    return {
        ROW(I, OnIpodDeviceStatusChange, void, QBXAppleDeviceDetectStatus, int),
        ROW(I, OnPlayStatusChanged, void, iPodPlayerPlayStatus),
        ROW(I, OnPlayProgressChange, void, int, int),
        ROW(I, OnIpodRepeatModeChange, void, iPodPlayerRepeatStatus),
        ROW(I, OnIpodShuffleModeChange, void, iPodPlayerShuffleStatus),
        ROW(I, OnIpodPlayingTrackChange, void, int, QBXiPodTrackInfo),
        ROW(I, OnIpodPlayingListAmountChange, void, int),
        ROW(I, OnIpodSourceValidStatusChange, void, int),
        ROW(I, OnIpodArtworkChange, void, QBXTrackArtwork),
        ROW(I, OnCarplayDeviceDetectStatusChange, void, QBXAppleDeviceDetectStatus, std::string),
        ROW(I, OnIpodPhoneCallChange, void, const iPodPhoneCall_t&),
        ROW(I, OnIpodBatteryChange, void, const iPodBattery_t&),
        ROW(I, OnIpodLocationStatusChange, void, LocationStatus),
        ROW(I, OnIpodAPPBundleNameChange, void, std::string),
        ROW(I, OnIpodStartEapSession, void, unsigned char, unsigned short),
        ROW(I, OnIpodStopEapSession, void, unsigned short),
        ROW(I, OnIpodReceiveEapData, void, unsigned short, Bytes&),
        ROW(I, OnCarlifeDeviceDetectStatusChange, void, QBXAppleDeviceDetectStatus),
        ROW(I, OnWirelessCarPlayUpdate, void, bool, const std::string&),
        ROW(I, OnOOBPairingInfo, void, std::string, const Bytes&),
    };
}

std::vector<Row<IQBXAppListener>> AppListenerTable()
{
    using I = IQBXAppListener;
    return {
        ROW(I, OnModuleStatusChanged, void, AppBootInfo&),
        ROW(I, OnSystemBootStageNotify, void, BootStage),
        ROW(I, OnAndroidAutoAbortHandle, void, int),
        ROW(I, OnAAConnectionTimeoutNotify, void, int, const std::string&),
        ROW(I, OnReloadLogConfigNotify, void, eLogLevel),
        ROW(I, OnResourceDataChangeNotify, void),
        ROW(I, OnProcRebootNotify, void, ServiceModule),
    };
}

std::vector<Row<Registry>> RegistryTable()
{
    using I = Registry;
    using T = IQBXIpodPlayerListener;
    return {
        ROW(I, AddListener, void, T*),         ROW(I, RemoveListener, void, T*),    ROW(I, GetListeners, std::set<T*>&),
        ROW(I, GetListenerCount, std::size_t), ROW(I, LockListener, void),          ROW(I, UnlockListener, void),
        ROW(I, OnListenerAdded, void, T*),     ROW(I, OnListenerRemoved, void, T*),
    };
}

namespace
{
// The operations of the player, in three consecutive groups, each named after its main subject.
std::vector<Row<IQBXIpodPlayer>> PlaybackRows()
{
    using I = IQBXIpodPlayer;
    using T = IQBXIpodPlayerListener;
    return {
        ROW(I, InitInstance, bool),
        ROW(I, ExitInstance, bool),
        ROW(I, InitListener, void),
        ROW(I, ExitListener, void),
        ROW(I, OnListenerAdded, void, T*),
        ROW(I, OnListenerRemoved, void, T*),
        ROW(I, GetCurrentMediaInfo, QBXiPodTrackInfo),
        ROW(I, Play, int, iPodPlayerPlayOption_e, int),
        ROW(I, Pause, bool),
        ROW(I, Stop, bool),
        ROW(I, GetPlayPosition, void, int&, int&),
        ROW(I, GetFfwFbwStatus, int),
        ROW(I, GetPlayStatus, int),
        ROW(I, SetShuffleMode, void, iPodPlayerShuffleStatus),
        ROW(I, SetRepeatMode, void, iPodPlayerRepeatStatus),
        ROW(I, GetShuffleMode, int),
        ROW(I, GetRepeatMode, int),
        ROW(I, SetButtonStatus, bool, iPodPlayerButtonControl),
        ROW(I, SetTransmissionState, void, unsigned char),
    };
}

std::vector<Row<IQBXIpodPlayer>> ListRows()
{
    using I = IQBXIpodPlayer;
    using Names = std::vector<std::string>;
    return {
        ROW(I, GetPlayingTrackIdx, int),
        ROW(I, GetPlayingListItemsAmount, int),
        ROW(I, GetCurDBListItemsAmount, int, int),
        ROW(I, GetPlayingListItems, int, int, int, Names&),
        ROW(I, GetCurDBListItems, int, int, int, Names&, int&, int&),
        ROW(I, GetCurDBListItemsPinyin, int, int, int, Names&, int&, int&),
        ROW(I, GetUpdateListItems, int, int, int, Names&),
        ROW(I, GetUpdateListItemsPinyin, int, int, int, Names&),
        ROW(I, PlayDBList, void, int),
        ROW(I, PlayPlayingList, void, int),
        ROW(I, EnterDBRoot, bool),
        ROW(I, IsiPodInDBRoot, bool),
        ROW(I, EnterDBParentList, bool),
        ROW(I, EnterDBChildList, bool, int),
    };
}

std::vector<Row<IQBXIpodPlayer>> DeviceRows()
{
    using I = IQBXIpodPlayer;
    using Names = std::vector<std::string>;
    return {
        ROW(I, Seek, void, int),
        ROW(I, EnterDeviceChildList, bool, int),
        ROW(I, GetDeviceList, int, Names&),
        ROW(I, GetDeviceAmount, int),
        ROW(I, Next, bool),
        ROW(I, Previous, bool),
        ROW(I, GetPlayingTrackAlbumArtwork, QBXTrackArtwork),
        ROW(I, FastForward, bool),
        ROW(I, FastBackward, bool),
        ROW(I, StopFfwFbw, bool),
        ROW(I, SetHUBTestMode, void, unsigned char),
        ROW(I, GetCarplayDeviceDetectStatus, void, QBXAppleDeviceDetectStatus&, std::string&),
        ROW(I, GetIpodName, void, std::string&),
        ROW(I, GetIpodAPPBundleName, void, std::string&),
        ROW(I, EapLaunchApp, int, std::string&),
        ROW(I, EapWrite, int, unsigned short, std::vector<unsigned char>&),
        ROW(I, GetCarlifeDeviceDetectStatus, int),
        ROW(I, EapInit, void, EAPInfo),
        ROW(I, CarPlayConnectStatusNotify, void, int, int),
    };
}
}  // namespace

std::vector<Row<IQBXIpodPlayer>> PlayerTable()
{
    std::vector<Row<IQBXIpodPlayer>> table;
    for (const auto& rows : {PlaybackRows(), ListRows(), DeviceRows()})
        table.insert(table.end(), rows.begin(), rows.end());
    return table;
}

std::size_t ClientProgressSlot()
{
    return kFirstSlot + ListenerTable().size() + PlayerTable().size();
}
}  // namespace slots
