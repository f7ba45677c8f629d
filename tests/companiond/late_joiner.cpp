// An application that starts late: prints the first call, the time from Ready until it is known, and the remembered
// fields.
#include <QBXLog.h>
#include <glib.h>
#include <ipodkit/session.h>

#include <cstdio>

using namespace ipodkit;
using Clock = std::chrono::steady_clock;

namespace
{
constexpr guint kPatienceMilliseconds = 2000;

void Print(const PlayerState& state, Clock::duration sinceReady)
{
    const auto late = std::chrono::duration_cast<std::chrono::microseconds>(sinceReady);
    for (const auto& [key, call] : state.calls)
        std::printf("%s %lld us remembered: %s\n", call.name.value_or("").c_str(), static_cast<long long>(late.count()),
                    Names(state.remembered).c_str());
}
}  // namespace

int main()
{
    if (liblog_category == nullptr) QBX_LogInit("WARN");
    const auto session = Session::Open();
    if (!session) return 1;
    GMainLoop* const loop = g_main_loop_new(nullptr, FALSE);
    std::optional<Clock::time_point> ready;
    const auto follow = [&](const StatePtr& state, Fields)
    {
        if (state->phase != Phase::Ready) return;
        if (!ready) ready = Clock::now();
        Print(*state, Clock::now() - *ready);
        if (!state->calls.empty()) g_main_loop_quit(loop);
    };
    const Subscription following = (*session)->OnState("late joiner", follow);
    const auto givenUp = [](gpointer given)
    {
        std::puts("no call");
        g_main_loop_quit(static_cast<GMainLoop*>(given));
        return G_SOURCE_REMOVE;
    };
    g_timeout_add(kPatienceMilliseconds, givenUp, loop);
    g_main_loop_run(loop);
    g_main_loop_unref(loop);
    return 0;
}
