/// @file
/// What shall go wrong, and when.
#pragma once

#include <cstdint>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace ipodsim
{
enum class FaultKind
{
    Delay,         ///< the answer comes late; parameter: milliseconds
    NoReply,       ///< the answer, or the signal, never comes
    Error,         ///< an error is answered; parameter: its name
    WrongType,     ///< another type than the interface says
    ShortRecord,   ///< a record with fewer bytes than it should have; parameter: how many
    LongRecord,    ///< or with more
    HalfFilled,    ///< a vector with the first half of what belongs into it
    Unterminated,  ///< names without a terminator
    BadMessage,    ///< a message that cannot be parsed
    OutOfRange,    ///< numbers that mean nothing; parameter: the number
    Crash,         ///< the service dies before it answers
    CrashLocked,   ///< and holds the locks of the segments; parameter: lists or buffers, for only one of them
    RestartStorm,  ///< the service goes and comes back; parameter: how often
};

/// How often a restart storm goes round that does not say.
constexpr std::uint32_t kRestarts = 5;

struct Fault
{
    std::string member;  ///< method or signal; empty: each that the kind fits
    FaultKind kind = FaultKind::Delay;
    std::string parameter;
    unsigned count = 0;  ///< how often; 0: until it is cleared

    /// The parameter as a number, or another one when it is empty.
    std::uint32_t Number(std::uint32_t whenEmpty) const;
};

/// For example "delay", "crash-locked".
const char* NameOf(FaultKind kind);

/// The names of all kinds.
std::vector<std::string> FaultKinds();

/// @throws std::runtime_error  there is no such kind or member, the kind does not fit the member, or the parameter is
///         not possible; the message says what was expected
Fault MakeFault(const std::string& member, const std::string& kind, const std::string& parameter, unsigned count);

/// From the form of the command line: KIND[=PARAMETER][@MEMBER][/COUNT], for example "delay=500@GetPlayStatus/3".
/// @throws std::runtime_error  as MakeFault()
Fault ParseFault(const std::string& text);

/// The faults that are armed. Any thread may call it.
class Faults
{
public:
    void Add(Fault fault);
    void Clear();
    /// The first that fits the member, counted as used; empty when none does.
    std::optional<Fault> Take(const std::string& member);

private:
    std::mutex m_mutex;
    std::vector<Fault> m_armed;
};
}  // namespace ipodsim
