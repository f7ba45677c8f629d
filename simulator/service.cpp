#include "service.h"

#include <memory>

namespace ipodsim
{
Service::Service(ComZarnLinuxIpod* skeleton, GMainContext* context, const Settings& settings)
    : signals(skeleton, segments, settings.warn),
      player(settings.seed, *this),
      m_clock(context, settings.speed, [this](int elapsedMs) { player.Advance(elapsedMs); }),
      m_logRequest(settings.logRequest)
{
}

Database* Service::Browsed()
{
    Device* const device = devices.Current();
    return device == nullptr ? nullptr : &device->database;
}

void Service::LogRequest(GDBusMethodInvocation* invocation) const
{
    if (!m_logRequest) return;
    const std::unique_ptr<char, decltype(&g_free)> arguments(
        g_variant_print(g_dbus_method_invocation_get_parameters(invocation), FALSE), &g_free);
    m_logRequest(g_dbus_method_invocation_get_method_name(invocation) + std::string(" ") + arguments.get());
}

void Service::OnTrack()
{
    signals.PlayingTrack(player);
    signals.Artwork(player);
}

void Service::OnStatus()
{
    m_clock.Run(player.Running());
    signals.PlayStatus(player);
}

void Service::OnProgress()
{
    signals.PlayProgress(player);
}

void Service::OnAmount()
{
    signals.PlayingListAmount(player);
}

void Service::OnShuffle()
{
    signals.ShuffleMode(player);
}

void Service::OnRepeat()
{
    signals.RepeatMode(player);
}
}  // namespace ipodsim
