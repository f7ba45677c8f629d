/// @file
/// Open accessory sessions.
#pragma once

#include <cstddef>
#include <cstdint>
#include <set>

namespace ipodsim
{
/// Numbers run from 1 to 65535 and then wrap to 1; numbers in use are skipped.
class EapSessions
{
public:
    /// The head unit announced its protocols: apps may now open sessions.
    void Announce() { m_announced = true; }
    bool Announced() const { return m_announced; }

    /// Opens a session and returns its number; 0 if all are in use.
    std::uint16_t Open()
    {
        constexpr std::size_t kSessions = 65535;
        if (m_open.size() >= kSessions) return 0;
        do m_last = m_last == kSessions ? std::uint16_t{1} : static_cast<std::uint16_t>(m_last + 1);
        while (IsOpen(m_last));
        m_open.insert(m_last);
        return m_last;
    }
    /// False if the session is not open.
    bool Close(std::uint16_t session) { return m_open.erase(session) != 0; }
    bool IsOpen(std::uint16_t session) const { return m_open.count(session) != 0; }

    /// The number assigned last; 0 if none.
    std::uint16_t Last() const { return m_last; }

private:
    bool m_announced = false;
    std::uint16_t m_last = 0;
    std::set<std::uint16_t> m_open;
};
}  // namespace ipodsim
