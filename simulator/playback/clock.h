/// @file
/// A clock that ticks on the service's main context.
#pragma once

#include <glib.h>

#include <functional>

namespace ipodsim
{
/// The range of speeds: a slower clock would never tick, a faster one would skip whole tracks.
constexpr double kSlowest = 0.001;
constexpr double kFastest = 10000;

class Clock
{
public:
    /// @param context  main context of the ticks; borrowed
    /// @param speed    milliseconds of the track per millisecond, between kSlowest and kFastest; ticks every 500 ms of
    ///                 the track, but at most a hundred times a second
    /// @param tick     receives the elapsed milliseconds of the track
    Clock(GMainContext* context, double speed, std::function<void(int)> tick);
    ~Clock();
    Clock(const Clock&) = delete;
    Clock& operator=(const Clock&) = delete;

    /// Starts or stops the clock; time while stopped does not count.
    void Run(bool running);

private:
    static gboolean OnTimeout(gpointer self);
    void Tick();

    GMainContext* m_context;
    double m_speed;
    std::function<void(int)> m_tick;
    GSource* m_source = nullptr;
    gint64 m_last = 0;  // microseconds
};
}  // namespace ipodsim
