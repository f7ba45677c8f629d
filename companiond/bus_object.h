/// @file
/// One interface of one object on the bus.
#pragma once

#include <gio/gio.h>

#include <map>
#include <memory>
#include <string>

namespace companion
{
using Value = std::shared_ptr<GVariant>;

/// Takes ownership of a floating reference.
Value Owned(GVariant* value);

/// Properties by name. An absent one is unknown or not supported.
using Values = std::map<std::string, Value>;

inline constexpr char kNotSupported[] = "org.freedesktop.DBus.Error.NotSupported";
inline constexpr char kInvalidArgs[] = "org.freedesktop.DBus.Error.InvalidArgs";

/// Exports an interface: answers reads with the values published last, and forwards calls. Context thread only.
class BusObject
{
public:
    /// @param interface  must outlive the object; exported only if the path has no interface of that name yet
    BusObject(GDBusConnection* connection, const char* path, GDBusInterfaceInfo* interface);
    virtual ~BusObject();
    BusObject(const BusObject&) = delete;
    BusObject& operator=(const BusObject&) = delete;

protected:
    /// Replaces all values. Emits one PropertiesChanged with those that differ, except for properties that the
    /// interface annotates as emitting none.
    void Publish(Values values);

    /// Emits a signal of the interface. Consumes floating arguments.
    void Emit(const char* signal, GVariant* arguments);

    /// Returns the value of a property that is computed on each read, as a floating reference; null for others.
    virtual GVariant* Compute(const std::string&) const { return nullptr; }

    /// Returns the error message for reading a property without a value.
    virtual std::string WhyAbsent(const std::string& property) const { return property + " is not supported"; }

    /// Answers a call; takes ownership of the invocation.
    virtual void Call(const std::string& method, GVariant* arguments, GDBusMethodInvocation* invocation) = 0;

    /// Sets a writable property to a value of its type; takes ownership of the invocation.
    virtual void Set(const std::string& property, GVariant* value, GDBusMethodInvocation* invocation);

private:
    bool IsAnnounced(const std::string& property) const;

    static GVariant* OnGet(GDBusConnection*, const gchar*, const gchar*, const gchar*, const gchar* property,
                           GError** error, gpointer self);
    static void OnCall(GDBusConnection*, const gchar*, const gchar*, const gchar* interface, const gchar* method,
                       GVariant* arguments, GDBusMethodInvocation* invocation, gpointer self);

    GDBusConnection* const m_connection;
    const std::string m_path;
    GDBusInterfaceInfo* const m_interface;
    guint m_registration = 0;
    Values m_values;
};
}  // namespace companion
