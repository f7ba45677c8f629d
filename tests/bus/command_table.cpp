#include "bus/command_table.h"

#include <cctype>
#include <type_traits>

#include "support/text.h"
#include "support/variant_text.h"

namespace test
{
namespace
{
using Player = IQBXIpodPlayer;
using Names = std::vector<std::string>;

constexpr char kVoid[] = "void";

// The argument of a method whose parameter is a record.
std::string VariantOf(const std::string& bytes)
{
    return std::string("(").append(BytesInVariant(bytes)).append(",)");
}

std::string Slot(const std::string& text)
{
    return text + std::string(256 - text.size(), '\0');
}

// Calls a command whose arguments the table knows.
template <class Result, class... Parameters, class... Arguments>
auto Call(Result (Player::*command)(Parameters...), Arguments... arguments)
{
    return [=](Player& player) -> std::string
    {
        if constexpr (std::is_void_v<Result>)
            return (player.*command)(static_cast<Parameters>(arguments)...), kVoid;
        else
            return Text((player.*command)(static_cast<Parameters>(arguments)...));
    };
}

template <class Fetch, class... Range>
auto List(Fetch fetch, Range... range)
{
    return [=](Player& player)
    {
        Names list = {"before"};
        const int result = (player.*fetch)(range..., list);
        return Join({Text(result), Text(list)}, ", ");
    };
}

template <class Fetch>
auto DatabaseList(Fetch fetch, int begin, int end)
{
    return [=](Player& player)
    {
        Names list = {"before"};
        int folder = 77;
        int root = 88;
        const int result = (player.*fetch)(begin, end, list, folder, root);
        return Join({Text(result), Text(list), Text(folder), Text(root)}, ", ");
    };
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
auto AfterReading(Read read)
{
    return [=](Player& player)
    {
        std::string text = "abc";
        (player.*read)(text);
        return Text(text);
    };
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

using Lines = std::vector<CommandLine>;

Lines Logs(const char* text, const char* format)
{
    return {{text, format}};
}

Lines Logs(const char* text)
{
    return Logs(text, text);
}

std::vector<Command> Playback()
{
    return {
        {"Pause", Call(&Player::Pause), "()", "(true,)", "true", "false", kUnset, "Pause", Lines(),
         Logs("Pause()", "%s()")},
        {"Stop", Call(&Player::Stop), "()", "(true,)", "true", "false", kUnset, "Stop", Lines(),
         Logs("Stop()", "%s()")},
        {"GetPlayPosition", PlayPosition, "()", "(61000, 240000)", "61000, 240000", "77, 88", "77, 88"},
        {"GetFfwFbwStatus", Call(&Player::GetFfwFbwStatus), "()", "(1,)", "1", "2", kUnset},
        {"GetPlayStatus", Call(&Player::GetPlayStatus), "()", "(-3,)", "-3", "255", kUnset},
        {"Seek", Call(&Player::Seek, -12), "(-12,)", "()", kVoid, kVoid, kVoid},
        {"Next", Call(&Player::Next), "()", "(true,)", "true", "false", "false"},
        {"Previous", Call(&Player::Previous), "()", "(true,)", "true", "false", "false"},
        {"FastForward", Call(&Player::FastForward), "()", "(true,)", "true", "false", "false"},
        {"FastBackward", Call(&Player::FastBackward), "()", "(true,)", "true", "false", "false"},
        {"StopFfwFbw", Call(&Player::StopFfwFbw), "()", "(true,)", "true", "false", "false"},
        {"SetShuffleMode", Call(&Player::SetShuffleMode, 0x102), "(0x02,)", "()", kVoid, kVoid, kVoid},
        {"SetRepeatMode", Call(&Player::SetRepeatMode, 0x301), "(0x01,)", "()", kVoid, kVoid, kVoid},
        {"GetShuffleMode", Call(&Player::GetShuffleMode), "()", "(1,)", "1", "255", "255"},
        {"GetRepeatMode", Call(&Player::GetRepeatMode), "()", "(2,)", "2", "0", "0"},
        {"SetButtonStatus", Call(&Player::SetButtonStatus, iPodPlayerButtonControl{1, 0x2030405, 0xfffffffe}),
         VariantOf({1, 0, 0, 0, 5, 4, 3, 2, '\xfe', '\xff', '\xff', '\xff'}), "(true,)", "true", "false", "false"},
        {"SetTransmissionState", Call(&Player::SetTransmissionState, 200), "(0xc8,)", "()", kVoid, kVoid, kVoid},
        {"SetHUBTestMode", Call(&Player::SetHUBTestMode, 7), "(0x07,)", "()", kVoid, kVoid, kVoid, "SetHubTestMode",
         Logs("SetHUBTestMode()")},
    };
}

std::vector<Command> Browsing()
{
    return {
        {"GetPlayingTrackIdx", Call(&Player::GetPlayingTrackIdx), "()", "(5,)", "5", "-1", kUnset},
        {"GetPlayingListItemsAmount", Call(&Player::GetPlayingListItemsAmount), "()", "(70000,)", "70000", "0", kUnset},
        {"GetCurDBListItemsAmount", Call(&Player::GetCurDBListItemsAmount, 256), "(true,)", "(9,)", "9", "0", kUnset,
         "GetCurDbListItemsAmount"},
        {"PlayDBList", Call(&Player::PlayDBList, -1), "(-1,)", "()", kVoid, kVoid, kVoid, "PlayDbList"},
        {"PlayPlayingList", Call(&Player::PlayPlayingList, 8), "(8,)", "()", kVoid, kVoid, kVoid},
        {"EnterDBRoot", Call(&Player::EnterDBRoot), "()", "(true,)", "true", "false", kUnset, "EnterDbRoot"},
        {"IsiPodInDBRoot", Call(&Player::IsiPodInDBRoot), "()", "(true,)", "true", "false", kUnset, "IsIPodInDbRoot"},
        {"EnterDBParentList", Call(&Player::EnterDBParentList), "()", "(true,)", "true", "false", kUnset,
         "EnterDbParentList"},
        {"EnterDBChildList", Call(&Player::EnterDBChildList, 4), "(4,)", "(true,)", "true", "false", kUnset,
         "EnterDbChildList"},
        {"EnterDeviceChildList", Call(&Player::EnterDeviceChildList, 1), "(1,)", "(true,)", "true", "false", "false"},
        {"GetDeviceAmount", Call(&Player::GetDeviceAmount), "()", "(3,)", "3", "0", kUnset},
    };
}

std::vector<Command> Pages()
{
    return {
        {"GetPlayingListItems", List(&Player::GetPlayingListItems, 9, -1), "(9, -1)", "(true,)", "1, []",
         "0, [\"before\"]", "0, []"},
        {"GetCurDBListItems", DatabaseList(&Player::GetCurDBListItems, 0, 49), "(0, 49)", "(false, true, true)",
         "1, [], 0, 1", "0, [\"before\"], 77, 88", "0, [], 77, 88", "GetCurDbListItems"},
        {"GetCurDBListItemsPinyin", DatabaseList(&Player::GetCurDBListItemsPinyin, 5, 2), "(5, 2)",
         "(true, false, true)", "1, [], 1, 0", "0, [\"before\"], 77, 88", "0, [], 77, 88", "GetCurDbListItemsPinyin"},
        {"GetUpdateListItems", List(&Player::GetUpdateListItems, -7, -3), "(-7, -3)", "(true,)", "1, []",
         "0, [\"before\"]", "0, []"},
        {"GetUpdateListItemsPinyin", List(&Player::GetUpdateListItemsPinyin, 1, 2), "(1, 2)", "(true,)", "1, []",
         "0, [\"before\"]", "0, []"},
        {"GetDeviceList", List(&Player::GetDeviceList), "()", "(true,)", "1, []", "0, [\"before\"]", "0, []"},
    };
}

std::vector<Command> MediaDetectionAndTexts()
{
    return {
        {"GetCurrentMediaInfo", Call(&Player::GetCurrentMediaInfo), "()",
         VariantOf(TrackRecord({"a", "b", "c", "d"}, {1, 2, 3, 4})), R"("a", "b", "c", "d", 1, 2, 3, 4)", kUnset,
         R"("", "", "", "", 0, 0, 0, 0)"},
        {"GetPlayingTrackAlbumArtwork", Call(&Player::GetPlayingTrackAlbumArtwork), "()",
         "(<[byte 1, 0, 0, 0, 2, 0, 0, 0, 3, 0, 0, 0, 4, 0, 0, 0]>,)", "1, 2, 3, 4, []", "1, 0, 0, 0, []",
         "0, 0, 0, 0, []"},
        {"GetCarplayDeviceDetectStatus", CarplayStatus, "()", "(255, 'SERIAL')", "16909311, \"abc\"",
         "16909060, \"abc\"", "16909060, \"abc\"", "GetCarplayDeviceDetectStatus",
         Logs("GetCarplayDeviceDetectStatus()")},
        {"GetCarlifeDeviceDetectStatus", Call(&Player::GetCarlifeDeviceDetectStatus), "()", "(2,)", "2", "1", kUnset,
         "GetCarlifeDeviceDetectStatus", Logs("GetCarlifeDeviceDetectStatus()")},
        {"GetIpodName", AfterReading(&Player::GetIpodName), "()", "('Phone',)", "\"abc\"", "\"abc\"", "\"abc\"",
         "GetIpodName", Logs("GetIpodName()"), Lines(), Logs("GetIpodName, IpodName : abc", "%s, IpodName : %s")},
        {"GetIpodAPPBundleName", AfterReading(&Player::GetIpodAPPBundleName), "()", "('com.example.maps',)", "\"abc\"",
         "\"abc\"", "\"abc\"", "GetIpodAppBundleName", Logs("GetIpodAPPBundleName()"), Lines(),
         Logs("GetIpodAPPBundleName, IpodAPPBundleName : abc", "%s, IpodAPPBundleName : %s")},
    };
}

std::vector<Command> Accessories()
{
    return {
        {"EapInit", Call(&Player::EapInit, EAPInfo{"com.example.echo", "app"}),
         VariantOf(Slot("com.example.echo") + Slot("app")), "()", kVoid, kVoid, kVoid},
        {"EapLaunchApp", LaunchApp, "('com.example.app',)", "(true,)", "1", "0", "0"},
        {"EapWrite", Write, "(40000,)", "(true,)", "1", "0", "0"},
    };
}

// Converts names like the generator of the binding: "IsIPodInDbRoot" to "is_ipod_in_db_root".
std::string SnakeCase(const std::string& name)
{
    std::string snake;
    char before = '\0';
    for (const char c : name)
    {
        if (std::islower(before) != 0 && std::isupper(c) != 0) snake += '_';
        snake += static_cast<char>(std::tolower(c));
        before = c;
    }
    return snake;
}

std::string FailureLine(const Command& command, const std::string& reason)
{
    return std::string("100 ") + command.name + ": com_zarn_linux_ipod_call_" + SnakeCase(command.member) +
           "_sync: Failed to call dbus method. Reason: " + reason + ".";
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
        for (const auto& group : {Playback(), Browsing(), Pages(), MediaDetectionAndTexts(), Accessories()})
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
    if (!failure.empty()) lines.push_back(FailureLine(command, failure));
    return lines;
}

std::vector<std::string> ExpectedFormats(const Command& command, bool failed)
{
    std::vector<std::string> formats;
    for (const auto& lines : {command.first, command.beforeCall, command.afterCall})
        for (const CommandLine& line : lines) formats.push_back(std::string("40 ") + command.name + ": " + line.format);
    if (failed) formats.push_back(FailureLine(command, "%s"));
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
