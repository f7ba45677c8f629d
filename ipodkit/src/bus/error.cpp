#include <ipodkit/error.h>

#include <cstring>

#include "bus/gerror.h"

namespace ipodkit
{
namespace
{
ErrorKind KindOfBusError(int code)
{
    switch (code)
    {
        case G_DBUS_ERROR_SERVICE_UNKNOWN:
        case G_DBUS_ERROR_NAME_HAS_NO_OWNER:
            return ErrorKind::NoService;
        case G_DBUS_ERROR_NO_REPLY:
            return ErrorKind::ServiceLost;
        case G_DBUS_ERROR_TIMEOUT:
        case G_DBUS_ERROR_TIMED_OUT:
            return ErrorKind::TimedOut;
        case G_DBUS_ERROR_DISCONNECTED:
        case G_DBUS_ERROR_NO_SERVER:
            return ErrorKind::NoBus;
        default:
            return ErrorKind::Refused;
    }
}

// Errors that GDBus reports within this process.
ErrorKind KindOfLocalError(int code)
{
    switch (code)
    {
        case G_IO_ERROR_CANCELLED:
            return ErrorKind::Cancelled;
        case G_IO_ERROR_TIMED_OUT:
            return ErrorKind::TimedOut;
        case G_IO_ERROR_INVALID_ARGUMENT:
            return ErrorKind::BadReply;
        default:
            return ErrorKind::NoBus;
    }
}

bool SentByTheBus(GDBusMessage& reply)
{
    const gchar* const sender = g_dbus_message_get_sender(&reply);
    return sender != nullptr && std::strcmp(sender, "org.freedesktop.DBus") == 0;
}

ErrorKind KindOf(const GError& error)
{
    if (error.domain == G_DBUS_ERROR) return KindOfBusError(error.code);
    if (g_dbus_error_is_remote_error(&error)) return ErrorKind::Refused;
    return error.domain == G_IO_ERROR ? KindOfLocalError(error.code) : ErrorKind::NoBus;
}

std::string RemoteName(const GError& error)
{
    if (g_dbus_error_is_remote_error(&error) == FALSE) return {};
    gchar* const name = g_dbus_error_get_remote_error(&error);
    std::string copy(name);
    g_free(name);
    return copy;
}
}  // namespace

const char* Name(ErrorKind kind)
{
    static constexpr const char* names[] = {"NoBus",     "NoService", "ServiceLost",    "TimedOut",    "Refused",
                                            "BadReply",  "Cancelled", "NoSharedMemory", "BadArgument", "Ambiguous",
                                            "NoStorage", "Busy",      "WouldDeadlock"};
    return names[static_cast<int>(kind)];
}

const char* Remedy(ErrorKind kind)
{
    static constexpr const char* remedies[] = {
        "set DBUS_SESSION_BUS_ADDRESS to the address of a running session bus",
        "start the iPod service",
        "check whether the service crashed; send the request again when the session is Ready",
        "check whether the service hangs, or allow more time with Within()",
        "",
        "update the service: its answer violates the bus contract",
        "",
        "run 'ipodctl doctor', which checks the segments",
        "correct the argument: the reason gives the range",
        "close all but one of the accessory sessions whose numbers have the same low byte",
        "free disk space, or choose a directory that this user may write to",
        "try again; if it persists, end the program that the reason names, or wait for AccessorySession::OnDrained()",
        "use Start(), or wait on another thread",
    };
    return remedies[static_cast<int>(kind)];
}

std::string Error::Text() const
{
    return std::string(Name(kind)) + ": " + reason;
}

Error ToError(const GError& error)
{
    const ErrorKind kind = KindOf(error);
    const ErrorPtr stripped(g_error_copy(&error));
    g_dbus_error_strip_remote_error(stripped.get());
    return {kind, stripped->message, RemoteName(error)};
}

std::optional<Error> ErrorIn(GDBusMessage& reply)
{
    GError* failure = nullptr;
    if (g_dbus_message_to_gerror(&reply, &failure) == FALSE) return std::nullopt;
    Error error = ToError(*ErrorPtr(failure));
    if (!SentByTheBus(reply)) error.kind = ErrorKind::Refused;
    return error;
}
}  // namespace ipodkit
