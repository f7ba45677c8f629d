/// @file
/// The session's connection to the bus, and its pending calls.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <mutex>
#include <vector>

#include "bus/call.h"
#include "loop/guard.h"
#include "loop/request_group.h"

namespace ipodkit
{
inline constexpr char kBusName[] = "com.zarn.linux.ipod";
inline constexpr char kObjectPath[] = "/com/zarn/linux/ipod";

namespace detail
{
/// Calls go to the service's well-known name over the connection itself. A proxy would send them to the unique name
/// that it saw last, and so to a dead service until its context runs; it also lacks deadlines per call.
///
/// Send() and SendAndWait() may be called on any thread. Call OnFollowed() before them, and everything else on the
/// context's thread.
class Bus : public std::enable_shared_from_this<Bus>
{
public:
    using Serial = std::uint64_t;

    /// Answers calls in place of a service. Returns nothing if the answer follows later, by Complete().
    using Responder = std::function<std::optional<Result<Body>>(const Call&, Serial)>;

    Bus(GMainContext* context, const Guard& guard);

    /// @p followed is called in the context for each command that the service executed, or may have executed: it was
    /// sent and not refused. The command completes afterwards.
    void OnFollowed(std::function<void(const char* method)> followed);

    /// Reports the commands of SendAndWait() at once. Otherwise they are reported when the context runs next.
    void ReportFollowed();

    /// Sends now, or when there is a connection. The completion runs once, in the context, never before this returns.
    void Send(std::shared_ptr<PendingCall> call);

    /// Completes a call that was sent, unless it has completed, and drops its answer.
    void Withdraw(const PendingCall& call);

    /// Sends and blocks until the answer. Iterates only a private context.
    Result<Body> SendAndWait(const Call& call);

    /// Sends all calls to @p responder instead of the bus.
    void AnswerBy(Responder responder) { m_responder = std::move(responder); }

    /// Completes a call with its answer; ignored if it has already completed.
    void Complete(Serial serial, Result<Body> result);

    /// Sends the requests that wait for the connection.
    void Connected(GDBusConnection* connection);

    /// Completes requests that wait for a connection; until there is one, requests fail with this error.
    void Unconnected(const Error& error);

    /// Completes all requests, those under way and later ones, with ErrorKind::Cancelled.
    void Close();

    const HomePtr& Home() const { return m_home; }

    /// Returns the group of requests that belong to no other object and end with the session.
    const std::shared_ptr<RequestGroup>& Requests() const { return m_requests; }

private:
    using PendingPtr = std::shared_ptr<PendingCall>;
    struct Ticket
    {
        std::shared_ptr<Bus> bus;
        Serial serial;
    };

    void ReportLater(const char* method);
    Serial Remember(PendingPtr pending);
    void Transmit(Serial serial);
    void TransmitOn(GDBusConnection* connection, const Call& call, Serial serial);
    PendingPtr Take(Serial serial);
    void CompleteLater(Serial serial, Result<Body> result);
    Result<ConnectionPtr> ConnectionForWaiting();
    Result<Body> AnswerOf(const Call& call);
    std::map<Serial, PendingPtr> TakeAll();
    std::vector<Serial> Unsent() const;  // requires m_mutex
    static void OnReply(GObject* connection, GAsyncResult* result, gpointer data);

    GMainContext* Context() const { return m_home->Context(); }
    const Guard& CallbackGuard() const { return m_home->CallbackGuard(); }

    const HomePtr m_home;
    const std::shared_ptr<RequestGroup> m_requests;
    std::function<void(const char*)> m_followed = [](const char*) {};
    std::mutex m_mutex;
    std::vector<const char*> m_unreported;
    ConnectionPtr m_connection;
    Responder m_responder;
    std::map<Serial, PendingPtr> m_pending;
    std::optional<Error> m_error;  // why nothing can be sent
    bool m_closed = false;
    Serial m_lastSerial = 0;
};
}  // namespace detail
}  // namespace ipodkit
