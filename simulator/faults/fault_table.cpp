#include "faults/fault_table.h"

#include <ipod_dbus.h>

#include <stdexcept>
#include <string_view>

#include "faults/nearest.h"

namespace ipodsim
{
namespace
{
GDBusInterfaceInfo* Interface()
{
    return com_zarn_linux_ipod_interface_info();
}

bool IsMethod(const std::string& name)
{
    return g_dbus_interface_info_lookup_method(Interface(), name.c_str()) != nullptr;
}

std::vector<std::string> Methods()
{
    std::vector<std::string> names;
    for (GDBusMethodInfo** method = Interface()->methods; *method != nullptr; ++method)
        names.emplace_back((*method)->name);
    return names;
}

std::string Signature(GDBusArgInfo* const* arguments)
{
    std::string signature;
    for (; arguments != nullptr && *arguments != nullptr; ++arguments) signature += (*arguments)->signature;
    return signature;
}

// The signature of what the service sends.
std::string SentSignature(const std::string& name)
{
    if (const auto* method = g_dbus_interface_info_lookup_method(Interface(), name.c_str()))
        return Signature(method->out_args);
    const auto* signal = g_dbus_interface_info_lookup_signal(Interface(), name.c_str());
    return signal == nullptr ? std::string() : Signature(signal->args);
}

bool Contains(std::string_view text, std::string_view part)
{
    return text.find(part) != std::string_view::npos;
}

bool FillsNames(const std::string& name)
{
    return name == "GetDeviceList" || (Contains(name, "ListItems") && !Contains(name, "Amount") && IsMethod(name));
}

bool CarriesMessage(const std::string& name)
{
    return name == "OnIpodPhoneCallChange" || name == "OnIpodBatteryChange";
}

bool CanBeSeen(FaultKind kind, const std::string& name)
{
    switch (kind)
    {
        case FaultKind::NoReply:
        case FaultKind::WrongType:
            return true;
        case FaultKind::ShortRecord:
        case FaultKind::LongRecord:
            return Contains(SentSignature(name), "v");
        case FaultKind::HalfFilled:
            return FillsNames(name) || name == "GetPlayingTrackAlbumArtwork";
        case FaultKind::Unterminated:
            return FillsNames(name);
        case FaultKind::BadMessage:
            return CarriesMessage(name);
        case FaultKind::OutOfRange:
            return SentSignature(name).find_first_of("yiqu") != std::string::npos && name != "OnOOBPairingInfo";
        default:
            return IsMethod(name);
    }
}

bool FalsifiesContent(FaultKind kind)
{
    return kind == FaultKind::ShortRecord || kind == FaultKind::LongRecord || kind == FaultKind::BadMessage ||
           kind == FaultKind::OutOfRange;
}
}  // namespace

std::vector<std::string> Members()
{
    std::vector<std::string> names = Methods();
    for (GDBusSignalInfo** signal = Interface()->signals; *signal != nullptr; ++signal)
        names.emplace_back((*signal)->name);
    return names;
}

void RequireMethod(const std::string& name)
{
    if (!IsMethod(name)) throw std::runtime_error(UnknownName("method", name, Methods()));
}

bool Fits(FaultKind kind, const std::string& member, bool byName)
{
    return CanBeSeen(kind, member) && (byName || FalsifiesContent(kind) || IsMethod(member));
}

std::string FittingMembers(FaultKind kind)
{
    std::string names;
    for (const std::string& name : Members())
        if (Fits(kind, name, true)) names += (names.empty() ? "" : ", ") + name;
    return names;
}
}  // namespace ipodsim
