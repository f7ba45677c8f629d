#include <algorithm>

#include "loop/guard.h"
#include "loop/terms.h"

namespace ipodkit::detail
{
namespace
{
using std::chrono::milliseconds;
constexpr milliseconds kLeast(1);

Error TimedOutBefore()
{
    return {ErrorKind::TimedOut, "the deadline passed before the next part began"};
}
}  // namespace

std::optional<Error> Unacceptable(const Terms& terms)
{
    if (!terms.deadline || *terms.deadline >= kLeast) return std::nullopt;
    return Error{ErrorKind::BadArgument,
                 "deadline: expected at least 1 ms, got " + std::to_string(terms.deadline->count()) + " ms"};
}

milliseconds Clamped(milliseconds deadline)
{
    return std::clamp(deadline, kLeast, kLongestDeadline);
}

Error TimedOut(milliseconds deadline)
{
    return {ErrorKind::TimedOut, "no answer within " + std::to_string(deadline.count()) + " ms"};
}

Error Threw()
{
    return {ErrorKind::Cancelled, "the function given to AndThen() threw an exception"};
}

void LogThrownByTask(const std::exception_ptr& thrown)
{
    Guard(std::chrono::microseconds::max()).Run("task", [&thrown] { std::rethrow_exception(thrown); });
}

SharedTerms::SharedTerms(Terms terms) : m_terms(std::move(terms))
{
    if (m_terms.deadline) m_end = std::chrono::steady_clock::now() + Clamped(*m_terms.deadline);
}

// The step itself rejects an invalid deadline.
std::optional<Error> SharedTerms::ApplyTo(Terms& step) const
{
    if (m_terms.cancellation)
        step.cancellation =
            step.cancellation ? Cancellation::Either(*step.cancellation, *m_terms.cancellation) : m_terms.cancellation;
    if (!m_terms.deadline) return std::nullopt;
    const auto left = std::chrono::ceil<milliseconds>(m_end - std::chrono::steady_clock::now());
    if (Unacceptable(m_terms))
        step.deadline = m_terms.deadline;
    else
        step.deadline = std::min(step.deadline.value_or(left), left);
    return left < kLeast ? std::make_optional(TimedOutBefore()) : std::nullopt;
}
}  // namespace ipodkit::detail
