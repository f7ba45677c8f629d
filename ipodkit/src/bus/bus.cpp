#include "bus/bus.h"

#include <cstring>
#include <vector>

#include "bus/gerror.h"
#include "loop/context.h"

namespace ipodkit::detail
{
namespace
{
int Milliseconds(const Call& call)
{
    return static_cast<int>(Clamped(call.terms.deadline.value_or(kLongestDeadline)).count());
}

GCancellable* NativeOf(const Call& call)
{
    return call.terms.cancellation ? call.terms.cancellation->Native() : nullptr;
}

// "EnterDbChildList(3)".
std::string ShortTextOf(const Call& call)
{
    std::string text = TextOf(call);
    const std::size_t comma = text.size() - 2;
    if (text[comma] == ',') text.erase(comma, 1);
    return text;
}

// A reply must have the contract's type. "false" means that the service refused.
Result<Body> Validated(const Call& call, Result<Body> result)
{
    if (!result) return result;
    if (!g_variant_is_of_type(result->get(), G_VARIANT_TYPE(call.replyType)))
        return tl::unexpected(Error{ErrorKind::BadReply, std::string(call.method) + ": expected a reply of type " +
                                                             call.replyType + ", got " +
                                                             g_variant_get_type_string(result->get())});
    if (!call.isCommand) return result;
    gboolean followed = FALSE;
    g_variant_get(result->get(), "(b)", &followed);
    if (followed != FALSE) return result;
    return tl::unexpected(Error{ErrorKind::Refused, "the service answered " + ShortTextOf(call) + " with false"});
}

// One record for each request, so that a log shows what an application requested.
void LogOutcome(const Call& call, const Result<Body>& result, std::chrono::steady_clock::time_point since)
{
    const std::string taken = DurationText(std::chrono::steady_clock::now() - since);
    LogDebug(ShortTextOf(call) + (result ? " took " + taken : " failed after " + taken + ": " + result.error().reason));
}

// Returns whether the request is a command, which returns success or nothing.
bool IsCommand(const Call& call)
{
    return call.isCommand || std::strcmp(call.replyType, "()") == 0;
}

// Without a valid answer in time, the service may still have executed the command.
bool MayBeFollowed(const Call& call, const Result<Body>& result)
{
    if (!IsCommand(call)) return false;
    if (result) return true;
    const ErrorKind kind = result.error().kind;
    return kind == ErrorKind::TimedOut || kind == ErrorKind::Cancelled || kind == ErrorKind::BadReply;
}

// Builds a message, because GDBus's call functions would hide whether the service or the bus sent an error.
MessagePtr MessageOf(const Call& call)
{
    MessagePtr message(g_dbus_message_new_method_call(kBusName, kObjectPath, kBusName, call.method));
    g_dbus_message_set_flags(message.get(), G_DBUS_MESSAGE_FLAGS_NO_AUTO_START);
    if (call.arguments != nullptr) g_dbus_message_set_body(message.get(), call.arguments.get());
    return message;
}

// An empty reply has no body.
Body BodyOf(GDBusMessage& reply)
{
    GVariant* const body = g_dbus_message_get_body(&reply);
    return {body != nullptr ? g_variant_ref(body) : g_variant_ref_sink(g_variant_new("()")), g_variant_unref};
}

// Takes ownership of both; one of them is null.
Result<Body> ToResult(GDBusMessage* reply, GError* error)
{
    const MessagePtr answer(reply);
    const ErrorPtr failure(error);
    if (failure != nullptr) return tl::unexpected(ToError(*failure));
    if (const std::optional<Error> refusal = ErrorIn(*answer)) return tl::unexpected(*refusal);
    return BodyOf(*answer);
}
}  // namespace

std::string TextOf(const Call& call)
{
    if (call.arguments == nullptr) return std::string(call.method) + "()";
    gchar* const printed = g_variant_print(call.arguments.get(), FALSE);
    const std::string arguments(printed);
    g_free(printed);
    return call.method + arguments;
}

Bus::Bus(GMainContext* context, const Guard& guard)
    : m_home(std::make_shared<detail::Home>(context, guard)), m_requests(RequestGroup::Make(m_home))
{
}

void Bus::OnFollowed(std::function<void(const char*)> followed)
{
    m_followed = std::move(followed);
}

void Bus::Send(std::shared_ptr<PendingCall> call)
{
    const bool here = g_main_context_is_owner(Context()) != FALSE;
    const bool sendable = !call->call.error;
    const Serial serial = Remember(std::move(call));
    if (here && sendable)
        Transmit(serial);
    else
        Post(Context(), [self = shared_from_this(), serial] { self->Transmit(serial); });
}

Bus::Serial Bus::Remember(PendingPtr pending)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (m_closed) pending->call.error = kSessionEnded;
    pending->serial = ++m_lastSerial;
    m_pending.emplace_hint(m_pending.end(), m_lastSerial, std::move(pending));
    return m_lastSerial;
}

// Keeps the request if there is no connection yet. A request that another thread has just made may already have been
// sent when the connection was established, before its own turn in the context.
void Bus::Transmit(Serial serial)
{
    std::unique_lock<std::mutex> lock(m_mutex);
    const auto found = m_pending.find(serial);
    if (found == m_pending.end() || found->second->sent) return;
    const PendingPtr pending = found->second;
    const std::optional<Error> error = pending->call.error ? pending->call.error : m_error;
    pending->sent = !error && (m_connection != nullptr || m_responder);
    lock.unlock();
    if (error) return CompleteLater(serial, tl::unexpected(*error));
    if (!pending->sent) return;
    if (!m_responder) return TransmitOn(m_connection.get(), pending->call, serial);
    if (auto answer = m_responder(pending->call, serial)) CompleteLater(serial, std::move(*answer));
}

void Bus::CompleteLater(Serial serial, Result<Body> result)
{
    Post(Context(),
         [self = shared_from_this(), serial, result = std::move(result)] { self->Complete(serial, result); });
}

void Bus::TransmitOn(GDBusConnection* connection, const Call& call, Serial serial)
{
    const DefaultContext delivered(Context());
    g_dbus_connection_send_message_with_reply(connection, MessageOf(call).get(), G_DBUS_SEND_MESSAGE_FLAGS_NONE,
                                              Milliseconds(call), nullptr, NativeOf(call), OnReply,
                                              new Ticket{shared_from_this(), serial});
}

void Bus::OnReply(GObject* connection, GAsyncResult* result, gpointer data)
{
    const std::unique_ptr<Ticket> ticket(static_cast<Ticket*>(data));
    ticket->bus->m_home->RunsOnThisThread();
    GError* error = nullptr;
    GDBusMessage* const reply =
        g_dbus_connection_send_message_with_reply_finish(G_DBUS_CONNECTION(connection), result, &error);
    ticket->bus->Complete(ticket->serial, ToResult(reply, error));
}

void Bus::Withdraw(const PendingCall& call)
{
    Complete(call.serial, tl::unexpected(kWithdrawn));
}

Bus::PendingPtr Bus::Take(Serial serial)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    const auto found = m_pending.find(serial);
    if (found == m_pending.end()) return nullptr;
    PendingPtr pending = std::move(found->second);
    m_pending.erase(found);
    return pending;
}

void Bus::Complete(Serial serial, Result<Body> result)
{
    const PendingPtr pending = Take(serial);
    if (pending == nullptr) return;
    const Call& call = pending->call;
    Result<Body> validated = Validated(call, std::move(result));
    LogOutcome(call, validated, pending->since);
    if (MayBeFollowed(call, validated)) m_followed(call.method);
    CallbackGuard().Run(call.method, [&] { pending->Complete(std::move(validated)); });
}

std::map<Bus::Serial, Bus::PendingPtr> Bus::TakeAll()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return std::exchange(m_pending, {});
}

std::vector<Bus::Serial> Bus::Unsent() const
{
    std::vector<Serial> serials;
    for (const auto& [serial, pending] : m_pending)
        if (!pending->sent) serials.push_back(serial);
    return serials;
}

void Bus::Connected(GDBusConnection* connection)
{
    m_home->RunsOnThisThread();
    std::vector<Serial> waiting;
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_connection.reset(G_DBUS_CONNECTION(g_object_ref(connection)));
        m_error.reset();
        waiting = Unsent();
    }
    for (const Serial serial : waiting) Transmit(serial);
}

void Bus::Unconnected(const Error& error)
{
    std::vector<Serial> waiting;
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_error = error;
        waiting = Unsent();
    }
    for (const Serial serial : waiting) Complete(serial, tl::unexpected(error));
}

void Bus::Close()
{
    m_home->End();
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_closed = true;
    }
    for (const auto& [serial, pending] : TakeAll())
        CallbackGuard().Run(pending->call.method,
                            [&pending = *pending] { pending.Complete(tl::unexpected(kSessionEnded)); });
    m_requests->Close(kSessionEnded);
}

Result<ConnectionPtr> Bus::ConnectionForWaiting()
{
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        if (m_closed) return tl::unexpected(kSessionEnded);
        if (m_connection != nullptr) return ConnectionPtr(G_DBUS_CONNECTION(g_object_ref(m_connection.get())));
    }
    GError* error = nullptr;
    ConnectionPtr connection(g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, &error));
    if (connection != nullptr) return connection;
    const ErrorPtr owned(error);
    return tl::unexpected(Error{ErrorKind::NoBus, owned->message});
}

void Bus::ReportLater(const char* method)
{
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_unreported.push_back(method);
    }
    Post(Context(), [self = shared_from_this()] { self->ReportFollowed(); });
}

void Bus::ReportFollowed()
{
    std::vector<const char*> methods;
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        methods.swap(m_unreported);
    }
    for (const char* method : methods) m_followed(method);
}

Result<Body> Bus::AnswerOf(const Call& call)
{
    if (m_responder) return m_responder(call, 0).value_or(tl::unexpected(TimedOut(*call.terms.deadline)));
    const Result<ConnectionPtr> connection = ConnectionForWaiting();
    if (!connection) return tl::unexpected(connection.error());
    GError* error = nullptr;
    GDBusMessage* const reply = g_dbus_connection_send_message_with_reply_sync(
        connection->get(), MessageOf(call).get(), G_DBUS_SEND_MESSAGE_FLAGS_NONE, Milliseconds(call), nullptr,
        NativeOf(call), &error);
    return ToResult(reply, error);
}

Result<Body> Bus::SendAndWait(const Call& call)
{
    if (call.error) return tl::unexpected(*call.error);
    const auto since = std::chrono::steady_clock::now();
    Result<Body> validated = Validated(call, AnswerOf(call));
    LogOutcome(call, validated, since);
    if (MayBeFollowed(call, validated)) ReportLater(call.method);
    return validated;
}
}  // namespace ipodkit::detail
