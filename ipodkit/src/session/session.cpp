#include <ipodkit/session.h>

#include "session/session_impl.h"

namespace ipodkit
{
Result<std::unique_ptr<Session>> Session::Open(const SessionOptions& options)
{
    auto impl = std::make_shared<Impl>(options);
    if (const std::optional<Error> error = CoreLink::Instance().Claim()) return tl::unexpected<Error>(*error);
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
    const auto step = [callback = std::move(callback)](const StatePtr& state, Fields) {
        callback({state->phase, state->generation, state->error, state->missing});
    };
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

void Session::Refresh(Fields fields)
{
    m_impl->Refresh(fields);
}
}  // namespace ipodkit
