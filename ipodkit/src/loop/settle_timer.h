/// @file
/// A timer with a resolution of a microsecond; GLib's are rounded up to the millisecond. While the process has no
/// descriptor left, it is only as exact as those.
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

    /// Lets it expire so long from now, unless it is running already.
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
