#include "service/call_log.h"

#include <algorithm>
#include <utility>

namespace ipodsim
{
std::string ToText(GVariant* value)
{
    const std::unique_ptr<char, decltype(&g_free)> text(g_variant_print(value, FALSE), &g_free);
    return text.get();
}

std::string ToShortText(GVariant* value)
{
    constexpr std::size_t kMostCharacters = 100;
    constexpr char kBytes[] = "[byte ";
    std::string text = ToText(value);
    for (std::size_t begin = text.find(kBytes); begin != std::string::npos; begin = text.find(kBytes, begin + 1))
    {
        const std::size_t end = text.find(']', begin);
        if (end == std::string::npos || end - begin <= kMostCharacters) continue;
        const auto bytes = std::count(text.data() + begin, text.data() + end, ',') + 1;
        text.replace(begin, end - begin, "[" + std::to_string(bytes) + " bytes");
    }
    return text;
}

void CallLog::Add(LoggedCall call)
{
    if (m_calls.size() == kMost) m_calls.pop_front();
    m_calls.push_back(std::move(call));
    if (added) added(m_calls.back());
}
}  // namespace ipodsim
