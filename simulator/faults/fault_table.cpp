#include "faults/fault_table.h"

#include <ipod_dbus.h>

#include <algorithm>
#include <string_view>

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

std::string Signature(GDBusArgInfo* const* arguments)
{
    std::string signature;
    for (; arguments != nullptr && *arguments != nullptr; ++arguments) signature += (*arguments)->signature;
    return signature;
}

// Of what the service sends.
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

bool IsMember(const std::string& name)
{
    return IsMethod(name) || g_dbus_interface_info_lookup_signal(Interface(), name.c_str()) != nullptr;
}

bool Fits(FaultKind kind, const std::string& member, bool byName)
{
    return CanBeSeen(kind, member) && (byName || FalsifiesContent(kind) || IsMethod(member));
}

std::string FittingMembers(FaultKind kind)
{
    std::string names;
    const auto add = [&](const char* name)
    {
        if (Fits(kind, name, true)) names += (names.empty() ? "" : ", ") + std::string(name);
    };
    for (GDBusMethodInfo** method = Interface()->methods; *method != nullptr; ++method) add((*method)->name);
    for (GDBusSignalInfo** signal = Interface()->signals; *signal != nullptr; ++signal) add((*signal)->name);
    return names;
}
}  // namespace ipodsim
