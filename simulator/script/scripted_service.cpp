#include <ipodsim_script.h>

#include <ipod_dbus.h>

#include <chrono>
#include <stdexcept>
#include <utility>

#include "script/script.h"

namespace ipodsim
{
namespace
{
constexpr char kScriptedName[] = "com.zarn.linux.ipod";
constexpr char kScriptedPath[] = "/com/zarn/linux/ipod";
constexpr guint kAllowReplacement = 1;
constexpr guint kReplaceExisting = 2;
constexpr guint kDoNotQueue = 4;
constexpr auto kPatience = std::chrono::seconds(20);

void RequireSuccess(bool holds, const GError* error)
{
    if (!holds) throw std::runtime_error(error == nullptr ? "cannot start the scripted service" : error->message);
}

// A delayed reply, scheduled on the service's context.
struct LateReply
{
    GDBusMethodInvocation* invocation;
    Reply reply;
};

gboolean SendLateReply(gpointer data)
{
    const auto* const late = static_cast<LateReply*>(data);
    ScriptedService::Respond(late->invocation, late->reply.After(0));
    return G_SOURCE_REMOVE;
}

void RespondLater(GDBusMethodInvocation* invocation, const Reply& reply)
{
    GSource* const source = g_timeout_source_new(reply.delayMs);
    g_source_set_callback(source, SendLateReply, new LateReply{invocation, reply},
                          [](gpointer data) { delete static_cast<LateReply*>(data); });
    g_source_attach(source, g_main_context_get_thread_default());
    g_source_unref(source);
}

std::string CallText(const gchar* method, GVariant* arguments)
{
    gchar* const text = g_variant_print(arguments, FALSE);
    const std::string call = std::string(method) + text;
    g_free(text);
    return call;
}
}  // namespace

ScriptedService::ScriptedService(Takeover takeover)
    : m_nameFlags(kAllowReplacement | kDoNotQueue | (takeover == Takeover::Yes ? kReplaceExisting : 0)),
      m_context(g_main_context_new()),
      m_thread(&ScriptedService::Run, this)
{
    std::unique_lock<std::mutex> lock(m_mutex);
    m_changed.wait(lock, [this] { return m_ready; });
}

ScriptedService::~ScriptedService()
{
    Vanish();
    if (m_lastArguments != nullptr) g_variant_unref(m_lastArguments);
    g_main_context_unref(m_context);
}

void ScriptedService::Run()
{
    g_main_context_push_thread_default(m_context);
    Connect();
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_ready = true;
    }
    m_changed.notify_all();
    while (!m_vanishing) g_main_context_iteration(m_context, TRUE);
    g_dbus_connection_close_sync(m_connection, nullptr, nullptr);
    for (GDBusMethodInvocation* invocation : m_held) g_object_unref(invocation);
    g_object_unref(m_connection);
    while (g_main_context_iteration(m_context, FALSE)) continue;
    g_main_context_pop_thread_default(m_context);
}

void ScriptedService::Connect()
{
    static const GDBusInterfaceVTable table = {OnMethodCall, nullptr, nullptr, {}};
    GError* error = nullptr;
    m_connection = g_dbus_connection_new_for_address_sync(
        g_getenv("DBUS_SESSION_BUS_ADDRESS"),
        static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                          G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
        nullptr, nullptr, &error);
    RequireSuccess(m_connection != nullptr, error);
    const guint registration = g_dbus_connection_register_object(
        m_connection, kScriptedPath, com_zarn_linux_ipod_interface_info(), &table, this, nullptr, &error);
    RequireSuccess(registration != 0, error);
    CallBus("RequestName", g_variant_new("(su)", kScriptedName, m_nameFlags));
}

void ScriptedService::CallBus(const char* method, GVariant* arguments)
{
    GError* error = nullptr;
    GVariant* const reply = g_dbus_connection_call_sync(
        m_connection, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", method, arguments,
        G_VARIANT_TYPE("(u)"), G_DBUS_CALL_FLAGS_NONE, -1, nullptr, &error);
    RequireSuccess(reply != nullptr, error);
    g_variant_unref(reply);
}

void ScriptedService::OnMethodCall(GDBusConnection*, const gchar*, const gchar*, const gchar*, const gchar* method,
                                   GVariant* arguments, GDBusMethodInvocation* invocation, gpointer self)
{
    auto& service = *static_cast<ScriptedService*>(self);
    const Reaction reaction = service.ReactionTo(method);
    service.Record(method, arguments);
    if (reaction)
        reaction(invocation);
    else
        g_dbus_method_invocation_return_dbus_error(invocation, "com.example.NotScripted", method);
}

void ScriptedService::Respond(GDBusMethodInvocation* invocation, const Reply& reply)
{
    if (reply.delayMs != 0) return RespondLater(invocation, reply);
    if (reply.never) return g_object_unref(invocation);
    if (!reply.error.empty())
        return g_dbus_method_invocation_return_dbus_error(invocation, reply.error.c_str(), reply.body.c_str());
    GVariant* const body = BodyOf(reply, g_dbus_method_invocation_get_method_name(invocation));
    SendReply(invocation, body);
    g_variant_unref(body);
}

void ScriptedService::Record(const gchar* method, GVariant* arguments)
{
    if (!m_keepingCalls) return;
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_calls.push_back(CallText(method, arguments));
        if (m_lastArguments != nullptr) g_variant_unref(m_lastArguments);
        m_lastArguments = g_variant_ref(arguments);
    }
    m_changed.notify_all();
}

ScriptedService::Reaction ScriptedService::ReactionTo(const std::string& method) const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    const auto found = m_reactions.find(method);
    return found == m_reactions.end() ? Reaction() : found->second;
}

void ScriptedService::React(const std::string& method, Reaction reaction)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_reactions[method] = std::move(reaction);
}

void ScriptedService::On(const std::string& method, Handler handler)
{
    React(method,
          [handler = std::move(handler)](GDBusMethodInvocation* invocation)
          {
              // Exceptions must not propagate through GLib.
              try
              {
                  Respond(invocation, handler(g_dbus_method_invocation_get_parameters(invocation)));
              }
              catch (const std::exception& error)
              {
                  g_dbus_method_invocation_return_dbus_error(invocation, "com.example.Broken", error.what());
              }
          });
}

void ScriptedService::Answer(const std::string& method, const std::string& body)
{
    React(method, [reply = Reply::With(body)](GDBusMethodInvocation* invocation) { Respond(invocation, reply); });
}

void ScriptedService::Fail(const std::string& method, const std::string& message)
{
    React(method, [reply = Reply::Error("com.example.Broken", message)](GDBusMethodInvocation* invocation)
          { Respond(invocation, reply); });
}

void ScriptedService::AnswerInvalid(const std::string& method, const std::string& body)
{
    React(method, [reply = Reply::Malformed(body)](GDBusMethodInvocation* invocation) { Respond(invocation, reply); });
}

void ScriptedService::Hold(const std::string& method)
{
    React(method,
          [this](GDBusMethodInvocation* invocation)
          {
              const std::lock_guard<std::mutex> lock(m_mutex);
              m_held.push_back(invocation);
          });
}

void ScriptedService::AnswerHeld(const std::string& body)
{
    std::vector<GDBusMethodInvocation*> held;
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        held.swap(m_held);
    }
    for (GDBusMethodInvocation* invocation : held) Respond(invocation, Reply::With(body));
}

std::vector<std::string> ScriptedService::Calls() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_calls;
}

void ScriptedService::KeepNoCalls()
{
    m_keepingCalls = false;
}

GVariant* ScriptedService::LastArguments() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return g_variant_ref(m_lastArguments);
}

bool ScriptedService::WaitForCalls(std::size_t count) const
{
    std::unique_lock<std::mutex> lock(m_mutex);
    return m_changed.wait_for(lock, kPatience, [this, count] { return m_calls.size() >= count; });
}

void ScriptedService::Emit(const std::string& signal, const std::string& body)
{
    GVariant* const value = BodyOfSignal(signal, body);
    EmitBody(signal, value);
    g_variant_unref(value);
}

void ScriptedService::EmitBody(const std::string& signal, GVariant* body)
{
    GError* error = nullptr;
    const bool sent = g_dbus_connection_emit_signal(m_connection, nullptr, kScriptedPath, kScriptedName, signal.c_str(),
                                                    body, &error);
    RequireSuccess(sent, error);
}

void ScriptedService::Flush()
{
    GError* error = nullptr;
    const bool flushed = g_dbus_connection_flush_sync(m_connection, nullptr, &error);
    RequireSuccess(flushed, error);
}

void ScriptedService::ReleaseName()
{
    CallBus("ReleaseName", g_variant_new("(s)", kScriptedName));
}

void ScriptedService::Vanish()
{
    if (!m_thread.joinable()) return;
    m_vanishing = true;
    g_main_context_wakeup(m_context);
    m_thread.join();
}

std::string ScriptedService::UniqueName() const
{
    return g_dbus_connection_get_unique_name(m_connection);
}
}  // namespace ipodsim
