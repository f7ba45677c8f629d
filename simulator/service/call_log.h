/// @file
/// What the service was asked, and what it answered.
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

/// @param value  a floating one is taken over, of another one a reference is added
inline VariantPtr Own(GVariant* value)
{
    return VariantPtr(g_variant_ref_sink(value));
}

/// In the notation of GVariant texts, for example "(true, 3)".
std::string ToText(GVariant* value);

/// The same for people: of many bytes only how many, for example "(<[1040 bytes]>,)".
std::string ToShortText(GVariant* value);

struct LoggedCall
{
    std::int64_t time = 0;  ///< when it came, microseconds since 1970
    std::string sender;     ///< unique bus name
    std::string method;
    std::shared_ptr<GVariant> arguments;  ///< a tuple
    std::string error;                    ///< name of the error that was answered; empty when none was
    std::shared_ptr<GVariant> answer;     ///< a tuple; with an error its message; null when nothing was answered
};

/// Keeps the last ten thousand, as far as they fit into one message of the bus. Lives on the service's thread.
class CallLog
{
public:
    static constexpr std::size_t kMost = 10000;
    static constexpr std::size_t kMostBytes = std::size_t{32} << 20U;  // of arguments and answers

    void Add(LoggedCall call);
    void Clear();
    const std::deque<LoggedCall>& Calls() const { return m_calls; }

    /// Called with each that is added.
    std::function<void(const LoggedCall&)> added;

private:
    std::deque<LoggedCall> m_calls;
    std::size_t m_bytes = 0;
};
}  // namespace ipodsim
