// The same as now_playing.cpp with co_await.
#include <QBXLog.h>
#include <glib.h>
#include <ipodkit/coroutine.h>
#include <ipodkit/session.h>

#include <iostream>

using namespace ipodkit;

static Task<> Show(Session& session)
{
    const Fields shown = Field::Track | Field::Status | Field::Connection;
    for (Result<StatePtr> state = session.State(); state; state = co_await session.Changed(shown))
    {
        const Track track = (*state)->track.value_or({});
        std::cout << '[' << Name((*state)->phase) << ((*state)->status == PlayStatus::Playing ? "] > " : "] = ")
                  << track.artist << " - " << track.title << std::endl;
    }
}

int main()
{
    if (liblog_category == nullptr) QBX_LogInit("WARN");
    const auto session = Session::Open();
    if (!session) return std::cerr << session.error().Text() << '\n', EXIT_FAILURE;
    Tasks tasks;
    tasks.Start(Show(**session));
    g_main_loop_run(g_main_loop_new(nullptr, FALSE));
}
