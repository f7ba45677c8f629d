/// @file
/// A listener's registration, for as long as the object lives.
#pragma once

#include <IQBXIpodPlayer.h>

namespace ctl
{
class Registered
{
public:
    Registered(IQBXIpodPlayer& player, IQBXIpodPlayerListener& listener) : m_player(player), m_listener(listener)
    {
        m_player.AddListener(&m_listener);
    }
    ~Registered() { m_player.RemoveListener(&m_listener); }
    Registered(const Registered&) = delete;
    Registered& operator=(const Registered&) = delete;

private:
    IQBXIpodPlayer& m_player;
    IQBXIpodPlayerListener& m_listener;
};
}  // namespace ctl
