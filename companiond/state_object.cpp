#include "state_object.h"

#include <ipodkit/variant.h>

#include <tuple>

namespace companion
{
namespace
{
using ipodkit::FieldType;
using ipodkit::PlayerState;
using ipodkit::PropertyName;
using ipodkit::Row;

/// The part of the state that Field::Connection covers.
struct Link
{
    const PlayerState& state;

    std::string Phase() const { return Name(state.phase); }
    std::uint32_t Generation() const { return state.generation; }
    std::string Service() const { return state.service; }
    std::string Error() const { return state.error ? state.error->Text() : ""; }
    std::string Missing() const { return Names(state.missing); }
    std::string Remembered() const { return Names(state.remembered); }
};

constexpr std::tuple kLink{
    Row{"phase", &Link::Phase, "", "Absent, Connecting, Ready, or Lost"},
    Row{"generation", &Link::Generation, "", "Number of times the service has appeared"},
    Row{"service", &Link::Service, "", "Unique name of the service that the values come from; empty before the first"},
    Row{"error", &Link::Error, "", "Why the state is not ready or lacks fields; empty without an error"},
    Row{"missing", &Link::Missing, "", "Fields whose answer is late, separated by commas"},
    Row{"remembered", &Link::Remembered, "", "Fields known only from another daemon, separated by commas"},
};

template <class T>
struct Plain
{
    using Type = T;
};
template <class T>
struct Plain<ipodkit::Known<T>>
{
    using Type = T;
};

std::string Escaped(const std::string& text)
{
    gchar* const escaped = g_markup_escape_text(text.c_str(), -1);
    std::string owned(escaped);
    g_free(escaped);
    return owned;
}

std::string Annotation(const char* name, const std::string& value)
{
    return std::string("      <annotation name=\"") + name + "\" value=\"" + Escaped(value) + "\"/>\n";
}

template <class Struct, class Row>
std::string Described(const Row& row, const char* changes)
{
    using Type = typename Plain<FieldType<Struct, Row>>::Type;
    const std::string unit = *row.unit == '\0' ? "" : std::string(" [") + row.unit + "]";
    return "    <property name=\"" + PropertyName(row.name) + "\" type=\"" + ipodkit::VariantOf<Type>::Type() +
           "\" access=\"read\">\n" + Annotation("org.gtk.GDBus.DocString", row.meaning + unit) +
           Annotation("org.freedesktop.DBus.Property.EmitsChangedSignal", changes) + "    </property>\n";
}

GDBusInterfaceInfo* StateInterface()
{
    static GDBusNodeInfo* const node = g_dbus_node_info_new_for_xml(StateInterfaceXml().c_str(), nullptr);
    return node->interfaces[0];
}

template <class T>
void Add(Values& values, const char* row, const ipodkit::Known<T>& value)
{
    if (value) values[PropertyName(row)] = Owned(ipodkit::ToVariant(*value));
}

template <class T>
void Add(Values& values, const char* row, const T& value)
{
    values[PropertyName(row)] = Owned(ipodkit::ToVariant(value));
}

Values StateValues(const PlayerState& state)
{
    Values values;
    const Link link{state};
    std::apply([&](const auto&... row) { (Add(values, row.name, std::invoke(row.get, link)), ...); }, kLink);
    ipodkit::ForEachRow<PlayerState>([&](const auto& row) { Add(values, row.name, std::invoke(row.get, state)); });
    return values;
}
}  // namespace

std::string StateInterfaceXml()
{
    std::string xml;
    std::apply([&](const auto&... row) { ((xml += Described<Link>(row, "true")), ...); }, kLink);
    ipodkit::ForEachRow<PlayerState>([&](const auto& row) { xml += Described<PlayerState>(row, "true"); });
    ipodkit::ForEachRow<Counters>([&](const auto& row) { xml += Described<Counters>(row, "false"); });
    return std::string("<node>\n  <interface name=\"") + kStateName + "\">\n" +
           Annotation("org.gtk.GDBus.DocString",
                      "State of the player and the attached device, read-only. A property "
                      "that is unknown has no value: reading it fails with the reason.") +
           xml + "  </interface>\n</node>\n";
}

StateObject::StateObject(GDBusConnection* connection, const Counters& counters)
    : BusObject(connection, kStatePath, StateInterface()), m_counters(counters)
{
    Publish(StateValues(*m_state));
}

void StateObject::Follow(const ipodkit::StatePtr& state)
{
    m_state = state;
    Publish(StateValues(*state));
}

GVariant* StateObject::Compute(const std::string& property) const
{
    GVariant* value = nullptr;
    ipodkit::ForEachRow<Counters>(
        [&](const auto& row)
        {
            if (property == PropertyName(row.name)) value = ipodkit::ToVariant(std::invoke(row.get, m_counters));
        });
    return value;
}

std::string StateObject::WhyAbsent(const std::string& property) const
{
    std::string why = property + " is unknown";
    ipodkit::ForEachRow<PlayerState>(
        [&](const auto& row)
        {
            if (property == PropertyName(row.name)) why += ": " + ToString(*m_state->Why(row.field));
        });
    return why;
}

// The interface has no methods.
void StateObject::Call(const std::string& method, GVariant*, GDBusMethodInvocation* invocation)
{
    g_dbus_method_invocation_return_dbus_error(invocation, kNotSupported, (method + " is not supported").c_str());
}
}  // namespace companion
