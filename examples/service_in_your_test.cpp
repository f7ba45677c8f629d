// A service for your own test: it lives in the test's process, plays along, fails on demand and tells what it was
// asked. Run it on a bus of its own: dbus-run-session -- ./service_in_your_test
#include <IQBXIpodPlayer.h>
#include <ipodsim.h>

#include <cstdio>

int main()
{
    ipodsim::Simulator service;
    IQBXIpodPlayer* const player = QBX_GetIpodPlayer();
    if (!player->InitInstance()) return 1;
    service.PressButton("play");
    const bool plays = player->GetPlayStatus() == IPOD_PLAY_STATUS_PLAYING;
    service.Fault("out-of-range=42@GetPlayStatus/1");
    const bool isPassedOn = player->GetPlayStatus() == 42;
    const bool wasAskedTwice = service.Calls("GetPlayStatus").size() == 2;
    std::printf("%s\n", plays && isPassedOn && wasAskedTwice ? "as it should be" : "something is wrong");
    return plays && isPassedOn && wasAskedTwice ? 0 : 1;
}
