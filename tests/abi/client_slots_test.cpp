// The player object that the library returns, called through its vtable without any header.
#include <gtest/gtest.h>

#include "slot_tables.h"

namespace
{
using Progress = void (*)(IQBXIpodPlayer*, int, int);

Progress ProgressAt(IQBXIpodPlayer* player, std::size_t slot)
{
    return (*reinterpret_cast<const Progress* const*>(player))[slot];
}

class ProgressListener : public IQBXIpodPlayerListener
{
public:
    void OnPlayProgressChange(int pos, int duration) override { m_seen.push_back({pos, duration}); }
    std::vector<std::pair<int, int>> m_seen;
};

class ClientSlots : public testing::Test
{
protected:
    void SetUp() override { m_player->AddListener(&m_listener); }
    void TearDown() override
    {
        m_player->RemoveListener(&m_listener);
        QBX_DestroyIpodPlayer();
    }

    IQBXIpodPlayer* m_player = QBX_GetIpodPlayer();
    ProgressListener m_listener;
};

TEST_F(ClientSlots, ProgressReceiverFollowsThePlayersLastOperation)
{
    ProgressAt(m_player, slots::ClientProgressSlot())(m_player, 1500, 180000);
    EXPECT_EQ(m_listener.m_seen, (std::vector<std::pair<int, int>>{{1500, 180000}}));
}

TEST_F(ClientSlots, NotificationOfThatNameIsEmptyInTheClient)
{
    constexpr std::size_t progressNotification = slots::kFirstSlot + 2;
    ProgressAt(m_player, progressNotification)(m_player, 1500, 180000);
    EXPECT_TRUE(m_listener.m_seen.empty());
}

TEST_F(ClientSlots, ExitInstanceHasThePublishedSlot)
{
    using Operation = bool (*)(IQBXIpodPlayer*);
    const std::size_t exitInstance = slots::kFirstSlot + slots::ListenerTable().size() + 1;
    EXPECT_TRUE((*reinterpret_cast<const Operation* const*>(m_player))[exitInstance](m_player));
}
}  // namespace
