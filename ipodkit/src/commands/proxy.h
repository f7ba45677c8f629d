/// @file
/// Requests from a member of the bus contract, its arguments and its reply.
#pragma once

#include "bus/call_operation.h"

namespace ipodkit
{
/// Decodes a reply without a value.
inline Result<void> Nothing(GVariant*)
{
    return {};
}

/// Makes requests that call the service. Arguments may be floating or null. If there is an error already, the request
/// fails with it and calls nothing.
struct Proxy
{
    const std::shared_ptr<detail::Bus>& bus;
    std::chrono::milliseconds deadline;

    /// A method that returns whether the service did it: false is ErrorKind::Refused.
    Request<void> Command(const char* method, GVariant* arguments = nullptr, std::optional<Error> error = {}) const
    {
        return Make<void>({method, "(b)", Owned(arguments), std::move(error), true, {}}, Nothing);
    }

    /// A method that returns nothing.
    Request<void> Notify(const char* method, GVariant* arguments = nullptr, std::optional<Error> error = {}) const
    {
        return Make<void>({method, "()", Owned(arguments), std::move(error), false, {}}, Nothing);
    }

    /// A method that returns a value of type @p replyType.
    template <class T>
    Request<T> Query(const char* method, const char* replyType, Result<T> (*decode)(GVariant*),
                     GVariant* arguments = nullptr) const
    {
        return Make<T>({method, replyType, Owned(arguments), {}, false, {}}, decode);
    }

private:
    static detail::Body Owned(GVariant* arguments)
    {
        return arguments == nullptr ? nullptr : detail::Body(g_variant_ref_sink(arguments), g_variant_unref);
    }

    template <class T>
    Request<T> Make(detail::Call call, Result<T> (*decode)(GVariant*)) const
    {
        return Request<T>(std::make_shared<detail::CallOperation<T>>(bus, deadline, std::move(call), decode));
    }
};
}  // namespace ipodkit
