/// @file
/// Results and errors. Failures of the service, the bus, or the system are returned as a Result. Only
/// programming errors throw: Page::At() with an index outside the page, Known::value() of an unknown value. Any thread.
#pragma once

#include <string>
#include <tl/expected.hpp>

#pragma GCC visibility push(default)

namespace ipodkit
{
/// Why a request failed.
enum class ErrorKind
{
    NoBus,           ///< no session bus is available, or its connection was closed
    NoService,       ///< nobody owns the service's name
    ServiceLost,     ///< the service exited before it answered
    TimedOut,        ///< no answer within the deadline; the service may still act on the request
    Refused,         ///< the service itself answered with an error, whatever its name, or with "false"
    BadReply,        ///< the answer violates the contract, or does not fit the request
    Cancelled,       ///< the caller, a changed list, or the end of the pager or session withdrew the request
    NoSharedMemory,  ///< the segments cannot be attached, or have no room for the data
    BadArgument,     ///< the request cannot be sent as it is; nothing was sent
    Ambiguous,       ///< received bytes that may belong to more than one accessory session
    NoStorage,       ///< a file cannot be written
    Busy,            ///< another process holds what the request needs, or the queue of an accessory session is full
    WouldDeadlock,   ///< the caller would block the thread on which the result arrives
};

/// "TimedOut" for ErrorKind::TimedOut.
const char* Name(ErrorKind kind);

/// Returns what the application or its user can do, without a full stop: "start the iPod service" for
/// ErrorKind::NoService. Empty where nothing helps (Refused, Cancelled).
const char* Remedy(ErrorKind kind);

/// An error of a request. Errors are equal when all their members are.
struct Error
{
    ErrorKind kind;
    std::string reason;  ///< for logs, not for decisions: the message of the bus, or a description
    std::string name{};  ///< D-Bus name of the error that the service or the bus sent; empty otherwise

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
