/// @file
/// How a run of ipodctl ends when it fails.
#pragma once

#include <ipodkit/error.h>

#include <stdexcept>
#include <string>
#include <utility>

namespace ctl
{
/// Exit codes. They are part of the program's interface: scripts rely on them.
enum ExitCode : int
{
    kDone = 0,
    kNothingDone = 1,    ///< the service refused, or there was nothing to do
    kUsage = 2,          ///< unknown command, index out of range, name not found
    kNoBus = 3,          ///< there is no session bus
    kNoService = 4,      ///< nobody on the bus owns the service's name
    kNoSegments = 5,     ///< shared memory cannot be attached or written
    kServiceLost = 6,    ///< the service went away, did not answer, or what it sent is broken
    kNoOutput = 7,       ///< standard output or a file accepts no more bytes
    kInterrupted = 130,  ///< Ctrl-C, or asked to terminate, before it was done
};

/// Ends the run: a code, one line that reports what failed and why, and one that suggests a remedy.
class Failure : public std::runtime_error
{
public:
    /// @param hint  the remedy; empty when there is none
    Failure(ExitCode code, const std::string& message, std::string hint = {})
        : std::runtime_error(message), m_code(code), m_hint(std::move(hint))
    {
    }
    ExitCode code() const { return m_code; }
    const std::string& hint() const { return m_hint; }

private:
    ExitCode m_code;
    std::string m_hint;
};

inline constexpr char kHintForLost[] = "check whether the service is running, then try again";

/// The end of a run for an error of the kit.
///
/// @param refusal  the message when the service answered "false"; null: the error's own. An error reply has a name and
///                 words of its own, and may mean anything.
Failure ToFailure(const ipodkit::Error& error, const char* refusal = nullptr);

/// Ends the run because somebody asked for it: nobody needs to be told.
struct Interrupted
{
};
}  // namespace ctl
