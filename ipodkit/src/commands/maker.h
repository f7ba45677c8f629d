/// @file
/// Builds requests from a method of the bus contract, its arguments, and its reply.
#pragma once

#include "bus/call_operation.h"

namespace ipodkit
{
/// Decodes a reply without a value.
inline Result<void> Nothing(GVariant*)
{
    return {};
}

/// Type and decoder of the reply, then the method. @p arguments may be floating or null. The reply "(b)" to a command
/// reports whether it was executed: false is ErrorKind::Refused, and true is decoded.
template <class T>
struct Maker
{
    const std::shared_ptr<detail::Bus>& bus;
    std::chrono::milliseconds deadline;
    const char* replyType;
    Result<T> (*decode)(GVariant*);
    bool isOrder = false;

    Request<T> operator()(const char* method, GVariant* arguments = nullptr, std::optional<Error> obstacle = {}) const
    {
        const detail::Body owned =
            arguments == nullptr ? nullptr : detail::Body(g_variant_ref_sink(arguments), g_variant_unref);
        return Request<T>(std::make_shared<detail::CallOperation<T>>(
            bus, deadline, detail::Call{method, replyType, owned, std::move(obstacle), isOrder, {}}, decode));
    }
};
}  // namespace ipodkit
