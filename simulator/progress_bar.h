/// @file
/// Progress of the music scan on standard error.
#pragma once

#include <chrono>
#include <cstddef>
#include <mutex>
#include <string>

namespace ipodsim
{
/// Draws a progress bar if standard error is a terminal, and otherwise prints a line every few seconds. Shows nothing
/// for short scans. Thread-safe.
class ProgressBar
{
public:
    ProgressBar();
    /// Removes the bar.
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
