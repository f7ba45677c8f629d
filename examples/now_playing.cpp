// Shows what is playing, for as long as it runs. now_playing_coroutine.cpp is the same with co_await, and
// now_playing_core.cpp with the core alone.
#include <QBXLog.h>
#include <glib.h>
#include <ipodkit/session.h>

#include <iostream>

using namespace ipodkit;

int main()
{
    // Without a log the library prints a warning in place of each record. QBX_LOG in the environment sets one up, too.
    if (liblog_category == nullptr) QBX_LogInit("WARN");
    const auto session = Session::Open();
    if (!session) return std::cerr << session.error().Text() << '\n', EXIT_FAILURE;

    const auto show = [](const StatePtr& state, Fields)
    {
        const Track track = state->track.value_or({});
        std::cout << '[' << Name(state->phase) << (state->status == PlayStatus::Playing ? "] > " : "] = ")
                  << track.artist << " - " << track.title << std::endl;
    };
    const Subscription shown =
        (*session)->OnState("now playing", show, Field::Track | Field::Status | Field::Connection);
    g_main_loop_run(g_main_loop_new(nullptr, FALSE));
}
