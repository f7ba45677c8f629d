/// @file
/// A request that consists of one call to the service.
#pragma once

#include "bus/bus.h"

namespace ipodkit::detail
{
template <class T>
class CallOperation final : public Operation<T>,
                            public PendingCall,
                            public std::enable_shared_from_this<CallOperation<T>>
{
public:
    using Decode = Result<T> (*)(GVariant* body);

    CallOperation(std::shared_ptr<Bus> bus, std::chrono::milliseconds deadline, Call toSend, Decode decode)
        : Operation<T>(bus->Home(), {deadline, std::nullopt}),
          PendingCall(std::move(toSend)),
          m_bus(std::move(bus)),
          m_decode(decode)
    {
    }

    void Start(typename Operation<T>::Completion completion) override
    {
        m_completion = std::move(completion);
        const std::shared_ptr<Bus> bus = PrepareToSend();
        bus->Send(this->shared_from_this());
    }

    void Withdraw() override
    {
        if (const std::shared_ptr<Bus> bus = m_sentOn.lock()) bus->Withdraw(*this);
    }

    Result<T> Wait() override
    {
        const std::shared_ptr<Bus> bus = PrepareToSend();
        return Decoded(bus->SendAndWait(call));
    }

    void Complete(Result<Body> answer) override
    {
        const auto completion = std::move(m_completion);
        completion(Decoded(answer));
    }

private:
    // The bus owns pending calls, so a pending call no longer owns the bus.
    std::shared_ptr<Bus> PrepareToSend()
    {
        call.terms = std::move(this->terms);
        if (!call.error) call.error = Unacceptable(call.terms);
        since = std::chrono::steady_clock::now();
        m_sentOn = m_bus;
        return std::move(m_bus);
    }

    Result<T> Decoded(const Result<Body>& answer) const
    {
        if (!answer) return tl::unexpected(answer.error());
        return m_decode(answer->get());
    }

    std::shared_ptr<Bus> m_bus;
    std::weak_ptr<Bus> m_sentOn;
    const Decode m_decode;
    typename Operation<T>::Completion m_completion;
};
}  // namespace ipodkit::detail
