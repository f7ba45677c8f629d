// Writes the artwork of each track that plays to a file and prints its URI: artwork_to_file [DIRECTORY]
#include <QBXLog.h>
#include <glib.h>
#include <ipodkit/picture_files.h>
#include <ipodkit/session.h>

#include <cstdio>

int main(int argc, char** argv)
{
    // Without a log the library prints a warning in place of each record. QBX_LOG in the environment sets one up, too.
    if (liblog_category == nullptr) QBX_LogInit("WARN");
    const ipodkit::PictureFiles files(argc > 1 ? argv[1] : "");
    const auto session = ipodkit::Session::Open();
    if (!session)
    {
        std::fprintf(stderr, "%s\n", session.error().Text().c_str());
        return 1;
    }
    const auto write = [&files](const ipodkit::StatePtr& state, ipodkit::Fields)
    {
        if (state->Artwork() == nullptr) return;
        const auto uri = files.Uri(*state->Artwork());
        std::printf("%s %ux%u %s\n", ipodkit::MediaType(state->Artwork()->type), state->Artwork()->width,
                    state->Artwork()->height, uri ? uri->c_str() : uri.error().Text().c_str());
        std::fflush(stdout);
    };
    const auto written = (*session)->OnState("artwork", write, ipodkit::Field::Artwork);
    // A running service is found before this fires.
    const auto reportWaiting = [](gpointer opened) -> gboolean
    {
        if (static_cast<const ipodkit::Session*>(opened)->Connection().phase != ipodkit::Phase::Ready)
            std::fprintf(stderr, "waiting for the iPod service\n");
        return G_SOURCE_REMOVE;
    };
    g_timeout_add(1000, reportWaiting, session->get());
    g_main_loop_run(g_main_loop_new(nullptr, FALSE));
}
