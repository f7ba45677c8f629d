#include "player/source.h"

#include "output/failure.h"

namespace ctl
{
void TakeAudioSource(Session& session)
{
    const int code = session.Ask([](IQBXIpodPlayer& player) { return player.Play(IPOD_PLAY_REQUEST_SOURCE_0, 0); });
    if (code != 1 && code != 2)
        throw Failure(kNothingDone, "the unit refused the audio source (code " + std::to_string(code) +
                                        "); another source has priority, try again when it has ended");
    session.Ask([](IQBXIpodPlayer& player) { return player.Play(IPOD_PLAY_CONFIRM_ACTIVE, 0); });
}
}  // namespace ctl
