// Fuzzes external texts in log lines: they must be arguments, never formats.
#include <algorithm>

#include "harness.h"
#include "signal_callbacks.h"

namespace
{
using namespace fuzz;

// As printf prints it: up to the first NUL.
std::string Shown(const std::uint8_t* data, std::size_t size)
{
    return std::string(data, std::find(data, data + size, 0));
}

void RequireLine(const std::string& expected)
{
    Require(expected == LastLogText(), "the log line");
}

void CheckTrack(const std::string& text)
{
    std::string record = text.substr(0, 255);
    record.resize(1040, '\0');
    const Variant value(Wrapped(reinterpret_cast<const std::uint8_t*>(record.data()), record.size()));
    qbx::CallBack_OnIpodPlayingTrackChange(Proxy(), 3, value.get(), Client());
    RequireLine("OnIpodPlayingTrackChange() - 3, " + text.substr(0, 255));
}
}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string text = Shown(data, size);
    CheckTrack(text);
    qbx::CallBack_OnCarplayDeviceDetectStatusChange(Proxy(), 1, text.c_str(), Client());
    RequireLine("OnCarplayDeviceDetectStatusChange() - 1 -" + text);
    qbx::CallBack_OnWirelessCarPlayUpdate(Proxy(), TRUE, text.c_str(), Client());
    RequireLine("OnWirelessCarPlayUpdate() - 1, " + text);
    const Variant none(g_variant_new_array(G_VARIANT_TYPE("(y)"), nullptr, 0));
    qbx::CallBack_OnOOBPairingInfo(Proxy(), text.c_str(), none.get(), Client());
    RequireLine("OnOOBPairingInfo() - " + text + ", 0");
    qbx::CallBack_OnIpodAPPBundleNameChange(Proxy(), text.c_str(), Client());
    RequireLine("OnIpodAPPBundleNameChange()");
    return 0;
}
