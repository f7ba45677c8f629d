// Devices of the simulator: detections, what comes and goes, what the user does on them.
#include <cstdint>

#include "verbs/sim.h"

namespace ctl
{
namespace
{
std::vector<std::string> Switch()
{
    return {"off", "on"};
}

struct StateAndText
{
    unsigned state = 0;
    std::string text;
};

Run BuildCarPlayEvent(CLI::App& app)
{
    const auto given = Argument<StateAndText>();
    AsNumber(app.add_option("status", given->state, "Detection status"), {"on", "off", "unsupported"})->required();
    app.add_option("--serial", given->text, "Serial number of the device")->check(Utf8());
    return [given](Context& context)
    {
        AskSimulator(context.session, "Carplay",
                     g_variant_new("(ys)", static_cast<guchar>(given->state), given->text.c_str()));
        return Asked("carplay");
    };
}

Run BuildCarLifeEvent(CLI::App& app)
{
    const auto state = Argument<unsigned>();
    AsNumber(app.add_option("status", *state, "Detection status"), {"on", "off", "unsupported"})->required();
    return [state](Context& context)
    {
        AskSimulator(context.session, "Carlife", g_variant_new("(y)", static_cast<guchar>(*state)));
        return Asked("carlife");
    };
}

Run BuildWireless(CLI::App& app)
{
    const auto given = Argument<StateAndText>();
    AsNumber(app.add_option("available", given->state, "Availability"), Switch())->required();
    app.add_option("--address", given->text, "Bluetooth address of the device")->check(Utf8());
    return [given](Context& context)
    {
        AskSimulator(context.session, "WirelessCarPlay",
                     g_variant_new("(bs)", static_cast<gboolean>(given->state), given->text.c_str()));
        return Asked("wireless");
    };
}

struct Pairing
{
    std::string address;
    std::string hex;
};

Run BuildPairing(CLI::App& app)
{
    const auto given = Argument<Pairing>();
    app.add_option("address", given->address, "Bluetooth address of the device")->required()->check(Utf8());
    app.add_option("--hex", given->hex, "The information, in hexadecimal");
    return [given](Context& context)
    {
        AskSimulator(context.session, "PairingInfo",
                     g_variant_new("(s@ay)", given->address.c_str(), ByteArray(FromHex(given->hex))));
        return Asked("pairing");
    };
}

Run BuildLocation(CLI::App& app)
{
    const auto state = Argument<unsigned>();
    AsNumber(app.add_option("state", *state, "State"), Switch())->required();
    return [state](Context& context)
    {
        AskSimulator(context.session, "Location", g_variant_new("(y)", static_cast<guchar>(*state)));
        return Asked("location");
    };
}

Run BuildSource(CLI::App& app)
{
    const auto state = Argument<unsigned>();
    AsNumber(app.add_option("state", *state, "State"), Switch())->required();
    return [state](Context& context)
    {
        AskSimulator(context.session, "SourceValid", g_variant_new("(b)", static_cast<gboolean>(*state)));
        return Asked("source");
    };
}

// An event that consists of one text.
Run BuildText(CLI::App& app, const char* verb, const char* method, const char* what)
{
    const auto text = Argument<std::string>();
    app.add_option("name", *text, what)->required()->check(Utf8());
    return [text, verb, method](Context& context)
    {
        AskSimulator(context.session, method, g_variant_new("(s)", text->c_str()));
        return Asked(verb);
    };
}

Run BuildApp(CLI::App& app)
{
    return BuildText(app, "app", "ForegroundApp", "Bundle identifier of the app");
}

Run BuildAttach(CLI::App& app)
{
    return BuildText(app, "attach", "AttachDevice", "Name of the device");
}

Run BuildDetach(CLI::App& app)
{
    return BuildText(app, "detach", "DetachDevice", "Name of the device");
}

Run BuildButtonEvent(CLI::App& app)
{
    return BuildText(app, "button", "PressButton", "play, pause, stop, next or previous");
}
}  // namespace

std::vector<Verb> SimDeviceVerbs()
{
    return {{"carplay", "Report a CarPlay device as detected or lost", "ipodctl sim carplay on --serial F17XK",
             BuildCarPlayEvent},
            {"carlife", "Report a CarLife device as detected or lost", "ipodctl sim carlife on", BuildCarLifeEvent},
            {"wireless", "Report wireless CarPlay as available or unavailable",
             "ipodctl sim wireless on --address 00:11:22:33:44:55", BuildWireless},
            {"pairing", "Deliver out-of-band pairing information", "ipodctl sim pairing 00:11:22:33:44:55 --hex 0a1b2c",
             BuildPairing},
            {"location", "Start or stop asking for location information", "ipodctl sim location on", BuildLocation},
            {"source", "Make the audio source of the device valid or invalid", "ipodctl sim source off", BuildSource},
            {"app", "Bring another app to the foreground", "ipodctl sim app com.example.maps", BuildApp},
            {"attach", "Attach a device with the built-in library", "ipodctl sim attach Second", BuildAttach},
            {"detach", "Detach a device", "ipodctl sim detach Second", BuildDetach},
            {"button", "Press a button on the device", "ipodctl sim button next", BuildButtonEvent}};
}
}  // namespace ctl
