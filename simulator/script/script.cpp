#include "script/script.h"

#include <ipod_dbus.h>

#include <stdexcept>
#include <utility>

namespace ipodsim
{
namespace
{
std::string TupleOf(GDBusArgInfo* const* arguments)
{
    std::string type = "(";
    for (; arguments != nullptr && *arguments != nullptr; ++arguments) type += (*arguments)->signature;
    return type + ")";
}

// An empty type leaves the type to the text.
GVariant* ParseVariant(const std::string& type, const std::string& text)
{
    GError* error = nullptr;
    const GVariantType* const wanted = type.empty() ? nullptr : G_VARIANT_TYPE(type.c_str());
    GVariant* const value = g_variant_parse(wanted, text.c_str(), nullptr, nullptr, &error);
    if (value != nullptr) return value;
    const std::string message = "'" + text + "' is not a value of type " + type + ": " + error->message;
    g_error_free(error);
    throw std::runtime_error(message);
}
}  // namespace

Reply Reply::With(std::string body)
{
    Reply reply;
    reply.body = std::move(body);
    return reply;
}

Reply Reply::Malformed(std::string body)
{
    Reply reply = With(std::move(body));
    reply.malformed = true;
    return reply;
}

Reply Reply::Error(std::string name, std::string message)
{
    Reply reply = With(std::move(message));
    reply.error = std::move(name);
    return reply;
}

Reply Reply::Never()
{
    Reply reply;
    reply.never = true;
    return reply;
}

Reply Reply::After(unsigned milliseconds) const
{
    Reply reply = *this;
    reply.delayMs = milliseconds;
    return reply;
}

GVariant* BodyOf(const Reply& reply, const std::string& method)
{
    const GDBusMethodInfo* const info =
        g_dbus_interface_info_lookup_method(com_zarn_linux_ipod_interface_info(), method.c_str());
    if (info == nullptr) throw std::runtime_error("the interface has no method '" + method + "'");
    return ParseVariant(reply.malformed ? "" : TupleOf(info->out_args), reply.body);
}

GVariant* BodyOfSignal(const std::string& signal, const std::string& text)
{
    const GDBusSignalInfo* const info =
        g_dbus_interface_info_lookup_signal(com_zarn_linux_ipod_interface_info(), signal.c_str());
    if (info == nullptr) throw std::runtime_error("the interface has no signal '" + signal + "'");
    return ParseVariant(TupleOf(info->args), text);
}

void SendReply(GDBusMethodInvocation* invocation, GVariant* body)
{
    GDBusMessage* const request = g_dbus_method_invocation_get_message(invocation);
    GDBusMessage* const reply = g_dbus_message_new_method_reply(request);
    g_dbus_message_set_body(reply, body);
    if ((g_dbus_message_get_flags(request) & G_DBUS_MESSAGE_FLAGS_NO_REPLY_EXPECTED) == 0)
        g_dbus_connection_send_message(g_dbus_method_invocation_get_connection(invocation), reply,
                                       G_DBUS_SEND_MESSAGE_FLAGS_NONE, nullptr, nullptr);
    g_object_unref(reply);
    g_object_unref(invocation);
}
}  // namespace ipodsim
