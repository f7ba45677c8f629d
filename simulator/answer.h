/// @file
/// From a generated skeleton's "handle-…" signals to plain functions and back: the one place where requests pass.
#pragma once

#include <gio/gio.h>

#include <exception>
#include <string>
#include <tuple>
#include <type_traits>
#include <utility>

#include "service.h"

namespace ipodsim
{
/// One method of an interface: the skeleton's signal and what is connected to it.
struct MethodRow
{
    const char* signal;
    GCallback callback;
};

namespace answer
{
inline gboolean ToWire(bool value)
{
    return value ? TRUE : FALSE;
}
inline const gchar* ToWire(const std::string& value)
{
    return value.c_str();
}
template <class Value>
Value ToWire(Value value)
{
    return value;
}

template <class Value>
std::tuple<Value> ToTuple(Value value)
{
    return std::tuple<Value>(std::move(value));
}
template <class... Values>
std::tuple<Values...> ToTuple(std::tuple<Values...> values)
{
    return values;
}

template <auto handler, class... In>
auto Run(Service& service, In... in)
{
    if constexpr (std::is_void_v<decltype(handler(service, in...))>)
    {
        handler(service, in...);
        return std::tuple<>();
    }
    else
    {
        return ToTuple(handler(service, in...));
    }
}

template <auto complete, auto handler, class Object, class... In>
struct Bound
{
    // No exception may pass through GLib: it becomes an error reply.
    static gboolean Call(Object* object, GDBusMethodInvocation* invocation, In... in, gpointer self)
    {
        Service& service = *static_cast<Service*>(self);
        service.LogRequest(invocation);
        try
        {
            const auto out = Run<handler>(service, in...);
            std::apply([&](const auto&... values) { complete(object, invocation, ToWire(values)...); }, out);
        }
        catch (const std::exception& error)
        {
            g_dbus_method_invocation_return_dbus_error(invocation, "com.zarn.linux.ipod.Error.Failed", error.what());
        }
        return TRUE;
    }
};
}  // namespace answer

/// Binds a method to @p handler, a function that takes the service and the in-arguments and returns the out-argument,
/// a tuple of them, or nothing. @p complete is the generated function that replies. Argument types that differ from
/// the interface's do not compile.
template <auto complete, auto handler, class Interface, class Object, class... In>
MethodRow Method(const char* signal, gboolean (*Interface::*)(Object*, GDBusMethodInvocation*, In...))
{
    return {signal, G_CALLBACK((&answer::Bound<complete, handler, Object, In...>::Call))};
}

/// Connects all rows of a table. The service must outlive the skeleton.
template <class Table>
void Connect(gpointer skeleton, const Table& table, Service& service)
{
    for (const MethodRow& row : table) g_signal_connect(skeleton, row.signal, row.callback, &service);
}
}  // namespace ipodsim
