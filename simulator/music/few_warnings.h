/// @file
/// Warnings about many files, in few lines.
#pragma once

#include <cstddef>
#include <string>
#include <utility>

#include "music/folder_scan.h"

namespace ipodsim
{
/// Passes on the first warnings and counts the others. Only one thread may use it.
class FewWarnings
{
public:
    explicit FewWarnings(Warn warn) : m_warn(std::move(warn)) {}

    void Tell(const std::string& line)
    {
        if (m_count++ < kMost) m_warn(line);
    }

    /// A line about those that were only counted.
    void SumUp() const
    {
        if (m_count > kMost) m_warn("and " + std::to_string(m_count - kMost) + " more warnings like these");
    }

private:
    static constexpr std::size_t kMost = 10;

    Warn m_warn;
    std::size_t m_count = 0;
};
}  // namespace ipodsim
