/// @file
/// Faults to inject, and when they apply.
#pragma once

#include <cstdint>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace ipodsim
{
/// `ipod-simulator --help` describes them; see FaultHelp().
enum class FaultKind
{
    Delay,
    NoReply,
    Error,
    WrongType,
    ShortRecord,
    LongRecord,
    HalfFilled,
    Unterminated,
    BadMessage,
    OutOfRange,
    Crash,
    CrashLocked,
    RestartStorm,
};

/// Number of restarts in a storm without a parameter.
constexpr std::uint32_t kRestarts = 5;

struct Fault
{
    std::string member;  ///< method or signal; empty for all that the kind fits
    FaultKind kind = FaultKind::Delay;
    std::string parameter;
    unsigned count = 0;  ///< how many times it applies; 0 until cleared

    /// The parameter as a number; @p whenEmpty if there is none.
    std::uint32_t Number(std::uint32_t whenEmpty) const;
};

/// The names of all kinds.
std::vector<std::string> FaultKinds();

/// Each kind with its parameter, such as "delay=MILLISECONDS", and its effect.
std::vector<std::pair<std::string, std::string>> FaultHelp();

/// Parses the command-line form KIND[=PARAMETER][@MEMBER][/COUNT], for example "delay=500@GetPlayStatus/3".
/// @throws std::runtime_error  the kind or member does not exist, the kind does not fit the member, or the parameter or
///                             the count is invalid; the message gives the expectation
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
