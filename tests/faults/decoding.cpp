// Messages of unusual size.
#include <unistd.h>

#include <cstdio>

#include "desk.h"
#include "helper_process.h"
#include "support/text.h"

namespace faults
{
namespace
{
GVariant* Bytes(const std::string& bytes)
{
    return g_variant_new_fixed_array(G_VARIANT_TYPE_BYTE, bytes.data(), bytes.size(), 1);
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

void LargePairing(const Arguments& arguments)
{
    Desk desk;
    std::vector<unsigned char> bytes(std::stoul(arguments.at(0)));
    for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<unsigned char>(i * 31 % 251);
    GVariant* const array =
        g_variant_new_from_data(G_VARIANT_TYPE("a(y)"), bytes.data(), bytes.size(), TRUE, nullptr, nullptr);
    desk.Deliver("OnOOBPairingInfo", g_variant_new("(s@a(y))", "aa:bb", array));
    ExpectText("event", desk.TakeEvents(), "app.OnOOBPairingInfo(\"aa:bb\", " + test::Text(bytes) + ")");
    desk.ExpectAlive();
}
}  // namespace

std::vector<Case> DecodingCases()
{
    return {{"large-battery", LargeBattery}, {"large-pairing", LargePairing}};
}
}  // namespace faults
