#include "service/call_log.h"

#include <algorithm>
#include <utility>

namespace ipodsim
{
namespace
{
std::size_t SizeOf(const LoggedCall& call)
{
    const std::size_t answer = call.answer == nullptr ? 0 : g_variant_get_size(call.answer.get());
    return answer + g_variant_get_size(call.arguments.get());
}
}  // namespace

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

void CallLog::Clear()
{
    m_calls.clear();
    m_bytes = 0;
}

void CallLog::Add(LoggedCall call)
{
    m_bytes += SizeOf(call);
    m_calls.push_back(std::move(call));
    while (m_calls.size() > kMost || m_bytes > kMostBytes)
    {
        m_bytes -= SizeOf(m_calls.front());
        m_calls.pop_front();
    }
    if (m_calls.empty()) return;
    if (added) added(m_calls.back());
}
}  // namespace ipodsim
