// What an event costs the process that receives it: the bare binding, and the library with listeners.
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

void OnBareEvent(ComZarnLinuxIpod*, guchar, gpointer)
{
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

// The service answers, waits until this process sleeps, and emits then.
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

class Audience
{
public:
    explicit Audience(std::size_t size) : m_listeners(size) {}

    // The only ones in the registry from now on.
    void Enter()
    {
        auto& registered = Player()->GetListeners();
        if (registered.size() == m_listeners.size()) return;
        registered.clear();
        for (CountingListener& listener : m_listeners) Player()->AddListener(&listener);
    }

    // Listeners are called in the order of their addresses.
    const int& EventsOfTheLast() const { return m_listeners.back().events; }

private:
    std::vector<CountingListener> m_listeners;
};

Variant BareEvent()
{
    return CpuTimed(
        "bare", [] { AskForEvent(true); }, [] { WaitFor(bareEvents); });
}

Variant EventFor(const char* name, Audience& audience)
{
    const auto before = [&audience]
    {
        audience.Enter();
        AskForEvent(false);
    };
    return CpuTimed(name, before, [&audience] { WaitFor(audience.EventsOfTheLast()); });
}
}  // namespace

void CompareEvents(int calls)
{
    Audience ten(10);
    Audience hundred(100);
    Player();
    SubscribeBareProxy();
    Run({"event", calls, {BareEvent(), EventFor("10 listeners", ten), EventFor("100 listeners", hundred)}});
    Player()->GetListeners().clear();
}
}  // namespace bench
