/// @file
/// The one way that every request takes: it is carried out, answered and logged, and may go wrong on purpose.
#pragma once

#include <gio/gio.h>

#include <functional>
#include <stdexcept>

#include "service/service.h"

namespace ipodsim
{
/// The arguments of a request are not valid; the reply is org.freedesktop.DBus.Error.InvalidArgs.
class InvalidRequest : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// @param work  carries the request out and returns the body of the reply, floating; what it throws becomes an error
void Serve(Service& service, GDBusMethodInvocation* invocation, const std::function<GVariant*()>& work);
}  // namespace ipodsim
