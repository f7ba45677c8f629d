// The cost of an event for the receiving process: with the bare binding, and with the library and listeners.
#include <set>
#include <string>
#include <vector>

#include "bus.h"
#include "calls.h"
#include "contest.h"
#include "protocol.h"

namespace bench
{
namespace
{
struct CountingListener : IQBXIpodPlayerListener
{
    void OnPlayStatusChanged(iPodPlayerPlayStatus) override { ++events; }
    int events = 0;
};

int bareEvents = 0;

// The listeners of a bare callback that keeps its own set.
std::set<IQBXIpodPlayerListener*> walked;

void OnBareEvent(ComZarnLinuxIpod*, guchar status, gpointer)
{
    for (IQBXIpodPlayerListener* const listener : walked)
        listener->OnPlayStatusChanged(static_cast<iPodPlayerPlayStatus>(status));
    ++bareEvents;
}

void SubscribeBareProxy()
{
    GError* error = nullptr;
    ComZarnLinuxIpod* const proxy =
        com_zarn_linux_ipod_proxy_new_sync(Bus(), G_DBUS_PROXY_FLAGS_NONE, kBusName, kBareObjectPath, nullptr, &error);
    Check(error);
    g_signal_connect(proxy, "on-play-status-changed", G_CALLBACK(OnBareEvent), nullptr);
}

// The service replies, waits until this process sleeps, and then emits the event.
void AskForEvent(bool bare)
{
    GError* error = nullptr;
    com_zarn_linux_ipod_call_seek_sync(BareProxy(), bare, nullptr, &error);
    Check(error);
}

void WaitFor(const int& events)
{
    for (const int before = events; events == before;) g_main_context_iteration(nullptr, TRUE);
}

using Audience = std::vector<CountingListener>;

void Enter(std::set<IQBXIpodPlayerListener*>& registered, Audience& audience)
{
    if (registered.size() == audience.size()) return;
    registered.clear();
    for (CountingListener& listener : audience) registered.insert(&listener);
}

// The bare callback, which walks its own set.
Variant Walk(std::string name, Audience& audience)
{
    const auto before = [&audience]
    {
        Enter(walked, audience);
        AskForEvent(true);
    };
    return CpuTimed(std::move(name), before, [] { WaitFor(bareEvents); });
}

// Listeners are called in the order of their addresses, so the last one marks the end of the event.
Variant Dispatch(std::string name, Audience& audience)
{
    const auto before = [&audience]
    {
        Enter(Player()->GetListeners(), audience);
        AskForEvent(false);
    };
    return CpuTimed(std::move(name), before, [&audience] { WaitFor(audience.back().events); });
}
}  // namespace

void CompareEvents(int calls)
{
    Audience none;
    Audience ten(10);
    Audience hundred(100);
    Player();
    SubscribeBareProxy();
    Run({"event",
         calls,
         {Walk("bare", none), Walk("walk 10", ten), Walk("walk 100", hundred), Dispatch("library 10", ten),
          Dispatch("library 100", hundred)}});
    Player()->GetListeners().clear();
}
}  // namespace bench
