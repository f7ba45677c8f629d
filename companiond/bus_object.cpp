#include "bus_object.h"

#include <utility>

namespace companion
{
namespace
{
constexpr char kProperties[] = "org.freedesktop.DBus.Properties";
constexpr char kEmits[] = "org.freedesktop.DBus.Property.EmitsChangedSignal";

bool Equal(const Values& values, const std::string& name, const Value& value)
{
    const auto found = values.find(name);
    return found != values.end() && g_variant_equal(found->second.get(), value.get()) != FALSE;
}
}  // namespace

Value Owned(GVariant* value)
{
    return {g_variant_ref_sink(value), g_variant_unref};
}

// Without a set_property function, GDBus passes the Set() call to OnCall(), which can answer it later.
BusObject::BusObject(GDBusConnection* connection, const char* path, GDBusInterfaceInfo* interface)
    : m_connection(G_DBUS_CONNECTION(g_object_ref(connection))), m_path(path), m_interface(interface)
{
    static const GDBusInterfaceVTable table{OnCall, OnGet, nullptr, {}};
    m_registration = g_dbus_connection_register_object(m_connection, path, m_interface, &table, this, nullptr, nullptr);
}

BusObject::~BusObject()
{
    g_dbus_connection_unregister_object(m_connection, m_registration);
    g_object_unref(m_connection);
}

bool BusObject::IsAnnounced(const std::string& property) const
{
    GDBusPropertyInfo* const info = g_dbus_interface_info_lookup_property(m_interface, property.c_str());
    return g_strcmp0(g_dbus_annotation_info_lookup(info->annotations, kEmits), "false") != 0;
}

void BusObject::Publish(Values values)
{
    const Values before = std::exchange(m_values, std::move(values));
    GVariantBuilder changed;
    GVariantBuilder gone;
    g_variant_builder_init(&changed, G_VARIANT_TYPE_VARDICT);
    g_variant_builder_init(&gone, G_VARIANT_TYPE_STRING_ARRAY);
    std::size_t differences = 0;
    for (const auto& [name, value] : m_values)
    {
        if (Equal(before, name, value) || !IsAnnounced(name)) continue;
        g_variant_builder_add(&changed, "{sv}", name.c_str(), value.get());
        ++differences;
    }
    for (const auto& [name, value] : before)
    {
        if (m_values.count(name) != 0 || !IsAnnounced(name)) continue;
        g_variant_builder_add(&gone, "s", name.c_str());
        ++differences;
    }
    const Value signal = Owned(g_variant_new("(sa{sv}as)", m_interface->name, &changed, &gone));
    if (differences == 0) return;
    g_dbus_connection_emit_signal(m_connection, nullptr, m_path.c_str(), kProperties, "PropertiesChanged", signal.get(),
                                  nullptr);
}

void BusObject::Emit(const char* signal, GVariant* arguments)
{
    g_dbus_connection_emit_signal(m_connection, nullptr, m_path.c_str(), m_interface->name, signal, arguments, nullptr);
}

void BusObject::Set(const std::string& property, GVariant*, GDBusMethodInvocation* invocation)
{
    g_dbus_method_invocation_return_dbus_error(invocation, kNotSupported, (property + " cannot be set").c_str());
}

GVariant* BusObject::OnGet(GDBusConnection*, const gchar*, const gchar*, const gchar*, const gchar* property,
                           GError** error, gpointer self)
{
    const auto& object = *static_cast<const BusObject*>(self);
    const auto found = object.m_values.find(property);
    if (found != object.m_values.end()) return g_variant_ref(found->second.get());
    GVariant* const computed = object.Compute(property);
    if (computed == nullptr)
        g_set_error_literal(error, G_DBUS_ERROR, G_DBUS_ERROR_NOT_SUPPORTED, object.WhyAbsent(property).c_str());
    return computed;
}

void BusObject::OnCall(GDBusConnection*, const gchar*, const gchar*, const gchar* interface, const gchar* method,
                       GVariant* arguments, GDBusMethodInvocation* invocation, gpointer self)
{
    auto& object = *static_cast<BusObject*>(self);
    if (g_strcmp0(interface, kProperties) != 0) return object.Call(method, arguments, invocation);
    const gchar* property = nullptr;
    GVariant* value = nullptr;
    g_variant_get(arguments, "(&s&sv)", nullptr, &property, &value);
    object.Set(property, Owned(value).get(), invocation);
}
}  // namespace companion
