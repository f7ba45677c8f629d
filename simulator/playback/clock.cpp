#include "playback/clock.h"

#include <algorithm>
#include <utility>

namespace ipodsim
{
namespace
{
constexpr double kTickMs = 500;
constexpr double kShortestTickMs = 10;
constexpr double kLongestStepMs = 24.0 * 3600 * 1000;
}  // namespace

Clock::Clock(GMainContext* context, double speed, std::function<void(int)> tick)
    : m_context(context), m_speed(speed), m_tick(std::move(tick))
{
}

Clock::~Clock()
{
    Run(false);
}

void Clock::Run(bool running)
{
    if (running == (m_source != nullptr)) return;
    if (!running)
    {
        g_source_destroy(m_source);
        g_source_unref(m_source);
        m_source = nullptr;
        return;
    }
    m_source = g_timeout_source_new(static_cast<guint>(std::max(kTickMs / m_speed, kShortestTickMs)));
    g_source_set_callback(m_source, OnTimeout, this, nullptr);
    g_source_attach(m_source, m_context);
    m_last = g_get_monotonic_time();
}

gboolean Clock::OnTimeout(gpointer self)
{
    static_cast<Clock*>(self)->Tick();
    return G_SOURCE_CONTINUE;
}

void Clock::Tick()
{
    const gint64 now = g_get_monotonic_time();
    const double elapsed = static_cast<double>(now - m_last) / 1000 * m_speed;
    m_last = now;
    m_tick(static_cast<int>(std::min(elapsed, kLongestStepMs)));
}
}  // namespace ipodsim
