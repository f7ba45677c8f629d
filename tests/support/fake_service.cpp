#include "support/fake_service.h"

#include <ipod_dbus.h>

#include <chrono>
#include <stdexcept>

namespace test
{
namespace
{
constexpr char kName[] = "com.zarn.linux.ipod";
constexpr char kPath[] = "/com/zarn/linux/ipod";
constexpr guint kAllowReplacement = 1;
constexpr guint kReplaceExisting = 2;
constexpr guint kDoNotQueue = 4;
constexpr auto kPatience = std::chrono::seconds(20);

void Require(bool holds, const GError* error)
{
    if (!holds) throw std::runtime_error(error == nullptr ? "fake service" : error->message);
}

std::string TypeOf(GDBusArgInfo* const* arguments)
{
    std::string type = "(";
    for (; arguments != nullptr && *arguments != nullptr; ++arguments) type += (*arguments)->signature;
    return type + ")";
}

std::string ReplyType(const std::string& method)
{
    const GDBusMethodInfo* const info =
        g_dbus_interface_info_lookup_method(com_zarn_linux_ipod_interface_info(), method.c_str());
    if (info == nullptr) throw std::invalid_argument(method);
    return TypeOf(info->out_args);
}

std::string BodyType(const std::string& signal)
{
    const GDBusSignalInfo* const info =
        g_dbus_interface_info_lookup_signal(com_zarn_linux_ipod_interface_info(), signal.c_str());
    if (info == nullptr) throw std::invalid_argument(signal);
    return TypeOf(info->args);
}

// A null @p type leaves it to the text.
GVariant* Parse(const GVariantType* type, const std::string& text)
{
    GError* error = nullptr;
    GVariant* const value = g_variant_parse(type, text.c_str(), nullptr, nullptr, &error);
    Require(value != nullptr, error);
    return value;
}

void Reply(GDBusMethodInvocation* invocation, const std::string& body)
{
    const std::string type = ReplyType(g_dbus_method_invocation_get_method_name(invocation));
    GVariant* const value = Parse(G_VARIANT_TYPE(type.c_str()), body);
    g_dbus_method_invocation_return_value(invocation, value);
    g_variant_unref(value);
}

std::string CallText(const gchar* method, GVariant* arguments)
{
    gchar* const text = g_variant_print(arguments, FALSE);
    const std::string call = std::string(method) + text;
    g_free(text);
    return call;
}
}  // namespace

FakeService::FakeService(Takeover takeover)
    : m_nameFlags(kAllowReplacement | kDoNotQueue | (takeover == Takeover::Yes ? kReplaceExisting : 0)),
      m_context(g_main_context_new()),
      m_thread(&FakeService::Run, this)
{
    std::unique_lock<std::mutex> lock(m_mutex);
    m_changed.wait(lock, [this] { return m_ready; });
}

FakeService::~FakeService()
{
    Vanish();
    if (m_lastArguments != nullptr) g_variant_unref(m_lastArguments);
    g_main_context_unref(m_context);
}

void FakeService::Run()
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

void FakeService::Connect()
{
    static const GDBusInterfaceVTable table = {OnMethodCall, nullptr, nullptr, {}};
    GError* error = nullptr;
    m_connection = g_dbus_connection_new_for_address_sync(
        g_getenv("DBUS_SESSION_BUS_ADDRESS"),
        static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                          G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
        nullptr, nullptr, &error);
    Require(m_connection != nullptr, error);
    const guint registration = g_dbus_connection_register_object(
        m_connection, kPath, com_zarn_linux_ipod_interface_info(), &table, this, nullptr, &error);
    Require(registration != 0, error);
    CallBus("RequestName", g_variant_new("(su)", kName, m_nameFlags));
}

void FakeService::CallBus(const char* method, GVariant* arguments)
{
    GError* error = nullptr;
    GVariant* const reply = g_dbus_connection_call_sync(
        m_connection, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", method, arguments,
        G_VARIANT_TYPE("(u)"), G_DBUS_CALL_FLAGS_NONE, -1, nullptr, &error);
    Require(reply != nullptr, error);
    g_variant_unref(reply);
}

void FakeService::OnMethodCall(GDBusConnection*, const gchar*, const gchar*, const gchar*, const gchar* method,
                               GVariant* arguments, GDBusMethodInvocation* invocation, gpointer self)
{
    auto& service = *static_cast<FakeService*>(self);
    const Reaction reaction = service.ReactionTo(method);
    service.Record(method, arguments);
    if (reaction)
        reaction(invocation);
    else
        g_dbus_method_invocation_return_dbus_error(invocation, "com.example.NotTold", method);
}

// Past GDBus, which would not let a body of another type through.
void FakeService::ReplyInvalid(GDBusMethodInvocation* invocation, const std::string& body)
{
    GVariant* const value = Parse(nullptr, body);
    GDBusMessage* const message = g_dbus_message_new_method_reply(g_dbus_method_invocation_get_message(invocation));
    g_dbus_message_set_body(message, value);
    g_dbus_connection_send_message(g_dbus_method_invocation_get_connection(invocation), message,
                                   G_DBUS_SEND_MESSAGE_FLAGS_NONE, nullptr, nullptr);
    g_object_unref(message);
    g_variant_unref(value);
    g_object_unref(invocation);
}

void FakeService::Record(const gchar* method, GVariant* arguments)
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

FakeService::Reaction FakeService::ReactionTo(const std::string& method) const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    const auto found = m_reactions.find(method);
    return found == m_reactions.end() ? Reaction() : found->second;
}

void FakeService::React(const std::string& method, Reaction reaction)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_reactions[method] = std::move(reaction);
}

void FakeService::Answer(const std::string& method, const std::string& body)
{
    React(method, [body](GDBusMethodInvocation* invocation) { Reply(invocation, body); });
}

void FakeService::Fail(const std::string& method, const std::string& message)
{
    React(method, [message](GDBusMethodInvocation* invocation)
          { g_dbus_method_invocation_return_dbus_error(invocation, "com.example.Broken", message.c_str()); });
}

void FakeService::AnswerInvalid(const std::string& method, const std::string& body)
{
    React(method, [body](GDBusMethodInvocation* invocation) { ReplyInvalid(invocation, body); });
}

void FakeService::Hold(const std::string& method)
{
    React(method,
          [this](GDBusMethodInvocation* invocation)
          {
              const std::lock_guard<std::mutex> lock(m_mutex);
              m_held.push_back(invocation);
          });
}

void FakeService::AnswerHeld(const std::string& body)
{
    std::vector<GDBusMethodInvocation*> held;
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        held.swap(m_held);
    }
    for (GDBusMethodInvocation* invocation : held) Reply(invocation, body);
}

std::vector<std::string> FakeService::Calls() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_calls;
}

void FakeService::KeepNoCalls()
{
    m_keepingCalls = false;
}

GVariant* FakeService::LastArguments() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return g_variant_ref(m_lastArguments);
}

bool FakeService::WaitForCalls(std::size_t count) const
{
    std::unique_lock<std::mutex> lock(m_mutex);
    return m_changed.wait_for(lock, kPatience, [this, count] { return m_calls.size() >= count; });
}

void FakeService::Emit(const std::string& signal, const std::string& body)
{
    const std::string type = BodyType(signal);
    GVariant* const value = Parse(G_VARIANT_TYPE(type.c_str()), body);
    EmitBody(signal, value);
    g_variant_unref(value);
}

void FakeService::EmitBody(const std::string& signal, GVariant* body)
{
    GError* error = nullptr;
    const bool sent = g_dbus_connection_emit_signal(m_connection, nullptr, kPath, kName, signal.c_str(), body, &error);
    Require(sent, error);
}

void FakeService::Flush()
{
    GError* error = nullptr;
    const bool flushed = g_dbus_connection_flush_sync(m_connection, nullptr, &error);
    Require(flushed, error);
}

void FakeService::ReleaseName()
{
    CallBus("ReleaseName", g_variant_new("(s)", kName));
}

void FakeService::Vanish()
{
    if (!m_thread.joinable()) return;
    m_vanishing = true;
    g_main_context_wakeup(m_context);
    m_thread.join();
}

std::string FakeService::UniqueName() const
{
    return g_dbus_connection_get_unique_name(m_connection);
}
}  // namespace test
