/// @file
/// One call to the service.
#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "loop/glib_ptr.h"
#include "loop/terms.h"

namespace ipodkit::detail
{
class Bus;
using Body = std::shared_ptr<GVariant>;

/// A call, and the type of a valid answer.
struct Call
{
    const char* method;
    const char* replyType;
    Body arguments;
    std::optional<Error> error;  // why it cannot be sent
    bool isCommand = false;      // the reply "(b)" reports whether the service executed it
    Terms terms{};
};

/// Returns method and arguments in GVariant text: "Seek(12,)".
std::string TextOf(const Call& call);

/// A pending call, and the receiver of its answer.
class PendingCall
{
public:
    explicit PendingCall(Call toSend) : call(std::move(toSend)) {}
    virtual ~PendingCall() = default;
    PendingCall(const PendingCall&) = delete;
    PendingCall& operator=(const PendingCall&) = delete;

    virtual void Complete(Result<Body> answer) = 0;

    Call call;
    std::uint64_t serial = 0;  // since it was sent
    bool sent = false;
    std::chrono::steady_clock::time_point since{};
};
}  // namespace ipodkit::detail
