// Lists and selects devices, prints CarPlay and CarLife detection, and presses remote-control buttons.
#include <algorithm>

#include "output/text.h"
#include "player/lists.h"
#include "verbs/verbs.h"

namespace ctl
{
namespace
{
std::vector<std::string> ReadDevices(Session& session)
{
    List devices(session, ipodkit::ListKind::Devices);
    return devices.Names(0, devices.Count(), "the service did not deliver the device list");
}

Answer ShowDevices(Context& context, bool namesOnly)
{
    const std::vector<std::string> names = ReadDevices(context.session);
    const Json json{{"verb", "devices"}, {"devices", EntriesJson(0, names)}};
    if (namesOnly) return {json, NamesText(names)};
    std::vector<std::vector<std::string>> rows;
    for (std::size_t i = 0; i < names.size(); ++i) rows.push_back({std::to_string(i), Printable(names[i])});
    const std::string none = context.out.terminal() ? "no device is attached" : "";
    return {json, rows.empty() ? none : Table(rows, context.out.width())};
}

// Returns the device with this index or name; "./22" is the name "22".
int FindDevice(const std::vector<std::string>& names, std::string text)
{
    const std::optional<int> index = TakeIndex(text);
    if (index) CheckIndex(*index, static_cast<int>(names.size()), "the device list");
    if (index) return *index;
    const auto same = [folded = Folded(text)](const std::string& name) { return Folded(name) == folded; };
    const auto found = std::find_if(names.begin(), names.end(), same);
    if (found == names.end())
        throw Failure(kUsage, "no device '" + Printable(text) + "'",
                      DidYouMean(text, names, "list the devices with 'ipodctl devices'"));
    if (std::any_of(std::next(found), names.end(), same))
        throw Failure(kUsage, "'" + Printable(text) + "' matches several devices", "give the index");
    return static_cast<int>(found - names.begin());
}

Answer EnterDevice(Session& session, const std::string& device)
{
    session.HoldLevel(ipodkit::Browsing::Changing);
    const std::vector<std::string> names = ReadDevices(session);
    const int index = FindDevice(names, device);
    session.Ask(session.Commands().EnterDevice(index),
                {"the service did not enter the device", "list the devices with 'ipodctl devices'"});
    const std::string& name = names[static_cast<std::size_t>(index)];
    return {{{"verb", "devices"}, {"entered", {{"index", index}, {"name", name}}}}, "entered " + Printable(name)};
}

Run BuildDevices(CLI::App& app)
{
    const auto device = Argument<std::string>();
    const auto names = Argument<bool>();
    auto* const entered =
        app.add_option("device", *device, "Index or name of the device to browse; without it, list the devices");
    entered->check(cli::NonEmpty());
    app.add_flag("--names", *names, "Print one name per line and nothing else, for scripts")->excludes(entered);
    return [device, names](Context& context)
    { return device->empty() ? ShowDevices(context, *names) : EnterDevice(context.session, *device); };
}

Answer Detected(const char* verb, ipodkit::DeviceStatus status)
{
    return {{{"verb", verb}, {"status", ToString(status)}}, std::string(verb) + " device " + ToString(status)};
}

Run BuildCarPlay(CLI::App&)
{
    return [](Context& context)
    {
        const ipodkit::CarPlayDevice device = context.session.Ask(context.session.Commands().CarPlayStatus());
        Answer answer = Detected("carplay", device.status);
        answer.json["serial"] = device.serialNumber;
        if (!device.serialNumber.empty()) answer.text += ", serial number " + Printable(device.serialNumber);
        return answer;
    };
}

Run BuildCarLife(CLI::App&)
{
    return [](Context& context)
    { return Detected("carlife", context.session.Ask(context.session.Commands().CarLifeStatus())); };
}

struct Button
{
    std::uint32_t number = 0;
    std::uint32_t heldFor = 0;
};

void SetButton(Session& session, const Button& button, std::uint32_t pressed)
{
    const std::chrono::milliseconds held(pressed == 0 ? button.heldFor : 0);
    session.Ask(session.Commands().PressButton({button.number, pressed, held}),
                "the device rejected button " + std::to_string(button.number));
}

Run BuildButton(CLI::App& app)
{
    const auto button = Argument<Button>();
    app.add_option("number", button->number, "Number of the button")
        ->required()
        ->transform(cli::NumberUpTo(UINT32_MAX));
    app.add_option("--held", button->heldFor, "Time that the button is held, as reported to the device")
        ->type_name("MILLISECONDS")
        ->transform(cli::NumberUpTo(UINT32_MAX));
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
    app.add_option("mode", *mode, "Test mode, 0 to 255; 0 ends it")->required()->transform(cli::NumberUpTo(255));
    return [mode](Context& context) -> Answer
    {
        context.session.Ask(context.session.Commands().SetHubTestMode(static_cast<unsigned char>(*mode)));
        return {{{"verb", "hub"}, {"mode", *mode}}, "hub test mode " + std::to_string(*mode) + " sent"};
    };
}
}  // namespace

std::vector<Verb> DeviceVerbs()
{
    return {{"devices", "List the attached devices, or choose the one to browse", "ipodctl devices\nipodctl devices 1",
             BuildDevices},
            {"carplay", "Print whether a CarPlay device is detected", "ipodctl carplay", BuildCarPlay},
            {"carlife", "Print whether a CarLife device is detected", "ipodctl carlife", BuildCarLife},
            {"button", "Press and release a button of the remote control", "ipodctl button 1 --held 500", BuildButton},
            {"hub", "Set the electrical test mode of the USB hub", "ipodctl hub 0", BuildHub}};
}
}  // namespace ctl
