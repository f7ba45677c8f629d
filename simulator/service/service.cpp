#include "service/service.h"

#include <utility>

namespace ipodsim
{
Service::Service(ComZarnLinuxIpod* skeleton, GMainContext* context, const Settings& settings)
    : signals(skeleton, segments, settings.warn),
      player(settings.seed, *this),
      agenda(context),
      m_settings(settings),
      m_clock(context, settings.speed, [this](int elapsedMs) { player.Advance(elapsedMs); })
{
}

Database* Service::Browsed()
{
    Device* const device = devices.Current();
    return device == nullptr ? nullptr : &device->database;
}

void Service::LogCall(const LoggedCall& call, bool keep)
{
    if (m_settings.logRequest)
    {
        const std::string answer = call.answer == nullptr ? "no answer" : ToShortText(call.answer.get());
        m_settings.logRequest(call.method + " " + ToShortText(call.arguments.get()) + " -> " +
                              (call.error.empty() ? "" : call.error + " ") + answer);
    }
    if (keep) calls.Add(call);
}

void Service::Crash(const Fault& fault)
{
    if (MayCrash()) m_settings.crash(segments, fault);
}

void Service::AfterSeconds(double seconds, std::function<void()> work)
{
    agenda.After(RealSeconds(seconds) * 1000, std::move(work));
}

void Service::Reset()
{
    player.Clear();
    eap = EapSessions();
    unit = UnitState();
}

void Service::OnTrack()
{
    signals.PlayingTrack(player);
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
