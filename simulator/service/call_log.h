/// @file
/// The log of requests and replies.
#pragma once

#include <glib.h>

#include <cstddef>
#include <deque>
#include <functional>
#include <memory>
#include <string>

namespace ipodsim
{
struct VariantUnref
{
    void operator()(GVariant* value) const { g_variant_unref(value); }
};
using VariantPtr = std::unique_ptr<GVariant, VariantUnref>;

/// @param value  a floating reference is consumed, otherwise a reference is added
inline VariantPtr Own(GVariant* value)
{
    return VariantPtr(g_variant_ref_sink(value));
}

/// GVariant text format, for example "(true, 3)".
std::string ToText(GVariant* value);

/// The same, with long byte arrays abbreviated, for example "(<[1040 bytes]>,)".
std::string ToShortText(GVariant* value);

struct LoggedCall
{
    std::int64_t time = 0;  ///< time of arrival, in microseconds since 1970-01-01 UTC
    std::string sender;     ///< unique bus name
    std::string method;
    std::shared_ptr<GVariant> arguments;  ///< a tuple
    std::string error;                    ///< name of the error reply; empty if there was none
    std::shared_ptr<GVariant> answer;     ///< a tuple, or the error's message; null without a reply
};

/// Keeps the last 10,000 calls, as far as they fit into one D-Bus message. Lives on the service's thread.
class CallLog
{
public:
    static constexpr std::size_t kMost = 10000;
    static constexpr std::size_t kMostBytes = std::size_t{32} << 20U;  // of arguments and replies

    void Add(LoggedCall call);
    void Clear();
    const std::deque<LoggedCall>& Calls() const { return m_calls; }

    /// Called for each added call.
    std::function<void(const LoggedCall&)> added;

private:
    std::deque<LoggedCall> m_calls;
    std::size_t m_bytes = 0;
};
}  // namespace ipodsim
