#include "faults/faults.h"

#include <gio/gio.h>

#include <algorithm>
#include <charconv>
#include <iterator>
#include <limits>
#include <stdexcept>
#include <utility>

#include "faults/fault_table.h"
#include "faults/nearest.h"

namespace ipodsim
{
namespace
{
enum class Parameter
{
    None,
    Number,
    ErrorName,
    Segment,
};

struct KindRow
{
    const char* name;
    FaultKind kind;
    Parameter parameter;
    const char* meaning;
    const char* placeholder = nullptr;                               // of the parameter
    std::uint32_t most = std::numeric_limits<std::uint32_t>::max();  // largest number
};

// D-Bus messages carry at most 64 MiB, and the call log must fit several bodies.
constexpr std::uint32_t kLongestRecord = 1U << 20U;

constexpr KindRow kKinds[] = {
    {"delay", FaultKind::Delay, Parameter::Number, "Delay the reply, by default by 1000 ms", "MILLISECONDS"},
    {"no-reply", FaultKind::NoReply, Parameter::None, "Drop the reply or the signal"},
    {"error", FaultKind::Error, Parameter::ErrorName, "Reply with an error of that name", "NAME"},
    {"wrong-type", FaultKind::WrongType, Parameter::None, "Send a type other than the interface's"},
    {"short-record", FaultKind::ShortRecord, Parameter::Number,
     "Send a record with fewer bytes than required, by default 10", "BYTES", kLongestRecord},
    {"long-record", FaultKind::LongRecord, Parameter::Number,
     "Send a record with more bytes than required, by default 5000 more", "BYTES", kLongestRecord},
    {"half-filled", FaultKind::HalfFilled, Parameter::None, "Fill a vector in shared memory only halfway"},
    {"unterminated", FaultKind::Unterminated, Parameter::None, "Write names to shared memory without a terminator"},
    {"bad-message", FaultKind::BadMessage, Parameter::None,
     "Send a phone call or battery message that cannot be parsed"},
    {"out-of-range", FaultKind::OutOfRange, Parameter::Number, "Send undefined enumeration values, by default 99",
     "NUMBER"},
    {"crash", FaultKind::Crash, Parameter::None, "Crash after executing the request, before replying"},
    {"crash-locked", FaultKind::CrashLocked, Parameter::Segment,
     "Crash while holding the lock of the segment lists or buffers, by default of both", "SEGMENT"},
    {"restart-storm", FaultKind::RestartStorm, Parameter::Number,
     "Leave the bus and return, by default five times; starts at once if no method is named. Another storm replaces it",
     "TIMES"},
};

const KindRow& RowOf(const std::string& name)
{
    const auto* const found =
        std::find_if(std::begin(kKinds), std::end(kKinds), [&](const KindRow& row) { return name == row.name; });
    if (found != std::end(kKinds)) return *found;
    std::string names;
    for (const std::string& kind : FaultKinds()) names += (names.empty() ? "" : ", ") + kind;
    throw std::runtime_error("expected one of " + names + ", got '" + name + "'" + NearestHint(name, FaultKinds()));
}

std::optional<std::uint32_t> ToNumber(const std::string& text,
                                      std::uint32_t most = std::numeric_limits<std::uint32_t>::max())
{
    std::uint32_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size() || number > most) return {};
    return number;
}

[[noreturn]] void Refuse(const KindRow& row, const std::string& expected)
{
    throw std::runtime_error(row.name + (": expected " + expected));
}

void CheckParameter(const KindRow& row, const std::string& parameter)
{
    if (parameter.empty()) return;
    if (row.parameter == Parameter::None) Refuse(row, "no parameter, got '" + parameter + "'");
    if (row.parameter == Parameter::Number && ToNumber(parameter, row.most) == std::nullopt)
        Refuse(row, "an integer between 0 and " + std::to_string(row.most) + ", got '" + parameter + "'");
    if (row.parameter == Parameter::ErrorName && g_dbus_is_interface_name(parameter.c_str()) == FALSE)
        Refuse(row, "an error name such as com.example.Error.Busy, got '" + parameter + "'");
    if (row.parameter == Parameter::Segment && parameter != "lists" && parameter != "buffers")
        Refuse(row, "lists or buffers, got '" + parameter + "'");
}

void CheckMember(const KindRow& row, const std::string& member)
{
    if (member.empty()) return;
    const std::vector<std::string> members = Members();
    if (std::find(members.begin(), members.end(), member) == members.end())
        throw std::runtime_error(UnknownName("method or signal", member, members));
    if (!Fits(row.kind, member, true)) Refuse(row, "one of " + FittingMembers(row.kind) + ", got '" + member + "'");
}

[[noreturn]] void RefuseForm(const std::string& fault)
{
    throw std::runtime_error("expected KIND[=PARAMETER][@MEMBER][/COUNT], got '" + fault + "'");
}

// Removes and returns the part after the last separator; empty if there is no separator.
std::string TakeTail(std::string& text, char separator, const std::string& whole)
{
    const std::size_t at = text.rfind(separator);
    if (at == std::string::npos) return {};
    std::string tail = text.substr(at + 1);
    if (tail.empty()) RefuseForm(whole);
    text.resize(at);
    return tail;
}
}  // namespace

std::uint32_t Fault::Number(std::uint32_t whenEmpty) const
{
    return ToNumber(parameter).value_or(whenEmpty);
}

std::vector<std::string> FaultKinds()
{
    std::vector<std::string> names;
    for (const KindRow& row : kKinds) names.emplace_back(row.name);
    return names;
}

std::vector<std::pair<std::string, std::string>> FaultHelp()
{
    std::vector<std::pair<std::string, std::string>> rows;
    for (const KindRow& row : kKinds)
        rows.emplace_back(row.placeholder == nullptr ? row.name : std::string(row.name) + "=" + row.placeholder,
                          row.meaning);
    return rows;
}

Fault ParseFault(const std::string& text)
{
    std::string kind = text;
    const std::string count = TakeTail(kind, '/', text);
    const std::string member = TakeTail(kind, '@', text);
    const std::string parameter = TakeTail(kind, '=', text);
    const auto number = count.empty() ? 0 : ToNumber(count);
    if (!number || (*number == 0 && !count.empty())) RefuseForm(text);
    const KindRow& row = RowOf(kind);
    CheckParameter(row, parameter);
    CheckMember(row, member);
    return {member, row.kind, parameter, *number};
}

void Faults::Add(Fault fault)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_armed.push_back(std::move(fault));
}

void Faults::Clear()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_armed.clear();
}

std::optional<Fault> Faults::Take(const std::string& member)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    const auto found =
        std::find_if(m_armed.begin(), m_armed.end(),
                     [&](const Fault& fault)
                     { return fault.member.empty() ? Fits(fault.kind, member, false) : fault.member == member; });
    if (found == m_armed.end()) return {};
    Fault taken = *found;
    if (found->count != 0 && --found->count == 0) m_armed.erase(found);
    return taken;
}
}  // namespace ipodsim
