// Requests the audio source, starts playback, and releases the source after a second.
#include <QBXLog.h>
#include <glib.h>
#include <ipodkit/audio_source.h>

#include <iostream>

using namespace ipodkit;

int main()
{
    if (liblog_category == nullptr) QBX_LogInit("WARN");
    const auto session = Session::Open();
    if (!session) return std::cerr << session.error().Text() << '\n', EXIT_FAILURE;

    AudioSource source(**session, 0);
    const auto print = [](const AudioTransition& step)
    { std::cout << Name(step.from) << " -> " << Name(step.to) << ": " << step.why << std::endl; };
    const Subscription printed = source.OnTransition("print", print);

    const auto play = [&source](const Connection& connection)
    {
        if (connection.phase != Phase::Ready || source.State() != AudioState::Released) return;
        if (const Result<void> granted = source.Request(); !granted) std::cerr << granted.error().Text() << '\n';
        source.Activated(1);  // an application calls this when the manager activates its source
        source.Play().Start(
            [](const Result<void>& playing)
            {
                if (!playing) std::cerr << playing.error().Text() << '\n';
            });
    };
    const Subscription ready = (*session)->OnConnection("play", play);

    const auto release = [](gpointer playing) -> gboolean
    {
        static_cast<AudioSource*>(playing)->Release();
        return G_SOURCE_CONTINUE;
    };
    g_timeout_add_seconds(1, release, &source);
    g_main_loop_run(g_main_loop_new(nullptr, FALSE));
}
