/// @file
/// Exit codes of ipodctl, and the exceptions that end a run early.
#pragma once

#include <ipodkit/error.h>

#include <stdexcept>
#include <string>
#include <utility>

namespace ctl
{
/// Exit codes. Scripts rely on them, so they are a stable interface.
enum ExitCode : int
{
    kDone = 0,
    kNothingDone = 1,    ///< the service refused, or there was nothing to do
    kUsage = 2,          ///< unknown command, index out of range, name not found
    kNoBus = 3,          ///< there is no session bus
    kNoService = 4,      ///< the service's bus name has no owner
    kNoSegments = 5,     ///< shared memory cannot be attached or written
    kServiceLost = 6,    ///< the service exited, did not answer, or sent invalid data
    kNoOutput = 7,       ///< writing to standard output or a file failed
    kInterrupted = 130,  ///< SIGINT, SIGTERM, or SIGHUP before the command was done
};

/// Ends the run with an exit code, a one-line message (what failed, why), and an optional hint.
class Failure : public std::runtime_error
{
public:
    /// @param hint  the remedy; empty for none
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

inline constexpr char kCheckDevices[] = "check with 'ipodctl devices' that a device is attached";
inline constexpr char kHintForLost[] = "check whether the service is running, then try again";

/// The message and the optional hint if the service answers "false". If the message is empty, the text of the error is
/// used.
struct Refusal
{
    Refusal() = default;
    Refusal(std::nullptr_t) = delete;
    Refusal(const char* what, std::string remedy = {}) : message(what), hint(std::move(remedy)) {}
    Refusal(std::string what, std::string remedy = {}) : message(std::move(what)), hint(std::move(remedy)) {}

    std::string message;
    std::string hint;
};

/// Converts an ipodkit error to a Failure.
///
/// @param refusal  ignored for D-Bus error replies, which have their own name and text
Failure ToFailure(const ipodkit::Error& error, const Refusal& refusal = {});

/// Ends the run at the user's request, without a message.
struct Interrupted
{
};
}  // namespace ctl
