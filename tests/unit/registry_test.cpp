// The registry of listeners and its hooks.
#include <IQBXListener.h>
#include <IQBXService.h>
#include <gtest/gtest.h>

#include <string>
#include <type_traits>
#include <vector>

namespace
{
struct Listener
{
    virtual ~Listener() = default;
};

class Registry : public IQBXListener<Listener>
{
public:
    std::vector<Listener*> added;
    std::vector<Listener*> removed;

    void OnListenerAdded(Listener* listener) override { added.push_back(listener); }
    void OnListenerRemoved(Listener* listener) override { removed.push_back(listener); }
};

class Service : public IQBXService<Listener>
{
public:
    std::string calls;

    bool InitInstance() override { return true; }
    bool ExitInstance() override { return true; }
    void InitListener() override { calls += "init "; }
    void ExitListener() override { calls += "exit "; }
};
}  // namespace

TEST(Registry, StartsEmpty)
{
    Registry registry;

    EXPECT_EQ(0u, registry.GetListenerCount());
    EXPECT_TRUE(registry.GetListeners().empty());
}

TEST(Registry, StoresAListenerAddedTwiceOnceAndCallsTheHookTwice)
{
    Registry registry;
    Listener listener;

    registry.AddListener(&listener);
    registry.AddListener(&listener);

    EXPECT_EQ(1u, registry.GetListenerCount());
    EXPECT_EQ((std::vector<Listener*>{&listener, &listener}), registry.added);
}

TEST(Registry, IgnoresANullPointerAndCallsNoHook)
{
    Registry registry;

    registry.AddListener(nullptr);
    registry.RemoveListener(nullptr);

    EXPECT_EQ(0u, registry.GetListenerCount());
    EXPECT_TRUE(registry.added.empty());
    EXPECT_TRUE(registry.removed.empty());
}

TEST(Registry, CallsTheHookForAListenerThatWasNeverAdded)
{
    Registry registry;
    Listener known;
    Listener unknown;
    registry.AddListener(&known);

    registry.RemoveListener(&unknown);

    EXPECT_EQ(1u, registry.GetListenerCount());
    EXPECT_EQ(std::vector<Listener*>{&unknown}, registry.removed);
}

TEST(Registry, ReturnsTheSetItselfSortedByAddress)
{
    Registry registry;
    Listener listeners[3];
    for (Listener* const listener : {&listeners[1], &listeners[2], &listeners[0]}) registry.AddListener(listener);

    std::set<Listener*>& set = registry.GetListeners();

    EXPECT_EQ((std::vector<Listener*>{&listeners[0], &listeners[1], &listeners[2]}),
              std::vector<Listener*>(set.begin(), set.end()));
    EXPECT_EQ(&set, &registry.GetListeners());
    set.clear();
    EXPECT_EQ(0u, registry.GetListenerCount());
}

TEST(Registry, CanBeChangedWhileItsLockIsHeld)
{
    Registry registry;
    Listener listener;
    registry.LockListener();

    registry.AddListener(&listener);
    registry.RemoveListener(&listener);

    registry.UnlockListener();
    EXPECT_EQ(0u, registry.GetListenerCount());
}

TEST(Service, CallsInitListenerWheneverARegistrationLeavesExactlyOne)
{
    Service service;
    Listener first;
    Listener second;

    service.AddListener(&first);
    service.AddListener(&first);
    service.AddListener(&second);

    EXPECT_EQ("init init ", service.calls);
}

TEST(Service, CallsExitListenerWheneverARemovalLeavesNone)
{
    Service service;
    Listener first;
    Listener second;
    service.AddListener(&first);
    service.AddListener(&second);
    service.calls.clear();

    service.RemoveListener(&first);
    EXPECT_EQ("", service.calls);
    service.RemoveListener(&second);
    service.RemoveListener(&second);

    EXPECT_EQ("exit exit ", service.calls);
}

TEST(Service, CallsNoHookForANullPointerWithoutListeners)
{
    Service service;

    service.RemoveListener(nullptr);

    EXPECT_EQ("", service.calls);
}

TEST(Service, IsAListenerFirstAndARegistrySecond)
{
    static_assert(std::is_base_of<Listener, Service>::value, "a service receives events itself");
    Service service;

    EXPECT_EQ(static_cast<void*>(&service), static_cast<void*>(static_cast<Listener*>(&service)));
    EXPECT_LT(static_cast<void*>(static_cast<Listener*>(&service)),
              static_cast<void*>(static_cast<IQBXListener<Listener>*>(&service)));
}
