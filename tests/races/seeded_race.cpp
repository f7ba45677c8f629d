// An intentional race that the thread sanitizer must find: seeded_race [guarded]. One thread registers listeners while
// another counts them; with "guarded", both hold the listener lock, as the public header requires.
#include <IQBXIpodPlayer.h>

#include <algorithm>
#include <string>
#include <thread>

#include "support/private_shared_memory.h"

namespace
{
constexpr int kTimes = 2000;

class Lock
{
public:
    Lock(IQBXIpodPlayer& player, bool taken) : m_player(player), m_taken(taken)
    {
        if (m_taken) m_player.LockListener();
    }
    ~Lock()
    {
        if (m_taken) m_player.UnlockListener();
    }
    Lock(const Lock&) = delete;
    Lock& operator=(const Lock&) = delete;

private:
    IQBXIpodPlayer& m_player;
    const bool m_taken;
};

void Register(IQBXIpodPlayer& player, bool guarded)
{
    IQBXIpodPlayerListener listener;
    for (int i = 0; i < kTimes; ++i)
    {
        const Lock lock(player, guarded);
        player.AddListener(&listener);
        player.RemoveListener(&listener);
    }
}

std::size_t Count(IQBXIpodPlayer& player, bool guarded)
{
    std::size_t most = 0;
    for (int i = 0; i < kTimes; ++i)
    {
        const Lock lock(player, guarded);
        most = std::max(most, player.GetListeners().size());
    }
    return most;
}
}  // namespace

int main(int argc, char** argv)
{
    const test::PrivateSharedMemory privateSharedMemory;
    const bool guarded = argc > 1 && argv[1] == std::string("guarded");
    IQBXIpodPlayer& player = *QBX_GetIpodPlayer();
    std::thread other([&player, guarded] { Register(player, guarded); });
    const std::size_t most = Count(player, guarded);
    other.join();
    return most <= 1 ? 0 : 1;
}
