#include <ipodkit/session.h>

#include "session/session_impl.h"

namespace ipodkit
{
namespace
{
using std::chrono::milliseconds;

struct Limit
{
    const char* option;
    milliseconds given;
    milliseconds least;
};

std::optional<Error> OutOfRange(const SessionOptions& options)
{
    for (const Limit& limit :
         {Limit{"settle", options.settle, milliseconds(0)}, Limit{"deadline", options.deadline, milliseconds(1)},
          Limit{"callbackBudget", options.callbackBudget, milliseconds(0)}})
        if (limit.given < limit.least)
            return Error{ErrorKind::BadArgument, std::string(limit.option) + ": expected at least " +
                                                     std::to_string(limit.least.count()) + " ms, got " +
                                                     std::to_string(limit.given.count()) + " ms"};
    return std::nullopt;
}
}  // namespace

Result<std::unique_ptr<Session>> Session::Open(const SessionOptions& options)
{
    if (const std::optional<Error> error = OutOfRange(options)) return tl::unexpected(*error);
    auto impl = std::make_shared<Impl>(options);
    if (const std::optional<Error> error = CoreLink::Instance().Claim()) return tl::unexpected(*error);
    impl->Start();
    return std::unique_ptr<Session>(new Session(std::move(impl)));
}

Session::Session(std::shared_ptr<Impl> impl) : m_impl(std::move(impl)) {}

Session::~Session()
{
    m_impl->Close();
}

ipodkit::Connection Session::Connection() const
{
    return m_impl->CurrentConnection();
}

StatePtr Session::State() const
{
    return m_impl->States()->Published();
}

ipodkit::Commands Session::Commands() const
{
    return m_impl->MakeCommands();
}

Subscription Session::OnConnection(std::string name, ConnectionCallback callback)
{
    const auto step = [callback = std::move(callback)](const StatePtr& state, Fields)
    { callback(ConnectionOf(*state)); };
    return m_impl->States()->Subscribe(std::move(name), step, Field::Connection);
}

Subscription Session::OnState(std::string name, StateCallback callback, Fields fields)
{
    return m_impl->States()->Subscribe(std::move(name), std::move(callback), fields);
}

Subscription Session::OnEvent(std::string name, EventCallback callback)
{
    return m_impl->OnEvent(std::move(name), std::move(callback));
}

Request<StatePtr> Session::Changed(Fields fields)
{
    const auto begin = [weak = std::weak_ptr<Impl>(m_impl), fields](const PendingPtr<StatePtr>& request)
    {
        const auto impl = weak.lock();
        if (impl == nullptr) return;
        const StatePtr before = impl->States()->Published();
        const auto changed = [request = std::weak_ptr(request), before, fields](const StatePtr& state, Fields)
        {
            const auto waiting = request.lock();
            if (waiting != nullptr && !(Differences(*before, *state) & fields).Empty()) waiting->Settle(state);
        };
        request->Hold(std::make_shared<Subscription>(impl->States()->Subscribe("state change", changed, fields)));
    };
    return MakeLoopRequest<StatePtr>(m_impl->Bus()->Requests(), "state change", {}, begin);
}

void Session::Refresh(Fields fields)
{
    m_impl->Refresh(fields);
}

Request<StatePtr> Session::Refreshed(Fields fields)
{
    const auto begin = [weak = std::weak_ptr<Impl>(m_impl), fields](const PendingPtr<StatePtr>& request)
    {
        if (const auto impl = weak.lock()) impl->Refresh(fields, request);
    };
    return MakeLoopRequest<StatePtr>(m_impl->Bus()->Requests(), "state refresh", {}, begin);
}
}  // namespace ipodkit
