// Devices: those attached, what was detected of them, and their buttons.
#include <algorithm>

#include "level.h"
#include "names.h"
#include "table.h"
#include "text.h"
#include "verbs.h"

namespace ctl
{
namespace
{
std::vector<std::string> ReadDevices(Session& session)
{
    std::vector<std::string> names;
    if (session.Ask([](IQBXIpodPlayer& player) { return player.GetDeviceAmount(); }) <= 0) return names;
    if (session.Ask([&](IQBXIpodPlayer& player) { return player.GetDeviceList(names); }) != 1)
        throw Failure(kNothingDone, "the service has no list of its devices");
    return names;
}

Answer ShowDevices(Context& context)
{
    const std::vector<std::string> names = ReadDevices(context.session);
    Json devices = Json::array();
    std::vector<std::vector<std::string>> rows;
    for (std::size_t i = 0; i < names.size(); ++i)
    {
        devices.push_back({{"index", i}, {"name", names[i]}});
        rows.push_back({std::to_string(i), Printable(names[i])});
    }
    const std::string none = context.out.terminal() ? "no device is attached" : "";
    return {{{"verb", "devices"}, {"devices", devices}}, rows.empty() ? none : Table(rows, context.out.width())};
}

Answer EnterDevice(Session& session, int index)
{
    const std::vector<std::string> names = ReadDevices(session);
    CheckIndex(index, static_cast<int>(names.size()), "the device list");
    if (!session.Ask([&](IQBXIpodPlayer& player) { return player.EnterDeviceChildList(index); }))
        throw Failure(kNothingDone, "the service did not enter the device; see ipodctl devices");
    const std::string& name = names[static_cast<std::size_t>(index)];
    return {{{"verb", "devices"}, {"entered", {{"index", index}, {"name", name}}}}, "entered " + Printable(name)};
}

Run BuildDevices(CLI::App& app)
{
    const auto index = Argument<std::optional<int>>();
    app.add_option("index", *index, "Device to browse; without it, the devices are shown")->check(WholeNumber(0));
    return [index](Context& context) { return *index ? EnterDevice(context.session, **index) : ShowDevices(context); };
}

Answer Detected(const char* verb, int status)
{
    return {{{"verb", verb}, {"status", DetectName(status)}}, std::string(verb) + " device " + DetectName(status)};
}

Run BuildCarPlay(CLI::App&)
{
    return [](Context& context)
    {
        auto status = APPLE_DEVICE_DETECTED;
        std::string serial;
        context.session.Ask([&](IQBXIpodPlayer& player) { player.GetCarplayDeviceDetectStatus(status, serial); });
        return Detected("carplay", status);
    };
}

Run BuildCarLife(CLI::App&)
{
    return [](Context& context)
    {
        return Detected("carlife", context.session.Ask([](IQBXIpodPlayer& player)
                                                       { return player.GetCarlifeDeviceDetectStatus(); }));
    };
}

struct Button
{
    std::uint32_t number = 0;
    std::uint32_t heldFor = 0;
};

void SetButton(Session& session, const Button& button, std::uint32_t pressed)
{
    const iPodPlayerButtonControl control{button.number, pressed, pressed == 0 ? button.heldFor : 0};
    if (!session.Ask([&](IQBXIpodPlayer& player) { return player.SetButtonStatus(control); }))
        throw Failure(kNothingDone, "the device did not take button " + std::to_string(button.number));
}

Run BuildButton(CLI::App& app)
{
    const auto button = Argument<Button>();
    app.add_option("number", button->number, "Number of the button")->required();
    app.add_option("--held", button->heldFor, "Time held, in milliseconds, as it is told to the device");
    return [button](Context& context) -> Answer
    {
        SetButton(context.session, *button, 1);
        SetButton(context.session, *button, 0);
        return {{{"verb", "button"}, {"number", button->number}, {"held_ms", button->heldFor}},
                "button " + std::to_string(button->number) + " pressed and released"};
    };
}

Run BuildHub(CLI::App& app)
{
    const auto mode = Argument<int>();
    app.add_option("mode", *mode, "Test mode, 0 ends it")->required()->check(CLI::Range(0, 255));
    return [mode](Context& context) -> Answer
    {
        context.session.Ask([&](IQBXIpodPlayer& player) { player.SetHUBTestMode(static_cast<unsigned char>(*mode)); });
        return {{{"verb", "hub"}, {"mode", *mode}}, "hub test mode " + std::to_string(*mode) + " sent"};
    };
}
}  // namespace

std::vector<Verb> DeviceVerbs()
{
    return {{"devices", "Show the attached devices, or choose the one to browse", "ipodctl devices\nipodctl devices 1",
             BuildDevices},
            {"carplay", "Show whether a CarPlay device is detected", "ipodctl carplay", BuildCarPlay},
            {"carlife", "Show whether a CarLife device is detected", "ipodctl carlife", BuildCarLife},
            {"button", "Press and release a button of the accessory remote control", "ipodctl button 1 --held 500",
             BuildButton},
            {"hub", "Set the electrical test mode of the USB hub; for production and service only", "ipodctl hub 0",
             BuildHub}};
}
}  // namespace ctl
