/// @file
/// Synchronous calls to the service: the call, its one failure line, and the holder of its reply.
#pragma once

#include "internal/log.h"
#include "internal/module_state.h"

namespace qbx
{
/// A generated call, the text of its failure line, and the calling command.
template <class Function>
struct CallSite
{
    Function* function;
    const char* failure;
    LogSite where;
};

/// Writes the failure line if there is an error.
void LogFailure(const LogSite& where, const char* format, const GError* error);

/// Makes the call and returns its error without a log line. @p args are the generated function's own, without
/// proxy, cancellable and error.
template <class Function, class... Args>
GError* TryCall(const CallSite<Function>& site, Args... args)
{
    GError* error = nullptr;
    site.function(serviceProxy, args..., nullptr, &error);
    return error;
}

/// Makes the call and logs its failure. The caller owns the error; commands intentionally leak it (docs/oddities.md).
template <class Function, class... Args>
GError* Call(const CallSite<Function>& site, Args... args)
{
    GError* error = TryCall(site, args...);
    LogFailure(site.where, site.failure, error);
    return error;
}

/// Makes the call, logs a failure, and releases the error.
template <class Function, class... Args>
void CallAndRelease(const CallSite<Function>& site, Args... args)
{
    GError* error = Call(site, args...);
    if (error != nullptr) g_error_free(error);
}

/// Replaces an initial value: the reply holder is intentionally left uninitialized.
struct Unset
{
};

template <class T>
struct ReplyHolder
{
    explicit ReplyHolder(Unset) {}
    explicit ReplyHolder(T start) : value(start) {}

    T value;
};

/// Makes a call with one reply value, which is @p start if the call fails.
template <class T, class Function, class Start, class... Args>
T Ask(const CallSite<Function>& site, Start start, Args... args)
{
    ReplyHolder<T> reply(start);
    Call(site, args..., &reply.value);
    return reply.value;
}
}  // namespace qbx

#define SYNC(generated)                                                             \
    qbx::CallSite<decltype(generated)>                                              \
    {                                                                               \
        generated, #generated ": Failed to call dbus method. Reason: %s.", LOG_SITE \
    }
