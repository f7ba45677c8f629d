#include "service/answer.h"

#include <ipodsim.h>

#include <memory>
#include <string>
#include <utility>

#include "faults/falsify.h"
#include "script/script.h"

namespace ipodsim
{
namespace
{
constexpr char kFailed[] = "com.zarn.linux.ipod.Error.Failed";
constexpr char kInvalid[] = "org.freedesktop.DBus.Error.InvalidArgs";
constexpr std::uint32_t kDelayMs = 1000;

// A reply: a body, or an error and its message.
struct Answer
{
    VariantPtr body;
    std::string error;
    std::string message;
};

Answer CarryOut(const std::function<GVariant*()>& work)
{
    // Exceptions must not propagate through GLib.
    try
    {
        return {Own(work()), {}, {}};
    }
    catch (const InvalidRequest& error)
    {
        return {nullptr, kInvalid, error.what()};
    }
    catch (const std::exception& error)
    {
        return {nullptr, kFailed, error.what()};
    }
}

// A request in progress.
class Request
{
public:
    Request(Service& service, GDBusMethodInvocation* invocation)
        : m_service(service), m_invocation(invocation), m_time(g_get_real_time())
    {
    }

    std::string Method() const { return g_dbus_method_invocation_get_method_name(m_invocation); }
    GVariant* Arguments() const { return g_dbus_method_invocation_get_parameters(m_invocation); }
    bool IsOfService() const
    {
        return g_str_equal(g_dbus_method_invocation_get_interface_name(m_invocation), kServiceName) != FALSE;
    }

    void Reply(const Answer& answer)
    {
        Log(answer);
        if (!answer.error.empty())
            return g_dbus_method_invocation_return_dbus_error(m_invocation, answer.error.c_str(),
                                                              answer.message.c_str());
        // Built by hand: GDBus rejects types that differ from the interface's.
        SendReply(m_invocation, answer.body.get());
    }

    void Drop()
    {
        Log({});
        g_object_unref(m_invocation);
    }

private:
    void Log(const Answer& answer) const
    {
        LoggedCall call{m_time, g_dbus_method_invocation_get_sender(m_invocation), Method(), {}, answer.error, {}};
        call.arguments = Own(Arguments());
        if (!answer.error.empty())
            call.answer = Own(g_variant_new_string(answer.message.c_str()));
        else if (answer.body != nullptr)
            call.answer = Own(answer.body.get());
        m_service.LogCall(call, IsOfService());
    }

    Service& m_service;
    GDBusMethodInvocation* m_invocation;
    std::int64_t m_time;
};

void ReplyLater(Service& service, Request request, Answer answer, double milliseconds)
{
    // std::function requires a copyable target.
    const auto kept = std::make_shared<Answer>(std::move(answer));
    service.agenda.After(milliseconds, [request, kept]() mutable { request.Reply(*kept); });
}

void ReplyWrongly(Service& service, Request request, const Fault& fault, const std::function<GVariant*()>& work)
{
    if (fault.kind == FaultKind::Error)
        return request.Reply({nullptr, fault.parameter.empty() ? kFailed : fault.parameter, "injected fault"});
    Answer answer = CarryOut(work);
    FalsifyVector(service.segments, request.Method(), fault.kind);
    if (answer.body != nullptr) answer.body = Own(Falsify(answer.body.get(), fault));
    switch (fault.kind)
    {
        case FaultKind::Delay:
            return ReplyLater(service, request, std::move(answer), fault.Number(kDelayMs));
        case FaultKind::NoReply:
            return request.Drop();
        case FaultKind::Crash:
        case FaultKind::CrashLocked:
            return service.Crash(fault);
        case FaultKind::RestartStorm:
            request.Reply(answer);
            return service.Restart(fault.Number(kRestarts));
        default:
            return request.Reply(answer);
    }
}
// The reply that a test scripted.
void ReplyByHand(Service& service, Request request, const Handler& handler)
{
    Reply reply;
    Answer answer = CarryOut(
        [&]
        {
            reply = handler(request.Arguments());
            return reply.never || !reply.error.empty() ? g_variant_new_tuple(nullptr, 0)
                                                       : BodyOf(reply, request.Method());
        });
    if (reply.never) return request.Drop();
    if (!reply.error.empty()) answer = {nullptr, reply.error, reply.body};
    if (reply.delayMs != 0) return ReplyLater(service, request, std::move(answer), reply.delayMs);
    request.Reply(answer);
}
}  // namespace

void Serve(Service& service, GDBusMethodInvocation* invocation, const std::function<GVariant*()>& work)
{
    Request request(service, invocation);
    const auto handler = service.handlers.find(request.Method());
    if (request.IsOfService() && handler != service.handlers.end())
        return ReplyByHand(service, request, handler->second);
    const auto fault = request.IsOfService() ? service.faults->Take(request.Method()) : std::nullopt;
    if (fault) return ReplyWrongly(service, request, *fault, work);
    request.Reply(CarryOut(work));
}
}  // namespace ipodsim
