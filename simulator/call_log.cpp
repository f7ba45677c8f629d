#include "call_log.h"

#include <utility>

namespace ipodsim
{
std::string ToText(GVariant* value)
{
    const std::unique_ptr<char, decltype(&g_free)> text(g_variant_print(value, FALSE), &g_free);
    return text.get();
}

void CallLog::Add(LoggedCall call)
{
    if (m_calls.size() == kMost) m_calls.pop_front();
    m_calls.push_back(std::move(call));
    if (added) added(m_calls.back());
}
}  // namespace ipodsim
