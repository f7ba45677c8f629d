// Sends requests: blocking, asynchronously, and one after the other. background.cpp uses another thread.
#include <QBXLog.h>
#include <glib.h>
#include <ipodkit/session.h>

#include <iostream>

using namespace ipodkit;
using namespace std::chrono_literals;

namespace
{
void Print(const Result<int>& number)
{
    std::cout << (number ? std::to_string(*number) : number.error().Text()) << std::endl;
}

void Send(const Commands& commands, const Cancellation& closed, GMainLoop* loop)
{
    const Result<std::string> name = commands.IpodName().Within(500ms).Wait();  // blocks, at most for 500 ms
    std::cout << name.value_or("no name") << std::endl;

    commands.DeviceCount().Start(Print);  // returns at once; Print() runs in the session's context

    commands.EnterRoot()
        .AndThen([commands] { return commands.DatabaseCount(); })
        .Within(2s)           // both parts together
        .CancelledBy(closed)  // closed.Cancel() withdraws the part that is under way
        .Start(
            [loop](const Result<int>& count)
            {
                Print(count);
                g_main_loop_quit(loop);
            });
}
}  // namespace

int main()
{
    if (liblog_category == nullptr) QBX_LogInit("WARN");
    const auto session = Session::Open();
    if (!session) return std::cerr << session.error().Text() << '\n', EXIT_FAILURE;
    GMainLoop* const loop = g_main_loop_new(nullptr, FALSE);
    const Cancellation closed;
    Send((*session)->Commands(), closed, loop);
    g_main_loop_run(loop);
}
