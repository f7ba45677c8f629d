#include "service/eap_sessions.h"

namespace ipodsim
{
std::uint16_t EapSessions::Open()
{
    constexpr std::size_t kSessions = 65535;
    if (m_open.size() >= kSessions) return 0;
    do m_last = m_last == kSessions ? std::uint16_t{1} : static_cast<std::uint16_t>(m_last + 1);
    while (IsOpen(m_last));
    m_open.insert(m_last);
    return m_last;
}
}  // namespace ipodsim
