// Waits for the result of a request on a second thread, while the main thread runs the session's context.
#include <QBXLog.h>
#include <glib.h>
#include <ipodkit/session.h>

#include <iostream>
#include <thread>

using namespace ipodkit;

int main()
{
    if (liblog_category == nullptr) QBX_LogInit("WARN");
    const auto session = Session::Open();
    if (!session) return std::cerr << session.error().Text() << '\n', EXIT_FAILURE;
    GMainLoop* const loop = g_main_loop_new(nullptr, FALSE);

    const auto count = [commands = (*session)->Commands(), loop]
    {
        const Result<int> entries = commands.PlayingCount().Future().get();
        std::cout << (entries ? std::to_string(*entries) : entries.error().Text()) << std::endl;
        g_main_loop_quit(loop);
    };
    std::thread counting(count);
    g_main_loop_run(loop);
    counting.join();
}
