#include "progress_bar.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>

namespace ipodsim
{
namespace
{
constexpr int kUsualColumns = 80;
constexpr int kWidestBar = 40;
constexpr auto kBetweenBars = std::chrono::milliseconds(100);
constexpr auto kBetweenLines = std::chrono::seconds(2);

int Columns()
{
    winsize size{};
    const bool known = ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
    return known ? size.ws_col : kUsualColumns;
}

std::string Figures(std::size_t done, std::size_t all)
{
    return std::to_string(done) + " of " + std::to_string(all) + " files";
}

// Fills the terminal except its last column, which would wrap.
std::string Bar(std::size_t done, std::size_t all)
{
    const std::string figures = " " + Figures(done, all);
    const int width = std::min(kWidestBar, Columns() - 3 - static_cast<int>(figures.size()));
    if (width < 4) return figures.substr(1, static_cast<std::size_t>(std::max(0, Columns() - 1)));
    const std::size_t filled = all == 0 ? 0 : done * static_cast<std::size_t>(width) / all;
    return "[" + std::string(filled, '#') + std::string(static_cast<std::size_t>(width) - filled, '.') + "]" + figures;
}
}  // namespace

ProgressBar::ProgressBar() : m_terminal(isatty(STDERR_FILENO) == 1) {}

void ProgressBar::Show(std::size_t done, std::size_t all)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    const auto now = Clock::now();
    if (m_terminal ? now - m_last < kBetweenBars : now - m_last < kBetweenLines) return;
    m_last = now;
    if (m_terminal)
        Draw(done, all);
    else
        std::fprintf(stderr, "reading tags: %s\n", Figures(done, all).c_str());
}

void ProgressBar::Draw(std::size_t done, std::size_t all)
{
    m_bar = Bar(done, all);
    Erase();
    std::fputs(m_bar.c_str(), stderr);
    std::fflush(stderr);
    m_drawn = true;
}

void ProgressBar::Erase()
{
    if (m_drawn) std::fputs("\r\033[K", stderr);
    m_drawn = false;
}

void ProgressBar::Clear()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    Erase();
    m_bar.clear();
    std::fflush(stderr);
}

void ProgressBar::WriteLine(const std::string& line)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    Erase();
    std::fprintf(stderr, "%s\n%s", line.c_str(), m_bar.c_str());
    m_drawn = !m_bar.empty();
    std::fflush(stderr);
}
}  // namespace ipodsim
