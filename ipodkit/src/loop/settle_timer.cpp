#include "loop/settle_timer.h"

#include <glib-unix.h>
#include <sys/timerfd.h>
#include <unistd.h>

#include <algorithm>

namespace ipodkit
{
SettleTimer::SettleTimer(GMainContext* context, std::function<void()> expired)
    : m_expired(std::move(expired)),
      m_fd(timerfd_create(CLOCK_MONOTONIC, TFD_NONBLOCK | TFD_CLOEXEC)),
      m_source(g_unix_fd_source_new(m_fd, G_IO_IN))
{
    g_source_set_callback(m_source.get(), G_SOURCE_FUNC(OnReadable), this, nullptr);
    g_source_attach(m_source.get(), context);
}

SettleTimer::~SettleTimer()
{
    m_source.reset();
    if (m_fd >= 0) close(m_fd);
}

void SettleTimer::Start(std::chrono::microseconds delay)
{
    if (m_running) return;
    m_running = true;
    Set(std::max(delay, std::chrono::microseconds(1)));
}

void SettleTimer::Stop()
{
    m_running = false;
    Set(std::chrono::microseconds(0));
}

// Zero disarms the timer and clears an unhandled expiration, so that the descriptor need not be read.
void SettleTimer::Set(std::chrono::microseconds delay) const
{
    if (m_fd < 0) return SetReadyTime(delay);
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(delay);
    const std::chrono::nanoseconds rest = delay - seconds;
    itimerspec when{};
    when.it_value.tv_sec = static_cast<time_t>(seconds.count());
    when.it_value.tv_nsec = static_cast<long>(rest.count());
    timerfd_settime(m_fd, 0, &when, nullptr);
}

// Used if the process has run out of descriptors: the source then polls nothing and depends on GLib's clock.
void SettleTimer::SetReadyTime(std::chrono::microseconds delay) const
{
    g_source_set_ready_time(m_source.get(), delay.count() == 0 ? -1 : g_get_monotonic_time() + delay.count());
}

// The callback may destroy the timer.
int SettleTimer::OnReadable(int, GIOCondition, gpointer data)
{
    auto& timer = *static_cast<SettleTimer*>(data);
    timer.Stop();
    const std::function<void()> expired = timer.m_expired;
    expired();
    return G_SOURCE_CONTINUE;
}
}  // namespace ipodkit
