/// @file
/// How far the reading of music has come, on standard error.
#pragma once

#include <chrono>
#include <cstddef>
#include <mutex>
#include <string>

namespace ipodsim
{
/// A bar that moves where standard error is a terminal, and otherwise a line every few seconds. Nothing at all where
/// the reading takes no time worth mentioning. Any thread may call it.
class ProgressBar
{
public:
    ProgressBar();
    /// Takes the bar away.
    ~ProgressBar() { Clear(); }
    ProgressBar(const ProgressBar&) = delete;
    ProgressBar& operator=(const ProgressBar&) = delete;

    void Show(std::size_t done, std::size_t all);
    void Clear();
    /// Writes a line above the bar.
    void WriteLine(const std::string& line);

private:
    using Clock = std::chrono::steady_clock;
    void Draw(std::size_t done, std::size_t all);
    void Erase();

    std::mutex m_mutex;
    bool m_terminal;
    bool m_drawn = false;
    std::string m_bar;
    Clock::time_point m_last = Clock::now();
};
}  // namespace ipodsim
