// Shows what plays, for as long as it runs. Compare with now_playing_core.cpp.
#include <QBXLog.h>
#include <glib.h>
#include <ipodkit/session.h>

#include <cstdio>

int main()
{
    // Otherwise each record of the library is a line of warning. QBX_LOG in the environment says it too.
    if (liblog_category == nullptr) QBX_LogInit("WARN");
    const auto session = ipodkit::Session::Open();
    if (!session)
    {
        std::fprintf(stderr, "%s\n", session.error().Text().c_str());
        return 1;
    }
    const auto show = [](const ipodkit::StatePtr& state, ipodkit::Fields)
    {
        const bool playing = state->status == ipodkit::PlayStatus::Playing;
        const ipodkit::Track track = state->track.value_or({});
        std::printf("[%s] %s %s - %s\n", ipodkit::Name(state->phase), playing ? ">" : "=", track.artist.c_str(),
                    track.title.c_str());
        std::fflush(stdout);
    };
    const auto shown = (*session)->OnState("now playing", show,
                                           ipodkit::Field::Track | ipodkit::Field::Status | ipodkit::Field::Connection);
    g_main_loop_run(g_main_loop_new(nullptr, FALSE));
}
