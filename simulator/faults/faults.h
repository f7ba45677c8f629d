/// @file
/// Faults to inject, and when they apply.
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
    Delay,         ///< delays the reply; parameter: milliseconds
    NoReply,       ///< drops the reply or the signal
    Error,         ///< replies with an error; parameter: its name
    WrongType,     ///< sends a type other than the interface's
    ShortRecord,   ///< truncates a record; parameter: its length in bytes
    LongRecord,    ///< extends a record; parameter: its length in bytes
    HalfFilled,    ///< fills a vector only halfway
    Unterminated,  ///< sends names without a terminator
    BadMessage,    ///< sends a protobuf message that cannot be parsed
    OutOfRange,    ///< sends undefined enumeration values; parameter: the number
    Crash,         ///< crashes before replying
    CrashLocked,   ///< crashes holding the segment locks; parameter: `lists` or `buffers` for only one
    RestartStorm,  ///< leaves the bus and returns; parameter: how often
};

/// Number of restarts in a storm without a parameter.
constexpr std::uint32_t kRestarts = 5;

struct Fault
{
    std::string member;  ///< method or signal; empty for all that the kind fits
    FaultKind kind = FaultKind::Delay;
    std::string parameter;
    unsigned count = 0;  ///< how often it applies; 0 until cleared

    /// The parameter as a number; @p whenEmpty if there is none.
    std::uint32_t Number(std::uint32_t whenEmpty) const;
};

/// For example "delay", "crash-locked".
const char* NameOf(FaultKind kind);

/// The names of all kinds.
std::vector<std::string> FaultKinds();

/// @throws std::runtime_error  the kind or member does not exist, the kind does not fit the member, or the parameter is
///                             invalid; the message gives the expectation
Fault MakeFault(const std::string& member, const std::string& kind, const std::string& parameter, unsigned count);

/// Parses the command-line form KIND[=PARAMETER][@MEMBER][/COUNT], for example "delay=500@GetPlayStatus/3".
/// @throws std::runtime_error  as MakeFault()
Fault ParseFault(const std::string& text);

/// The armed faults. Thread-safe.
class Faults
{
public:
    void Add(Fault fault);
    void Clear();
    /// Returns the first fault that fits the member and counts one use; empty if there is none.
    std::optional<Fault> Take(const std::string& member);

private:
    std::mutex m_mutex;
    std::vector<Fault> m_armed;
};
}  // namespace ipodsim
