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

void Service::AfterSeconds(double seconds, std::function<void()> work)
{
    agenda.After(RealSeconds(seconds) * 1000, std::move(work));
}

template <class Take>
bool Service::Detach(Take take)
{
    const Device* const before = devices.Current();
    if (!take()) return false;
    if (devices.Current() != before) player.Clear();
    signals.DeviceStatus(APPLE_DEVICE_NOT_DETECTED, false);
    return true;
}

bool Service::DetachDevice(const std::string& name)
{
    return Detach([&] { return devices.Detach(name); });
}

bool Service::DetachFolder(const std::string& folder)
{
    return Detach([&] { return devices.DetachFolder(folder); });
}

std::uint16_t Service::OpenEapSession(int protocol)
{
    const std::uint16_t session = eap.Open();
    if (session != 0) signals.StartEapSession(protocol, session);
    return session;
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
