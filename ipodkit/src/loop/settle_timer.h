/// @file
/// A timer with microsecond resolution; GLib rounds up to milliseconds, and so does this timer if the process has run
/// out of descriptors.
#pragma once

#include <chrono>
#include <functional>

#include "loop/glib_ptr.h"

namespace ipodkit
{
/// Context thread only.
class SettleTimer
{
public:
    /// @p expired runs in @p context.
    SettleTimer(GMainContext* context, std::function<void()> expired);
    ~SettleTimer();
    SettleTimer(const SettleTimer&) = delete;
    SettleTimer& operator=(const SettleTimer&) = delete;

    /// Starts the timer, unless it is already running.
    void Start(std::chrono::microseconds delay);
    void Stop();

private:
    static int OnReadable(int fd, GIOCondition condition, gpointer data);
    void Set(std::chrono::microseconds delay) const;
    void SetReadyTime(std::chrono::microseconds delay) const;

    std::function<void()> m_expired;
    const int m_fd;  // negative when none was available
    SourcePtr m_source;
    bool m_running = false;
};
}  // namespace ipodkit
