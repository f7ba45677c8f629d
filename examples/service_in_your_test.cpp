// A service for your own test: it runs in the test's process, plays music, fails on demand, and records the calls it
// receives. Run it on a private bus: dbus-run-session -- ./service_in_your_test
#include <IQBXIpodPlayer.h>
#include <QBXLog.h>
#include <ipodsim.h>

#include <cstdio>
#include <exception>

namespace
{
bool Passes()
{
    ipodsim::Simulator service;
    IQBXIpodPlayer* const player = QBX_GetIpodPlayer();
    if (!player->InitInstance()) return false;
    service.Do("button", "play");
    const bool plays = player->GetPlayStatus() == IPOD_PLAY_STATUS_PLAYING;
    service.Do("fault", "out-of-range=42@GetPlayStatus/1");
    const bool isPassedOn = player->GetPlayStatus() == 42;
    const bool wasAskedTwice = service.Calls("GetPlayStatus").size() == 2;
    return plays && isPassedOn && wasAskedTwice;
}
}  // namespace

int main()
{
    // Without a log the library prints a warning in place of each record. QBX_LOG in the environment sets one up, too.
    if (liblog_category == nullptr) QBX_LogInit("WARN");
    try
    {
        const bool passed = Passes();
        std::printf("%s\n", passed ? "passed" : "failed");
        return passed ? 0 : 1;
    }
    catch (const std::exception& error)
    {
        // For example, no bus is running.
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
}
