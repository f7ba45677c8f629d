/// @file
/// Requests that need the session's context to run.
#pragma once

#include "loop/context.h"
#include "loop/request_group.h"

namespace ipodkit
{
/// A request whose result becomes known in the context.
template <class T>
class Pending final : public OpenRequest, public std::enable_shared_from_this<Pending<T>>
{
public:
    using Completion = std::function<void(Result<T>)>;

    Pending(std::shared_ptr<RequestGroup> group, const char* name, detail::Terms terms, Completion completion)
        : m_group(std::move(group)),
          m_serial(m_group->Reserve()),
          m_name(name),
          m_terms(std::move(terms)),
          m_completion(std::move(completion))
    {
    }

    /// Any thread. Returns false if it completes with an error without having begun.
    bool Begin()
    {
        std::optional<Error> error = m_group->Add(m_serial, this->shared_from_this());
        if (!error && m_terms.cancellation && m_terms.cancellation->Cancelled()) error = detail::kWithdrawn;
        if (error)
            SettleLater(tl::unexpected(*error));
        else if (m_terms.cancellation)
            m_group->Keep(m_serial, std::make_shared<CancellationLink>(
                                        *m_terms.cancellation, G_CALLBACK(OnCancelled),
                                        new Withdrawal{m_group->Home(), this->weak_from_this()}, DeleteWithdrawal));
        return !error;
    }

    /// Completes the request, unless it has completed. Context thread only, like the rest. Deferred if called inside @p
    /// begin.
    void Settle(Result<T> result)
    {
        if (m_beginning)
            SettleLater(std::move(result));
        else if (m_group->Take(m_serial))
            Complete(std::move(result));
    }

    template <class Work>
    void WhileBeginning(const Work& begin)
    {
        m_beginning = true;
        begin();
        m_beginning = false;
        m_begun = true;
    }

    /// Keeps an object alive until the request completes.
    void Hold(std::shared_ptr<void> held) { m_held = std::move(held); }

    /// Completes the request now, even inside @p begin.
    void Withdraw()
    {
        if (m_group->Take(m_serial)) Fail(detail::kWithdrawn);
    }

    void Fail(const Error& error) override { Complete(tl::unexpected(error)); }
    bool Open() const override { return m_group->Has(m_serial); }
    bool Begun() const override { return m_begun; }
    const detail::Terms& Terms() const override { return m_terms; }

private:
    // Does not own the request: its destructor would wait for the cancellation that calls this.
    struct Withdrawal
    {
        detail::HomePtr home;
        std::weak_ptr<Pending> request;
    };

    static void OnCancelled(GCancellable*, gpointer data)
    {
        const auto& withdrawal = *static_cast<Withdrawal*>(data);
        Post(withdrawal.home->Context(),
             [request = withdrawal.request]
             {
                 if (const auto self = request.lock()) self->Settle(tl::unexpected(detail::kWithdrawn));
             });
    }

    static void DeleteWithdrawal(gpointer data) { delete static_cast<Withdrawal*>(data); }

    void SettleLater(Result<T> result)
    {
        Post(m_group->Home()->Context(),
             [self = this->shared_from_this(), result = std::move(result)] { self->Settle(result); });
    }

    void Complete(Result<T> result)
    {
        const std::shared_ptr<void> held = std::move(m_held);
        const Completion completion = std::move(m_completion);
        m_group->Home()->CallbackGuard().Run(m_name, [&] { completion(std::move(result)); });
    }

    const std::shared_ptr<RequestGroup> m_group;
    const RequestGroup::Serial m_serial;
    const char* const m_name;
    const detail::Terms m_terms;
    Completion m_completion;
    std::shared_ptr<void> m_held;
    bool m_beginning = false;
    bool m_begun = false;
};

template <class T>
using PendingPtr = std::shared_ptr<Pending<T>>;

/// An operation that begins in the context and settles its Pending there.
template <class T>
class LoopOperation final : public detail::Operation<T>
{
public:
    /// Called once, while the request is open.
    using Begin = std::function<void(const PendingPtr<T>&)>;

    /// @param name  of the completion, for the log
    LoopOperation(std::shared_ptr<RequestGroup> group, const char* name, detail::Terms limits, Begin begin)
        : detail::Operation<T>(group->Home(), std::move(limits)),
          m_group(std::move(group)),
          m_name(name),
          m_begin(std::move(begin))
    {
    }

    void Start(typename detail::Operation<T>::Completion completion) override
    {
        const auto pending =
            std::make_shared<Pending<T>>(m_group, m_name, std::move(this->terms), std::move(completion));
        m_pending = pending;
        if (!pending->Begin()) return;
        m_group->Home()->Run(
            [pending, begin = std::move(m_begin)]
            {
                if (pending->Open()) pending->WhileBeginning([&] { begin(pending); });
            });
    }

    void Withdraw() override
    {
        if (const PendingPtr<T> pending = m_pending.lock()) pending->Withdraw();
    }

private:
    const std::shared_ptr<RequestGroup> m_group;
    const char* const m_name;
    Begin m_begin;
    std::weak_ptr<Pending<T>> m_pending;  // since the start
};

template <class T>
Request<T> MakeLoopRequest(std::shared_ptr<RequestGroup> group, const char* name, detail::Terms terms,
                           typename LoopOperation<T>::Begin begin)
{
    return Request<T>(std::make_shared<LoopOperation<T>>(std::move(group), name, std::move(terms), std::move(begin)));
}
}  // namespace ipodkit
