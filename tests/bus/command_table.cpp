#include "bus/command_table.h"

#include "support/text.h"
#include "support/variant_text.h"

namespace test
{
namespace
{
using Player = IQBXIpodPlayer;
using Names = std::vector<std::string>;

const std::string kVoid = "void";

// The argument of a method whose parameter is a record.
std::string VariantOf(const std::string& bytes)
{
    return std::string("(").append(BytesInVariant(bytes)).append(",)");
}

std::string Slot(const std::string& text)
{
    return text + std::string(256 - text.size(), '\0');
}

template <class Fetch>
std::string List(Fetch fetch)
{
    Names list = {"before"};
    const int result = fetch(list);
    return Join({Text(result), Text(list)}, ", ");
}

template <class Fetch>
std::string DatabaseList(Fetch fetch)
{
    Names list = {"before"};
    int folder = 77;
    int root = 88;
    const int result = fetch(list, folder, root);
    return Join({Text(result), Text(list), Text(folder), Text(root)}, ", ");
}

std::string PlayPosition(Player& player)
{
    int pos = 77;
    int duration = 88;
    player.GetPlayPosition(pos, duration);
    return Join({Text(pos), Text(duration)}, ", ");
}

std::string CarplayStatus(Player& player)
{
    auto status = static_cast<QBXAppleDeviceDetectStatus>(0x01020304);
    std::string serial = "abc";
    player.GetCarplayDeviceDetectStatus(status, serial);
    return Join({Text(status), Text(serial)}, ", ");
}

template <class Read>
std::string AfterReading(Read read)
{
    std::string text = "abc";
    read(text);
    return Text(text);
}

std::string LaunchApp(Player& player)
{
    std::string bundle = "com.example.app";
    return Text(player.EapLaunchApp(bundle));
}

std::string Write(Player& player)
{
    std::vector<unsigned char> data = {1, 2, 3};
    return Text(player.EapWrite(40000, data));
}

std::vector<Command> Transport()
{
    return {
        {"Pause",
         [](Player& p) { return Text(p.Pause()); },
         "Pause",
         "()",
         "(true,)",
         "true",
         "false",
         kUnset,
         "com_zarn_linux_ipod_call_pause_sync",
         {},
         {{"Pause()", "%s()"}}},
        {"Stop",
         [](Player& p) { return Text(p.Stop()); },
         "Stop",
         "()",
         "(true,)",
         "true",
         "false",
         kUnset,
         "com_zarn_linux_ipod_call_stop_sync",
         {},
         {{"Stop()", "%s()"}}},
        {"GetPlayPosition", PlayPosition, "GetPlayPosition", "()", "(61000, 240000)", "61000, 240000", "77, 88",
         "77, 88", "com_zarn_linux_ipod_call_get_play_position_sync"},
        {"GetFfwFbwStatus", [](Player& p) { return Text(p.GetFfwFbwStatus()); }, "GetFfwFbwStatus", "()", "(1,)", "1",
         "2", kUnset, "com_zarn_linux_ipod_call_get_ffw_fbw_status_sync"},
        {"GetPlayStatus", [](Player& p) { return Text(p.GetPlayStatus()); }, "GetPlayStatus", "()", "(-3,)", "-3",
         "255", kUnset, "com_zarn_linux_ipod_call_get_play_status_sync"},
        {"Seek", [](Player& p) { return p.Seek(-12), kVoid; }, "Seek", "(-12,)", "()", "void", "void", "void",
         "com_zarn_linux_ipod_call_seek_sync"},
    };
}

std::vector<Command> Skipping()
{
    return {
        {"Next", [](Player& p) { return Text(p.Next()); }, "Next", "()", "(true,)", "true", "false", "false",
         "com_zarn_linux_ipod_call_next_sync"},
        {"Previous", [](Player& p) { return Text(p.Previous()); }, "Previous", "()", "(true,)", "true", "false",
         "false", "com_zarn_linux_ipod_call_previous_sync"},
        {"FastForward", [](Player& p) { return Text(p.FastForward()); }, "FastForward", "()", "(true,)", "true",
         "false", "false", "com_zarn_linux_ipod_call_fast_forward_sync"},
        {"FastBackward", [](Player& p) { return Text(p.FastBackward()); }, "FastBackward", "()", "(true,)", "true",
         "false", "false", "com_zarn_linux_ipod_call_fast_backward_sync"},
        {"StopFfwFbw", [](Player& p) { return Text(p.StopFfwFbw()); }, "StopFfwFbw", "()", "(true,)", "true", "false",
         "false", "com_zarn_linux_ipod_call_stop_ffw_fbw_sync"},
    };
}

std::vector<Command> Modes()
{
    return {
        {"SetShuffleMode", [](Player& p) { return p.SetShuffleMode(iPodPlayerShuffleStatus(0x102)), kVoid; },
         "SetShuffleMode", "(0x02,)", "()", "void", "void", "void", "com_zarn_linux_ipod_call_set_shuffle_mode_sync"},
        {"SetRepeatMode", [](Player& p) { return p.SetRepeatMode(iPodPlayerRepeatStatus(0x301)), kVoid; },
         "SetRepeatMode", "(0x01,)", "()", "void", "void", "void", "com_zarn_linux_ipod_call_set_repeat_mode_sync"},
        {"GetShuffleMode", [](Player& p) { return Text(p.GetShuffleMode()); }, "GetShuffleMode", "()", "(1,)", "1",
         "255", "255", "com_zarn_linux_ipod_call_get_shuffle_mode_sync"},
        {"GetRepeatMode", [](Player& p) { return Text(p.GetRepeatMode()); }, "GetRepeatMode", "()", "(2,)", "2", "0",
         "0", "com_zarn_linux_ipod_call_get_repeat_mode_sync"},
        {"SetButtonStatus",
         [](Player& p) {
             return Text(p.SetButtonStatus({1, 0x2030405, 0xfffffffe}));
         },
         "SetButtonStatus", VariantOf({1, 0, 0, 0, 5, 4, 3, 2, '\xfe', '\xff', '\xff', '\xff'}), "(true,)", "true",
         "false", "false", "com_zarn_linux_ipod_call_set_button_status_sync"},
        {"SetTransmissionState", [](Player& p) { return p.SetTransmissionState(200), kVoid; }, "SetTransmissionState",
         "(0xc8,)", "()", "void", "void", "void", "com_zarn_linux_ipod_call_set_transmission_state_sync"},
        {"SetHUBTestMode",
         [](Player& p) { return p.SetHUBTestMode(7), kVoid; },
         "SetHubTestMode",
         "(0x07,)",
         "()",
         "void",
         "void",
         "void",
         "com_zarn_linux_ipod_call_set_hub_test_mode_sync",
         {{"SetHUBTestMode()", "SetHUBTestMode()"}}},
    };
}

std::vector<Command> Browsing()
{
    return {
        {"GetPlayingTrackIdx", [](Player& p) { return Text(p.GetPlayingTrackIdx()); }, "GetPlayingTrackIdx", "()",
         "(5,)", "5", "-1", kUnset, "com_zarn_linux_ipod_call_get_playing_track_idx_sync"},
        {"GetPlayingListItemsAmount", [](Player& p) { return Text(p.GetPlayingListItemsAmount()); },
         "GetPlayingListItemsAmount", "()", "(70000,)", "70000", "0", kUnset,
         "com_zarn_linux_ipod_call_get_playing_list_items_amount_sync"},
        {"GetCurDBListItemsAmount", [](Player& p) { return Text(p.GetCurDBListItemsAmount(256)); },
         "GetCurDbListItemsAmount", "(true,)", "(9,)", "9", "0", kUnset,
         "com_zarn_linux_ipod_call_get_cur_db_list_items_amount_sync"},
        {"PlayDBList", [](Player& p) { return p.PlayDBList(-1), kVoid; }, "PlayDbList", "(-1,)", "()", "void", "void",
         "void", "com_zarn_linux_ipod_call_play_db_list_sync"},
        {"PlayPlayingList", [](Player& p) { return p.PlayPlayingList(8), kVoid; }, "PlayPlayingList", "(8,)", "()",
         "void", "void", "void", "com_zarn_linux_ipod_call_play_playing_list_sync"},
        {"EnterDBRoot", [](Player& p) { return Text(p.EnterDBRoot()); }, "EnterDbRoot", "()", "(true,)", "true",
         "false", kUnset, "com_zarn_linux_ipod_call_enter_db_root_sync"},
        {"IsiPodInDBRoot", [](Player& p) { return Text(p.IsiPodInDBRoot()); }, "IsIPodInDbRoot", "()", "(true,)",
         "true", "false", kUnset, "com_zarn_linux_ipod_call_is_ipod_in_db_root_sync"},
        {"EnterDBParentList", [](Player& p) { return Text(p.EnterDBParentList()); }, "EnterDbParentList", "()",
         "(true,)", "true", "false", kUnset, "com_zarn_linux_ipod_call_enter_db_parent_list_sync"},
        {"EnterDBChildList", [](Player& p) { return Text(p.EnterDBChildList(4)); }, "EnterDbChildList", "(4,)",
         "(true,)", "true", "false", kUnset, "com_zarn_linux_ipod_call_enter_db_child_list_sync"},
        {"EnterDeviceChildList", [](Player& p) { return Text(p.EnterDeviceChildList(1)); }, "EnterDeviceChildList",
         "(1,)", "(true,)", "true", "false", "false", "com_zarn_linux_ipod_call_enter_device_child_list_sync"},
        {"GetDeviceAmount", [](Player& p) { return Text(p.GetDeviceAmount()); }, "GetDeviceAmount", "()", "(3,)", "3",
         "0", kUnset, "com_zarn_linux_ipod_call_get_device_amount_sync"},
    };
}

std::vector<Command> Lists()
{
    return {
        {"GetPlayingListItems",
         [](Player& p) { return List([&](Names& list) { return p.GetPlayingListItems(9, -1, list); }); },
         "GetPlayingListItems", "(9, -1)", "(true,)", "1, []", "0, [\"before\"]", "0, []",
         "com_zarn_linux_ipod_call_get_playing_list_items_sync"},
        {"GetCurDBListItems",
         [](Player& p)
         { return DatabaseList([&](Names& l, int& f, int& r) { return p.GetCurDBListItems(0, 49, l, f, r); }); },
         "GetCurDbListItems", "(0, 49)", "(false, true, true)", "1, [], 0, 1", "0, [\"before\"], 77, 88",
         "0, [], 77, 88", "com_zarn_linux_ipod_call_get_cur_db_list_items_sync"},
        {"GetCurDBListItemsPinyin",
         [](Player& p)
         { return DatabaseList([&](Names& l, int& f, int& r) { return p.GetCurDBListItemsPinyin(5, 2, l, f, r); }); },
         "GetCurDbListItemsPinyin", "(5, 2)", "(true, false, true)", "1, [], 1, 0", "0, [\"before\"], 77, 88",
         "0, [], 77, 88", "com_zarn_linux_ipod_call_get_cur_db_list_items_pinyin_sync"},
        {"GetUpdateListItems",
         [](Player& p) { return List([&](Names& list) { return p.GetUpdateListItems(-7, -3, list); }); },
         "GetUpdateListItems", "(-7, -3)", "(true,)", "1, []", "0, [\"before\"]", "0, []",
         "com_zarn_linux_ipod_call_get_update_list_items_sync"},
        {"GetUpdateListItemsPinyin",
         [](Player& p) { return List([&](Names& list) { return p.GetUpdateListItemsPinyin(1, 2, list); }); },
         "GetUpdateListItemsPinyin", "(1, 2)", "(true,)", "1, []", "0, [\"before\"]", "0, []",
         "com_zarn_linux_ipod_call_get_update_list_items_pinyin_sync"},
        {"GetDeviceList", [](Player& p) { return List([&](Names& list) { return p.GetDeviceList(list); }); },
         "GetDeviceList", "()", "(true,)", "1, []", "0, [\"before\"]", "0, []",
         "com_zarn_linux_ipod_call_get_device_list_sync"},
    };
}

// GetCurrentMediaInfo() is missing: it calls the service even without a client.
std::vector<Command> ArtworkAndDetection()
{
    return {
        {"GetPlayingTrackAlbumArtwork", [](Player& p) { return Text(p.GetPlayingTrackAlbumArtwork()); },
         "GetPlayingTrackAlbumArtwork", "()", "(<[byte 1, 0, 0, 0, 2, 0, 0, 0, 3, 0, 0, 0, 4, 0, 0, 0]>,)",
         "1, 2, 3, 4, []", "1, 0, 0, 0, []", "0, 0, 0, 0, []",
         "com_zarn_linux_ipod_call_get_playing_track_album_artwork_sync"},
        {"GetCarplayDeviceDetectStatus",
         CarplayStatus,
         "GetCarplayDeviceDetectStatus",
         "()",
         "(255, 'SERIAL')",
         "16909311, \"abc\"",
         "16909060, \"abc\"",
         "16909060, \"abc\"",
         "com_zarn_linux_ipod_call_get_carplay_device_detect_status_sync",
         {{"GetCarplayDeviceDetectStatus()", "GetCarplayDeviceDetectStatus()"}}},
        {"GetCarlifeDeviceDetectStatus",
         [](Player& p) { return Text(p.GetCarlifeDeviceDetectStatus()); },
         "GetCarlifeDeviceDetectStatus",
         "()",
         "(2,)",
         "2",
         "1",
         kUnset,
         "com_zarn_linux_ipod_call_get_carlife_device_detect_status_sync",
         {{"GetCarlifeDeviceDetectStatus()", "GetCarlifeDeviceDetectStatus()"}}},
    };
}

std::vector<Command> Texts()
{
    return {
        {"GetIpodName",
         [](Player& p) { return AfterReading([&](std::string& text) { p.GetIpodName(text); }); },
         "GetIpodName",
         "()",
         "('Phone',)",
         "\"abc\"",
         "\"abc\"",
         "\"abc\"",
         "com_zarn_linux_ipod_call_get_ipod_name_sync",
         {{"GetIpodName()", "GetIpodName()"}},
         {},
         {{"GetIpodName, IpodName : abc", "%s, IpodName : %s"}}},
        {"GetIpodAPPBundleName",
         [](Player& p) { return AfterReading([&](std::string& text) { p.GetIpodAPPBundleName(text); }); },
         "GetIpodAppBundleName",
         "()",
         "('com.example.maps',)",
         "\"abc\"",
         "\"abc\"",
         "\"abc\"",
         "com_zarn_linux_ipod_call_get_ipod_app_bundle_name_sync",
         {{"GetIpodAPPBundleName()", "GetIpodAPPBundleName()"}},
         {},
         {{"GetIpodAPPBundleName, IpodAPPBundleName : abc", "%s, IpodAPPBundleName : %s"}}},
    };
}

std::vector<Command> Accessories()
{
    return {
        {"EapInit",
         [](Player& p) {
             return p.EapInit({"com.example.echo", "app"}), kVoid;
         },
         "EapInit", VariantOf(Slot("com.example.echo") + Slot("app")), "()", "void", "void", "void",
         "com_zarn_linux_ipod_call_eap_init_sync"},
        {"EapLaunchApp", LaunchApp, "EapLaunchApp", "('com.example.app',)", "(true,)", "1", "0", "0",
         "com_zarn_linux_ipod_call_eap_launch_app_sync"},
        {"EapWrite", Write, "EapWrite", "(40000,)", "(true,)", "1", "0", "0",
         "com_zarn_linux_ipod_call_eap_write_sync"},
    };
}

void Append(std::vector<std::string>& lines, const Command& command, const std::vector<CommandLine>& more)
{
    for (const CommandLine& line : more) lines.push_back(std::string("40 ") + command.name + ": " + line.text);
}
}  // namespace

const std::vector<Command>& Commands()
{
    static const std::vector<Command> commands = []
    {
        std::vector<Command> all;
        for (const auto& group :
             {Transport(), Skipping(), Modes(), Browsing(), Lists(), ArtworkAndDetection(), Texts(), Accessories()})
            all.insert(all.end(), group.begin(), group.end());
        return all;
    }();
    return commands;
}

std::vector<std::string> ExpectedLines(const Command& command, const std::string& failure)
{
    std::vector<std::string> lines = ExpectedLinesNotReady(command);
    Append(lines, command, command.beforeCall);
    Append(lines, command, command.afterCall);
    if (!failure.empty())
        lines.push_back(std::string("100 ") + command.name + ": " + command.generated +
                        ": Failed to call dbus method. Reason: " + failure + ".");
    return lines;
}

std::vector<std::string> ExpectedFormats(const Command& command, bool failed)
{
    std::vector<std::string> formats;
    for (const auto& lines : {command.first, command.beforeCall, command.afterCall})
        for (const CommandLine& line : lines) formats.push_back(std::string("40 ") + command.name + ": " + line.format);
    if (failed)
        formats.push_back(std::string("100 ") + command.name + ": " + command.generated +
                          ": Failed to call dbus method. Reason: %s.");
    return formats;
}

std::vector<std::string> ExpectedLinesNotReady(const Command& command)
{
    std::vector<std::string> lines;
    Append(lines, command, command.first);
    return lines;
}

std::ostream& operator<<(std::ostream& out, const Command& command)
{
    return out << command.name;
}
}  // namespace test
