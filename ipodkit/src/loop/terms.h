/// @file
/// Deadlines and cancellations of requests.
#pragma once

#include <ipodkit/request.h>

namespace ipodkit::detail
{
/// About 24 days: the longest that GLib can wait.
inline constexpr std::chrono::milliseconds kLongestDeadline(INT32_MAX - 1);

/// Returns why a request with these terms cannot be sent; nothing if it can.
std::optional<Error> Unacceptable(const Terms& terms);

/// Returns the deadline, limited to the longest that GLib can wait for.
std::chrono::milliseconds Clamped(std::chrono::milliseconds deadline);

/// The error of a request that the caller withdrew.
inline const Error kWithdrawn{ErrorKind::Cancelled, "the request was cancelled"};

/// The error of a request that the end of the session withdrew.
inline const Error kSessionEnded{ErrorKind::Cancelled, "the session ended"};

/// The error of a request whose service ended before its answer.
inline const Error kServiceLost{ErrorKind::ServiceLost, "the service exited before it answered"};

/// The error of a request that was not answered within that time.
Error TimedOut(std::chrono::milliseconds deadline);
}  // namespace ipodkit::detail
