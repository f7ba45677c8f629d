// Records, messages, and types that violate the contract, in replies and signals.
#include <ipod_dbus.h>

#include <unistd.h>

#include <cstdio>
#include <memory>

#include "desk.h"
#include "helper_process.h"
#include "support/text.h"

namespace faults
{
namespace
{
constexpr std::size_t kTrackRecord = 1040;
constexpr std::size_t kArtworkRecord = 16;

// Varying bytes without a NUL.
std::string Pattern(std::size_t size)
{
    std::string bytes(size, '\0');
    for (std::size_t i = 0; i < size; ++i) bytes[i] = static_cast<char>(i * 31 % 251 + 1);
    return bytes;
}

GVariant* Bytes(const std::string& bytes)
{
    return g_variant_new_fixed_array(G_VARIANT_TYPE_BYTE, bytes.data(), bytes.size(), 1);
}

// Missing bytes are zero, excess bytes are ignored.
std::string Record(std::string bytes, std::size_t size)
{
    bytes.resize(size, '\0');
    return bytes;
}

std::uint32_t WordAt(const std::string& record, std::size_t offset)
{
    std::uint32_t word = 0;
    for (std::size_t i = 0; i < 4; ++i)
        word |= static_cast<std::uint32_t>(static_cast<unsigned char>(record[offset + i])) << 8 * i;
    return word;
}

std::string TrackText(const std::string& bytes)
{
    const std::string record = Record(bytes, kTrackRecord);
    QBXiPodTrackInfo info;
    std::string* const texts[] = {&info.text1, &info.text2, &info.text3, &info.text4};
    std::int32_t* const values[] = {&info.value1, &info.value2, &info.value3, &info.value4};
    for (std::size_t i = 0; i < 4; ++i)
    {
        *texts[i] = record.substr(256 * i, record.find('\0', 256 * i) - 256 * i);
        *values[i] = static_cast<std::int32_t>(WordAt(record, 1024 + 4 * i));
    }
    return test::Text(info);
}

std::string ArtworkText(const std::string& bytes)
{
    const std::string record = Record(bytes, kArtworkRecord);
    QBXTrackArtwork artwork;
    artwork.word1 = WordAt(record, 0);
    artwork.word2 = WordAt(record, 4);
    artwork.word3 = WordAt(record, 8);
    artwork.word4 = WordAt(record, 12);
    return test::Text(artwork);
}

using Owned = std::shared_ptr<GVariant>;

// Consumes a reference, floating or not.
Owned Own(GVariant* value)
{
    return {g_variant_take_ref(value), g_variant_unref};
}

// Replies to every call of @p method with a variant that holds @p inner.
void AnswerVariant(Desk& desk, const char* method, const Owned& inner)
{
    desk.service.React(method, [inner](GDBusMethodInvocation* invocation)
                       { g_dbus_method_invocation_return_value(invocation, g_variant_new("(v)", inner.get())); });
}

void TrackBySignal(const Arguments& arguments)
{
    Desk desk;
    const std::string bytes = Pattern(std::stoul(arguments.at(0)));
    desk.Deliver("OnIpodPlayingTrackChange", g_variant_new("(iv)", 5, Bytes(bytes)));
    ExpectText("event", desk.TakeEvents(), "app.OnIpodPlayingTrackChange(5, " + TrackText(bytes) + ")");
    desk.ExpectAlive();
}

void TrackByReply(const Arguments& arguments)
{
    Desk desk;
    const std::string bytes = Pattern(std::stoul(arguments.at(0)));
    AnswerVariant(desk, "GetCurrentMediaInfo", Own(Bytes(bytes)));
    ExpectText("result", test::Text(desk.player.GetCurrentMediaInfo()), TrackText(bytes));
    desk.ExpectAlive();
}

void ArtworkBySignal(const Arguments& arguments)
{
    Desk desk;
    const std::string bytes = Pattern(std::stoul(arguments.at(0)));
    desk.Deliver("OnIpodArtworkChange", g_variant_new("(v)", Bytes(bytes)));
    ExpectText("event", desk.TakeEvents(), "app.OnIpodArtworkChange(" + ArtworkText(bytes) + ")");
    desk.ExpectAlive();
}

void ArtworkByReply(const Arguments& arguments)
{
    Desk desk;
    const std::string bytes = Pattern(std::stoul(arguments.at(0)));
    AnswerVariant(desk, "GetPlayingTrackAlbumArtwork", Own(Bytes(bytes)));
    ExpectText("result", test::Text(desk.player.GetPlayingTrackAlbumArtwork()), ArtworkText(bytes));
    desk.ExpectAlive();
}

// "nested-N" for nested variants, otherwise GVariant text.
Owned InnerValue(const std::string& text)
{
    if (text.rfind("nested-", 0) != 0) return Own(g_variant_parse(nullptr, text.c_str(), nullptr, nullptr, nullptr));
    GVariant* value = Bytes(Pattern(kTrackRecord));
    for (int depth = std::stoi(text.substr(7)); depth > 0; --depth) value = g_variant_new_variant(value);
    return Own(value);
}

void InnerTypeBySignal(const Arguments& arguments)
{
    Desk desk;
    const Owned value = InnerValue(arguments.at(0));
    GVariant* const inner = value.get();
    desk.Deliver("OnIpodPlayingTrackChange", g_variant_new("(iv)", 5, inner));
    desk.Deliver("OnIpodArtworkChange", g_variant_new("(v)", inner));
    desk.Deliver("OnIpodPhoneCallChange", g_variant_new("(v)", inner));
    desk.Deliver("OnIpodBatteryChange", g_variant_new("(v)", inner));
    ExpectText(
        "events", desk.TakeEvents(),
        "app.OnIpodPlayingTrackChange(5, " + TrackText("") + "); app.OnIpodArtworkChange(" + ArtworkText("") + ")");
    desk.ExpectAlive();
}

void InnerTypeByReply(const Arguments& arguments)
{
    Desk desk;
    const Owned inner = InnerValue(arguments.at(0));
    AnswerVariant(desk, "GetCurrentMediaInfo", inner);
    AnswerVariant(desk, "GetPlayingTrackAlbumArtwork", inner);
    ExpectText("details", test::Text(desk.player.GetCurrentMediaInfo()), TrackText(""));
    ExpectText("picture", test::Text(desk.player.GetPlayingTrackAlbumArtwork()), ArtworkText(""));
    desk.ExpectAlive();
}

// Without a reply, there is no variant.
void NoVariant(const Arguments&)
{
    Desk desk;
    desk.service.Fail("GetCurrentMediaInfo", "broken");
    desk.service.Fail("GetPlayingTrackAlbumArtwork", "broken");
    ExpectText("details", test::Text(desk.player.GetCurrentMediaInfo()), TrackText(""));
    ExpectText("picture", test::Text(desk.player.GetPlayingTrackAlbumArtwork()), ArtworkText(""));
    desk.ExpectAlive();
}

void SlotWithoutNul(const Arguments&)
{
    Desk desk;
    desk.Deliver("OnIpodPlayingTrackChange", g_variant_new("(iv)", 1, Bytes(std::string(kTrackRecord, 'A'))));
    const std::string events = desk.TakeEvents();
    for (const std::size_t length : {1040U, 784U, 528U, 272U})
        Expect(events.find("\"" + std::string(length, 'A') + "\"") != std::string::npos,
               "a text of " + std::to_string(length) + " bytes");
    desk.ExpectAlive();
}

// Battery messages: a level of 50 after an unknown field that fills @p size bytes, or after zeros.
std::string LargeMessage(const std::string& kind, std::size_t size)
{
    if (kind == "zeros") return std::string(size, '\0');
    const std::size_t filler = size - 7;
    std::string bytes = "\x7a";
    for (int shift = 0; shift < 28; shift += 7)
        bytes += static_cast<char>((filler >> shift & 0x7f) | (shift < 21 ? 0x80 : 0));
    return bytes + std::string(filler, 'x') + "\x10\x32";
}

// Uses a bus that accepts the largest messages of the protocol. Exits before the bus, whose end would end the process.
void LargeBattery(const Arguments& arguments)
{
    HelperProcess bus({"/usr/bin/dbus-daemon", "--session", "--nofork", "--print-address"});
    g_setenv("DBUS_SESSION_BUS_ADDRESS", bus.ReadLine().c_str(), TRUE);
    Desk desk(Bus::OfEnvironment);
    const std::string bytes = LargeMessage(arguments.at(0), 64U << 20);
    Expect(bytes.size() == 64U << 20, "the largest array of the bus");
    desk.Deliver("OnIpodBatteryChange", g_variant_new("(v)", Bytes(bytes)));
    ExpectText("event", desk.TakeEvents(), arguments.at(0) == "zeros" ? "" : "app.OnIpodBatteryChange(-, 50)");
    desk.ExpectAlive();
    std::fflush(stdout);
    _exit(Verdict());
}

void Pairing(const Arguments& arguments)
{
    Desk desk;
    const std::string bytes = Pattern(std::stoul(arguments.at(0)));
    GVariant* const array =
        g_variant_new_from_data(G_VARIANT_TYPE("a(y)"), bytes.data(), bytes.size(), TRUE, nullptr, nullptr);
    desk.Deliver("OnOOBPairingInfo", g_variant_new("(s@a(y))", "aa:bb", array));
    const std::vector<unsigned char> expected(bytes.begin(), bytes.end());
    ExpectText("event", desk.TakeEvents(), "app.OnOOBPairingInfo(\"aa:bb\", " + test::Text(expected) + ")");
    desk.ExpectAlive();
}

struct Message
{
    const char* kind;
    std::string bytes;
    std::string expected;  ///< empty if dropped
};

// The members after the first one, all absent.
constexpr char kRest[] = ", -, -, -, -, -, -, -, -, -, -, -)";

std::vector<Message> Messages()
{
    const std::string groups = std::string(10000, '\x7b') + std::string(10000, '\x7c');
    return {
        {"empty", "", ""},
        {"unparsable", "\xff\xff\xff\xff\xff\xff\xff\xff\xff\xff\xff\xff", ""},
        {"truncated", std::string("\x0a\x20", 2) + "abc", ""},
        {"deeply-nested", groups, ""},
        {"wrong-wire-type", std::string("\x08\x05", 2), std::string("app.OnIpodPhoneCallChange(-") + kRest},
        {"invalid-utf8", std::string("\x0a\x02\xff\xfe", 4),
         "app.OnIpodPhoneCallChange(\"\xff\xfe\"" + std::string(kRest)},
        {"percent", std::string("\x0a\x06%s%n%s", 8), "app.OnIpodPhoneCallChange(\"%s%n%s\"" + std::string(kRest)},
        {"unknown-enum", std::string("\x18\x63", 2), std::string("app.OnIpodPhoneCallChange(-") + kRest},
    };
}

void PhoneMessage(const Arguments& arguments)
{
    Desk desk;
    for (const Message& message : Messages())
    {
        if (arguments.at(0) != message.kind) continue;
        desk.Deliver("OnIpodPhoneCallChange", g_variant_new("(v)", Bytes(message.bytes)));
        ExpectText("event", desk.TakeEvents(), message.expected);
        return desk.ExpectAlive();
    }
    Expect(false, "the message is known");
}

struct ByteSignal
{
    const char* name;
    const char* bodyAfter;   ///< the other arguments as sent
    const char* shownAfter;  ///< the same as the listener receives them
};

constexpr ByteSignal kByteSignals[] = {
    {"OnIpodDeviceStatusChange", "true", ", 1"},
    {"OnPlayStatusChanged", "", ""},
    {"OnIpodRepeatModeChange", "", ""},
    {"OnIpodShuffleModeChange", "", ""},
    {"OnCarplayDeviceDetectStatusChange", "'x'", ", \"x\""},
    {"OnIpodLocationStatusChange", "", ""},
    {"OnIpodStartEapSession", "9", ", 9"},
    {"OnIpodReceiveEapData", "", ", []"},
    {"OnCarlifeDeviceDetectStatusChange", "", ""},
};

void ByteSignals(const Arguments& arguments)
{
    Desk desk;
    const std::string& value = arguments.at(0);
    for (const ByteSignal& signal : kByteSignals)
    {
        desk.DeliverText(signal.name, "(" + value + "," + signal.bodyAfter + ")");
        ExpectText("event", desk.TakeEvents(),
                   std::string("app.") + signal.name + "(" + value + signal.shownAfter + ")");
    }
    desk.ExpectAlive();
}

void WrongSignature(const Arguments&)
{
    Desk desk;
    GDBusSignalInfo** signal = com_zarn_linux_ipod_interface_info()->signals;
    for (; *signal != nullptr; ++signal) desk.Deliver((*signal)->name, g_variant_new("(sid)", "x", 1, 2.0));
    ExpectText("events", desk.TakeEvents(), "");
    for (const char* const method : {"GetShuffleMode", "GetRepeatMode", "Next", "GetCurrentMediaInfo", "GetDeviceList"})
        desk.service.AnswerInvalid(method, "('x', 1)");
    std::vector<std::string> devices;
    Expect(desk.player.GetShuffleMode() == 255, "failure value of GetShuffleMode");
    Expect(desk.player.GetRepeatMode() == 0, "failure value of GetRepeatMode");
    Expect(!desk.player.Next(), "failure value of Next");
    Expect(desk.player.GetDeviceList(devices) == 0, "failure value of GetDeviceList");
    ExpectText("details", test::Text(desk.player.GetCurrentMediaInfo()), TrackText(""));
    desk.ExpectAlive();
}
}  // namespace

std::vector<Case> DecodingCases()
{
    return {{"track-by-signal", TrackBySignal},
            {"track-by-reply", TrackByReply},
            {"artwork-by-signal", ArtworkBySignal},
            {"artwork-by-reply", ArtworkByReply},
            {"inner-type-by-signal", InnerTypeBySignal},
            {"inner-type-by-reply", InnerTypeByReply},
            {"no-variant", NoVariant},
            {"slot-without-nul", SlotWithoutNul},
            {"large-battery", LargeBattery},
            {"pairing", Pairing},
            {"phone-message", PhoneMessage},
            {"byte-signals", ByteSignals},
            {"wrong-signature", WrongSignature}};
}
}  // namespace faults
