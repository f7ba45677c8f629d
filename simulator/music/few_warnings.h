/// @file
/// Limits the number of warnings about files.
#pragma once

#include <cstddef>
#include <string>
#include <utility>

#include "music/folder_scan.h"

namespace ipodsim
{
/// Forwards the first ten warnings and counts the rest. Not thread-safe.
class FewWarnings
{
public:
    explicit FewWarnings(Warn warn) : m_warn(std::move(warn)) {}

    void Add(const std::string& line)
    {
        if (m_count++ < kMost) m_warn(line);
    }

    /// Forwards one line with the number of suppressed warnings.
    void Summarize() const
    {
        if (m_count > kMost) m_warn("and " + std::to_string(m_count - kMost) + " more warnings like these");
    }

private:
    static constexpr std::size_t kMost = 10;

    Warn m_warn;
    std::size_t m_count = 0;
};
}  // namespace ipodsim
