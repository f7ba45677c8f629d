// The registry of listeners and its hooks for services.
#include <future>

#include "bus/bus_test.h"

namespace test
{
namespace
{
class HookedService : public IQBXService<IQBXIpodPlayerListener>
{
public:
    bool InitInstance() override { return true; }
    bool ExitInstance() override { return true; }
    void InitListener() override { hooks.emplace_back("InitListener"); }
    void ExitListener() override { hooks.emplace_back("ExitListener"); }

    std::vector<std::string> hooks;
};

class PlainRegistry : public IQBXListener<IQBXIpodPlayerListener>
{
public:
    void OnListenerAdded(IQBXIpodPlayerListener* listener) override { added.push_back(listener); }
    void OnListenerRemoved(IQBXIpodPlayerListener* listener) override { removed.push_back(listener); }

    std::vector<IQBXIpodPlayerListener*> added;
    std::vector<IQBXIpodPlayerListener*> removed;
};

TEST(RegistryTest, AListenerAddedTwiceIsStoredOnceAndRunsInitListenerTwice)
{
    HookedService service;
    IQBXIpodPlayerListener listener;

    service.AddListener(&listener);
    service.AddListener(&listener);

    EXPECT_EQ(service.GetListenerCount(), 1U);
    EXPECT_THAT(service.hooks, ElementsAre("InitListener", "InitListener"));
}

TEST(RegistryTest, OnlyTheFirstOfSeveralListenersRunsInitListener)
{
    HookedService service;
    IQBXIpodPlayerListener listeners[2];

    service.AddListener(&listeners[0]);
    service.AddListener(&listeners[1]);

    EXPECT_THAT(service.hooks, ElementsAre("InitListener"));
}

TEST(RegistryTest, OnlyTheRemovalOfTheLastListenerRunsExitListener)
{
    HookedService service;
    IQBXIpodPlayerListener listeners[2];
    for (auto& listener : listeners) service.AddListener(&listener);
    service.hooks.clear();

    service.RemoveListener(&listeners[1]);
    EXPECT_THAT(service.hooks, IsEmpty());
    service.RemoveListener(&listeners[0]);

    EXPECT_THAT(service.hooks, ElementsAre("ExitListener"));
}

TEST(RegistryTest, RemovingAnUnknownListenerFromAnEmptySetRunsExitListener)
{
    HookedService service;
    IQBXIpodPlayerListener unknown;

    service.RemoveListener(&unknown);

    EXPECT_THAT(service.hooks, ElementsAre("ExitListener"));
}

TEST(RegistryTest, RemovingAnUnknownListenerKeepsTheOthers)
{
    HookedService service;
    IQBXIpodPlayerListener listener;
    IQBXIpodPlayerListener unknown;
    service.AddListener(&listener);
    service.hooks.clear();

    service.RemoveListener(&unknown);

    EXPECT_THAT(service.GetListeners(), ElementsAre(&listener));
    EXPECT_THAT(service.hooks, IsEmpty());
}

TEST(RegistryTest, NullIsIgnoredWithoutAHook)
{
    HookedService service;
    PlainRegistry registry;

    service.AddListener(nullptr);
    service.RemoveListener(nullptr);
    registry.AddListener(nullptr);
    registry.RemoveListener(nullptr);

    EXPECT_EQ(service.GetListenerCount(), 0U);
    EXPECT_THAT(service.hooks, IsEmpty());
    EXPECT_THAT(registry.added, IsEmpty());
    EXPECT_THAT(registry.removed, IsEmpty());
}

TEST(RegistryTest, TheHooksAreCalledEvenIfTheSetDoesNotChange)
{
    PlainRegistry registry;
    IQBXIpodPlayerListener listener;

    registry.AddListener(&listener);
    registry.AddListener(&listener);
    registry.RemoveListener(&listener);
    registry.RemoveListener(&listener);

    EXPECT_THAT(registry.added, ElementsAre(&listener, &listener));
    EXPECT_THAT(registry.removed, ElementsAre(&listener, &listener));
}

TEST(RegistryTest, ListenersAreSortedByAddress)
{
    HookedService service;
    IQBXIpodPlayerListener listeners[3];

    for (const int i : {2, 0, 1}) service.AddListener(&listeners[i]);

    EXPECT_THAT(service.GetListeners(), ElementsAre(&listeners[0], &listeners[1], &listeners[2]));
}

TEST(RegistryTest, GetListenersIsTheSetItself)
{
    HookedService service;
    IQBXIpodPlayerListener listener;
    service.AddListener(&listener);

    service.GetListeners().clear();

    EXPECT_EQ(service.GetListenerCount(), 0U);
}

TEST(RegistryTest, RegistrationDoesNotAcquireTheListenerLock)
{
    HookedService service;
    IQBXIpodPlayerListener listener;
    service.LockListener();

    auto registration = std::async(std::launch::async,
                                   [&]
                                   {
                                       service.AddListener(&listener);
                                       service.RemoveListener(&listener);
                                   });

    EXPECT_EQ(registration.wait_for(std::chrono::seconds(5)), std::future_status::ready);
    service.UnlockListener();
}

TEST(RegistryTest, TheListenerLockExcludesOtherThreads)
{
    HookedService service;
    service.LockListener();

    auto other = std::async(std::launch::async,
                            [&]
                            {
                                service.LockListener();
                                service.UnlockListener();
                            });

    EXPECT_EQ(other.wait_for(std::chrono::milliseconds(50)), std::future_status::timeout);
    service.UnlockListener();
    EXPECT_EQ(other.wait_for(std::chrono::seconds(5)), std::future_status::ready);
}

TEST(RegistryTest, TheClientOverridesNoHooks)
{
    Journal journal;
    RecordingListener listener(journal, "app");
    IQBXIpodPlayer* const player = QBX_GetIpodPlayer();
    ClearLog();

    player->AddListener(&listener);
    player->AddListener(&listener);
    player->RemoveListener(&listener);

    EXPECT_EQ(player->GetListenerCount(), 0U);
    EXPECT_THAT(LogLines(), IsEmpty());
    EXPECT_THAT(journal, IsEmpty());
}
}  // namespace
}  // namespace test
