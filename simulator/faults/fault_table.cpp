#include "faults/fault_table.h"

#include <ipod_dbus.h>

#include <algorithm>
#include <numeric>
#include <stdexcept>
#include <string_view>
#include <utility>
#include <vector>

namespace ipodsim
{
namespace
{
GDBusInterfaceInfo* Interface()
{
    return com_zarn_linux_ipod_interface_info();
}

// How many characters must be added, removed, or replaced to make one text of the other, whatever their case.
std::size_t Distance(const std::string& from, const std::string& to)
{
    std::vector<std::size_t> row(to.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 0; i < from.size(); ++i)
    {
        std::size_t diagonal = std::exchange(row[0], i + 1);
        for (std::size_t j = 0; j < to.size(); ++j)
        {
            const std::size_t replaced = diagonal + (g_ascii_tolower(from[i]) == g_ascii_tolower(to[j]) ? 0 : 1);
            diagonal = row[j + 1];
            row[j + 1] = std::min({replaced, diagonal + 1, row[j] + 1});
        }
    }
    return row.back();
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

void RequireMethod(const std::string& name)
{
    if (IsMethod(name)) return;
    std::string nearest;
    for (GDBusMethodInfo** method = Interface()->methods; *method != nullptr; ++method)
        if (nearest.empty() || Distance(name, (*method)->name) < Distance(name, nearest)) nearest = (*method)->name;
    throw std::runtime_error("no method of the interface is named '" + name + "', the nearest is '" + nearest + "'");
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
