/// @file
/// Why something failed. What the service, the bus or the system may refuse is returned as a Result. An index that was
/// never valid is an error of the program, and thrown.
#pragma once

#include <string>
#include <tl/expected.hpp>

#pragma GCC visibility push(default)

namespace ipodkit
{
enum class ErrorKind
{
    NoBus,           ///< there is no session bus, or it went away
    NoService,       ///< nobody owns the service's name
    ServiceLost,     ///< the service went away before it answered
    TimedOut,        ///< no answer within the deadline; the service may still act on the request
    Refused,         ///< the service itself answered with an error, whatever its name, or with "false"
    BadReply,        ///< the answer is not what the contract allows, or does not fit the request
    Cancelled,       ///< the caller, a change of level, or the end of the session withdrew the request
    NoSharedMemory,  ///< the segments cannot be attached or do not take the data
    BadArgument,     ///< the request cannot be sent as it is; nothing was sent
    Ambiguous,       ///< received bytes that may belong to more than one accessory session
    NoStorage,       ///< a file cannot be written
    Busy,            ///< an accessory session has enough bytes to send; nothing was taken
    WouldDeadlock,   ///< waiting on the thread that runs the session's context, where the result would come
};

/// "TimedOut" for ErrorKind::TimedOut.
const char* Name(ErrorKind kind);

struct Error
{
    ErrorKind kind;
    std::string reason;  ///< in the words of the bus where it has any; otherwise what is wrong and what helps
    std::string name{};  ///< the bus's name of the error that was the answer; empty for "false" and for no answer

    /// "TimedOut: Timeout was reached", for logs.
    std::string Text() const;

    bool operator==(const Error& other) const
    {
        return kind == other.kind && reason == other.reason && name == other.name;
    }
    bool operator!=(const Error& other) const { return !(*this == other); }
};

/// A value, or why there is none.
template <class T>
using Result = tl::expected<T, Error>;
}  // namespace ipodkit

#pragma GCC visibility pop
