#include "tell.h"

#include <gio/gio.h>

#include <cstdint>
#include <iostream>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "bus.h"

namespace ipodsim
{
namespace
{
constexpr char kName[] = "com.zarn.linux.ipod.Simulator";
constexpr char kPath[] = "/com/zarn/linux/ipod/simulator";
constexpr int kTimeoutMs = 5000;

using Numbers = std::map<std::string, unsigned>;
using VariantPtr = std::unique_ptr<GVariant, decltype(&g_variant_unref)>;

const Numbers kCallStatus = {{"disconnected", 0}, {"sending", 1}, {"ringing", 2},      {"connecting", 3},
                             {"active", 4},       {"held", 5},    {"disconnecting", 6}};
const Numbers kCallDirection = {{"unknown", 0}, {"incoming", 1}, {"outgoing", 2}};
const Numbers kCallService = {{"unknown", 0}, {"telephony", 1}, {"video", 2}, {"audio", 3}};
const Numbers kCallReason = {{"ended", 0}, {"declined", 1}, {"failed", 2}};
const Numbers kDetection = {{"on", 0}, {"off", 1}, {"unsupported", 2}};
const Numbers kSwitch = {{"off", 0}, {"on", 1}};

[[noreturn]] void Fail(GError* error)
{
    const bool nobody = g_error_matches(error, G_DBUS_ERROR, G_DBUS_ERROR_SERVICE_UNKNOWN) ||
                        g_error_matches(error, G_DBUS_ERROR, G_DBUS_ERROR_NAME_HAS_NO_OWNER);
    g_dbus_error_strip_remote_error(error);
    const std::string message = nobody ? "no simulator runs on this session bus" : error->message;
    g_error_free(error);
    throw std::runtime_error(message);
}

VariantPtr Call(const char* method, GVariant* arguments)
{
    const Bus bus;
    GError* error = nullptr;
    GVariant* const reply =
        g_dbus_connection_call_sync(bus.Connection(), kName, kPath, kName, method, arguments, nullptr,
                                    G_DBUS_CALL_FLAGS_NO_AUTO_START, kTimeoutMs, nullptr, &error);
    if (error != nullptr) Fail(error);
    return {reply, &g_variant_unref};
}

// A dictionary of the options that were given.
class Fields
{
public:
    void Add(const CLI::Option* option, const char* key, GVariant* value)
    {
        const VariantPtr owned(g_variant_ref_sink(value), &g_variant_unref);
        if (option->count() != 0) g_variant_builder_add(&m_builder, "{sv}", key, value);
    }

    GVariant* Take() { return g_variant_new("(@a{sv})", g_variant_builder_end(&m_builder)); }

private:
    GVariantBuilder m_builder = Begin();

    static GVariantBuilder Begin()
    {
        GVariantBuilder builder;
        g_variant_builder_init(&builder, G_VARIANT_TYPE_VARDICT);
        return builder;
    }
};

GVariant* ByteArray(const std::string& bytes)
{
    return g_variant_new_fixed_array(G_VARIANT_TYPE_BYTE, bytes.data(), bytes.size(), 1);
}

std::string FromHex(const std::string& hex)
{
    if (hex.size() % 2 != 0 || hex.find_first_not_of("0123456789abcdefABCDEF") != std::string::npos)
        throw CLI::ValidationError("--hex", "expected pairs of hexadecimal digits, not \"" + hex + "\"");
    std::string bytes;
    for (std::size_t i = 0; i < hex.size(); i += 2)
        bytes += static_cast<char>(std::stoi(hex.substr(i, 2), nullptr, 16));
    return bytes;
}

CLI::App* Verb(CLI::App& tell, const char* name, const char* description, const char* example)
{
    CLI::App* const verb = tell.add_subcommand(name, description);
    verb->footer(std::string("Example:\n  ipod-simulator tell ") + example);
    return verb;
}

// One of a few words, whose number is what travels.
CLI::Validator Choice(const Numbers& numbers)
{
    std::string words;
    for (const auto& [word, number] : numbers) words += (words.empty() ? "" : ", ") + word;
    return CLI::Validator(
        [&numbers, words](std::string& given)
        {
            const auto found = numbers.find(given);
            if (found == numbers.end()) return "expected one of " + words + ", not \"" + given + "\"";
            given = std::to_string(found->second);
            return std::string();
        },
        words);
}

CLI::Option* AddChoice(CLI::App* verb, const char* name, unsigned& value, const char* description,
                       const Numbers& numbers)
{
    return verb->add_option(name, value, description)->transform(Choice(numbers));
}

struct CallOptions
{
    struct Text
    {
        const char* key;
        std::string value;
        CLI::Option* option = nullptr;
    };
    struct Number
    {
        const char* key;
        unsigned value = 0;
        CLI::Option* option = nullptr;
    };
    Text number{"remote-id", {}};
    Text name{"display-name", {}};
    Text uuid{"call-uuid", {}};
    Text book{"address-book-id", {}};
    Text label{"label", {}};
    Number status{"status"};
    Number direction{"direction"};
    Number service{"service"};
    Number group{"conference-group"};
    Number reason{"disconnect-reason"};
    bool conferenced = false;
    CLI::Option* conferencedOption = nullptr;
    std::uint64_t start = 0;
    CLI::Option* startOption = nullptr;
};

void SendCall(const CallOptions& call)
{
    Fields fields;
    for (const auto* text : {&call.number, &call.name, &call.uuid, &call.book, &call.label})
        fields.Add(text->option, text->key, g_variant_new_string(text->value.c_str()));
    for (const auto* number : {&call.status, &call.direction, &call.service, &call.group, &call.reason})
        fields.Add(number->option, number->key, g_variant_new_uint32(number->value));
    fields.Add(call.conferencedOption, "is-conferenced", g_variant_new_boolean(call.conferenced));
    fields.Add(call.startOption, "start-timestamp", g_variant_new_uint64(call.start));
    Call("PhoneCall", fields.Take());
}

void AddCallOptions(CLI::App* verb, CallOptions& call)
{
    call.number.option = verb->add_option("--number", call.number.value, "Number or address of the other party");
    call.name.option = verb->add_option("--name", call.name.value, "Its name");
    call.uuid.option = verb->add_option("--uuid", call.uuid.value, "Identifies the call while it lives");
    call.book.option = verb->add_option("--book-id", call.book.value, "Entry of the address book");
    call.label.option = verb->add_option("--label", call.label.value, "home, mobile, ...");
    call.status.option = AddChoice(verb, "--status", call.status.value, "State of the call", kCallStatus);
    call.direction.option = AddChoice(verb, "--direction", call.direction.value, "Who called whom", kCallDirection);
    call.service.option = AddChoice(verb, "--service", call.service.value, "Kind of call", kCallService);
    call.reason.option = AddChoice(verb, "--reason", call.reason.value, "Why the call ended", kCallReason);
    call.group.option = verb->add_option("--group", call.group.value, "Conference group");
    call.conferencedOption =
        verb->add_flag("--conferenced,!--not-conferenced", call.conferenced, "Part of a conference");
    call.startOption = verb->add_option("--start", call.start, "Start, in seconds since 1970-01-01 UTC");
}

void AddCall(CLI::App& tell)
{
    auto call = std::make_shared<CallOptions>();
    CLI::App* const verb = Verb(tell, "call", "A phone call changed; every field may be left out",
                                "call --status ringing --direction incoming --name \"Li Lei\" --number 123");
    AddCallOptions(verb, *call);
    verb->callback([call] { SendCall(*call); });
}

struct BatteryOptions
{
    unsigned level = 0;
    unsigned status = 0;
    CLI::Option* levelOption = nullptr;
    CLI::Option* statusOption = nullptr;
};

void AddBattery(CLI::App& tell)
{
    auto battery = std::make_shared<BatteryOptions>();
    CLI::App* const verb = Verb(tell, "battery", "The battery changed", "battery --level 80 --charging");
    battery->levelOption = verb->add_option("--level", battery->level, "Percent");
    battery->statusOption = verb->add_flag("--disabled{0},--charging{1},--charged{2},--discharging{3}", battery->status,
                                           "Whether it is being charged")
                                ->multi_option_policy(CLI::MultiOptionPolicy::Throw);
    verb->callback(
        [battery]
        {
            Fields fields;
            fields.Add(battery->levelOption, "level", g_variant_new_uint32(battery->level));
            fields.Add(battery->statusOption, "charging-status", g_variant_new_uint32(battery->status));
            Call("Battery", fields.Take());
        });
}

// A switch and a text, which most of the other events consist of.
struct SwitchAndText
{
    unsigned value = 0;
    std::string text;
};

void AddCarplay(CLI::App& tell)
{
    auto given = std::make_shared<SwitchAndText>();
    CLI::App* const verb = Verb(tell, "carplay", "A CarPlay device was detected or lost", "carplay on --serial F17XK");
    AddChoice(verb, "status", given->value, "on, off or unsupported", kDetection)->required();
    verb->add_option("--serial", given->text, "Serial number of the device");
    verb->callback([given]
                   { Call("Carplay", g_variant_new("(ys)", static_cast<guchar>(given->value), given->text.c_str())); });
}

void AddCarlife(CLI::App& tell)
{
    auto given = std::make_shared<SwitchAndText>();
    CLI::App* const verb = Verb(tell, "carlife", "A CarLife device was detected or lost", "carlife on");
    AddChoice(verb, "status", given->value, "on, off or unsupported", kDetection)->required();
    verb->callback([given] { Call("Carlife", g_variant_new("(y)", static_cast<guchar>(given->value))); });
}

void AddWireless(CLI::App& tell)
{
    auto given = std::make_shared<SwitchAndText>();
    CLI::App* const verb = Verb(tell, "wireless", "Wireless CarPlay became available or unavailable",
                                "wireless on --address 00:11:22:33:44:55");
    AddChoice(verb, "available", given->value, "on or off", kSwitch)->required();
    verb->add_option("--address", given->text, "Bluetooth address of the device");
    verb->callback(
        [given]
        { Call("WirelessCarPlay", g_variant_new("(bs)", static_cast<gboolean>(given->value), given->text.c_str())); });
}

void AddPairing(CLI::App& tell)
{
    struct Given
    {
        std::string address;
        std::string hex;
    };
    auto given = std::make_shared<Given>();
    CLI::App* const verb =
        Verb(tell, "pairing", "Out-of-band pairing information arrived", "pairing 00:11:22:33:44:55 --hex 0a1b2c");
    verb->add_option("address", given->address, "Bluetooth address of the device")->required();
    verb->add_option("--hex", given->hex, "The information, in hexadecimal");
    verb->callback(
        [given]
        { Call("PairingInfo", g_variant_new("(s@ay)", given->address.c_str(), ByteArray(FromHex(given->hex)))); });
}

void AddSwitch(CLI::App& tell, const char* name, const char* description, const char* method, const char* signature)
{
    auto value = std::make_shared<unsigned>(0);
    CLI::App* const verb = Verb(tell, name, description, (std::string(name) + " on").c_str());
    AddChoice(verb, "state", *value, "on or off", kSwitch)->required();
    verb->callback([value, method, signature] { Call(method, g_variant_new(signature, *value)); });
}

void AddText(CLI::App& tell, const char* name, const char* description, const char* method, const char* example)
{
    auto text = std::make_shared<std::string>();
    CLI::App* const verb = Verb(tell, name, description, (std::string(name) + " " + example).c_str());
    verb->add_option("name", *text, "For example " + std::string(example))->required();
    verb->callback([text, method] { Call(method, g_variant_new("(s)", text->c_str())); });
}

void PrintSession(const VariantPtr& reply)
{
    guint16 session = 0;
    g_variant_get(reply.get(), "(q)", &session);
    std::cout << "session " << session << '\n';
}

void AddEapOpen(CLI::App& tell)
{
    auto protocol = std::make_shared<unsigned>(0);
    CLI::App* const verb = Verb(tell, "eap-open", "An app opens an accessory session; prints its number", "eap-open");
    verb->add_option("--protocol", *protocol, "Index of the protocol")->check(CLI::Range(0, 255));
    verb->callback([protocol]
                   { PrintSession(Call("OpenEapSession", g_variant_new("(y)", static_cast<guchar>(*protocol)))); });
}

void AddEapClose(CLI::App& tell)
{
    auto session = std::make_shared<std::uint16_t>();
    CLI::App* const verb = Verb(tell, "eap-close", "An accessory session ends", "eap-close 1");
    verb->add_option("session", *session, "Number of the session")->required();
    verb->callback([session] { Call("CloseEapSession", g_variant_new("(q)", *session)); });
}

void AddEapData(CLI::App& tell)
{
    struct Given
    {
        std::uint16_t session = 0;
        std::string text;
        std::string hex;
    };
    auto given = std::make_shared<Given>();
    CLI::App* const verb = Verb(tell, "eap-data", "The device sends bytes on a session", "eap-data 1 --text hello");
    verb->add_option("session", given->session, "Number of the session")->required();
    CLI::Option* const text = verb->add_option("--text", given->text, "The bytes as text");
    verb->add_option("--hex", given->hex, "The bytes in hexadecimal")->excludes(text);
    verb->callback(
        [given]
        {
            const std::string bytes = given->text + FromHex(given->hex);
            Call("SendEapData", g_variant_new("(q@ay)", given->session, ByteArray(bytes)));
        });
}
}  // namespace

void AddTell(CLI::App& app)
{
    CLI::App* const tell = app.add_subcommand("tell", "Ask the simulator that is running for an event");
    tell->require_subcommand(1);
    tell->footer(
        "Examples:\n"
        "  ipod-simulator tell call --status ringing --name \"Li Lei\" --number 123\n"
        "  ipod-simulator tell battery --level 80 --charging\n"
        "  ipod-simulator tell carplay on --serial F17XK");
    AddCall(*tell);
    AddBattery(*tell);
    AddCarplay(*tell);
    AddCarlife(*tell);
    AddWireless(*tell);
    AddPairing(*tell);
    AddSwitch(*tell, "location", "The device asks for location information, or no longer does", "Location", "(y)");
    AddSwitch(*tell, "source", "The device's audio source became valid or invalid", "SourceValid", "(b)");
    AddText(*tell, "app", "Another app came to the foreground", "ForegroundApp", "com.example.maps");
    AddText(*tell, "attach", "A device was attached; it holds the built-in library", "AttachDevice", "Second");
    AddText(*tell, "detach", "A device went away", "DetachDevice", "Second");
    AddEapOpen(*tell);
    AddEapClose(*tell);
    AddEapData(*tell);
}
}  // namespace ipodsim
