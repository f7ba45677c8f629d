/// @file
/// Connects the generated skeleton's "handle-…" signals to plain functions. Every request passes through here.
#pragma once

#include <gio/gio.h>

#include <functional>
#include <stdexcept>
#include <string>
#include <tuple>
#include <type_traits>
#include <utility>

#include "service/service.h"

namespace ipodsim
{
/// The arguments of a request are invalid; the reply is org.freedesktop.DBus.Error.InvalidArgs.
class InvalidRequest : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// @param work  executes the request and returns the body of the reply, floating; an exception becomes an error reply
void Serve(Service& service, GDBusMethodInvocation* invocation, const std::function<GVariant*()>& work);

/// One method of an interface: the skeleton's signal and its callback.
struct MethodRow
{
    const char* signal;
    GCallback callback;
};

namespace answer
{
inline GVariant* ToVariant(bool value)
{
    return g_variant_new_boolean(value ? TRUE : FALSE);
}
inline GVariant* ToVariant(guchar value)
{
    return g_variant_new_byte(value);
}
inline GVariant* ToVariant(guint16 value)
{
    return g_variant_new_uint16(value);
}
inline GVariant* ToVariant(gint value)
{
    return g_variant_new_int32(value);
}
inline GVariant* ToVariant(const std::string& value)
{
    return g_variant_new_string(value.c_str());
}
inline GVariant* ToVariant(GVariant* value)
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

template <class... Values>
GVariant* ToBody(const Values&... values)
{
    GVariantBuilder builder;
    g_variant_builder_init(&builder, G_VARIANT_TYPE_TUPLE);
    (g_variant_builder_add_value(&builder, ToVariant(values)), ...);
    return g_variant_builder_end(&builder);
}

// The parameter type of a value in the generated reply function.
template <class Value>
using Generated = std::conditional_t<std::is_same_v<Value, std::string>, const gchar*,
                                     std::conditional_t<std::is_same_v<Value, bool>, gboolean, Value>>;

template <class Object, class Complete, class Tuple>
struct Fits;
template <class Object, class Complete, class... Values>
struct Fits<Object, Complete, std::tuple<Values...>>
    : std::is_same<Complete, void (*)(Object*, GDBusMethodInvocation*, Generated<Values>...)>
{
};

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
    using Out = decltype(Run<handler>(std::declval<Service&>(), std::declval<In>()...));
    static_assert(Fits<Object, decltype(complete), Out>::value,
                  "the handler's result must match the method's out-arguments");

    static gboolean Call(Object*, GDBusMethodInvocation* invocation, In... in, gpointer self)
    {
        Service& service = *static_cast<Service*>(self);
        Serve(service, invocation,
              [&] {
                  return std::apply([](const auto&... values) { return ToBody(values...); },
                                    Run<handler>(service, in...));
              });
        return TRUE;
    }
};
}  // namespace answer

/// Binds a method to @p handler, which receives the service and the in-arguments and returns the out-argument, a tuple
/// of several, or nothing. @p complete is the generated reply function; only its parameter types are used. Types that
/// differ from the interface's do not compile.
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
