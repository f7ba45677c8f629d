/// @file
/// A clock that ticks on the service's main context.
#pragma once

#include <glib.h>

#include <functional>

namespace ipodsim
{
/// The range of speeds: a clock slower than that never ticks, and a faster one skips whole tracks.
constexpr double kSlowest = 0.001;
constexpr double kFastest = 10000;

class Clock
{
public:
    /// @param context  where it ticks; kept
    /// @param speed    milliseconds of the track per millisecond, from kSlowest to kFastest; a tick comes every 500 ms
    /// of the track, though never
    ///                 more often than a hundred times a second
    /// @param tick     receives the milliseconds of the track that passed
    Clock(GMainContext* context, double speed, std::function<void(int)> tick);
    ~Clock();
    Clock(const Clock&) = delete;
    Clock& operator=(const Clock&) = delete;

    /// Starts or stops it; time that passes while it stands is not counted.
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
