#include "player/source.h"

#include <ipodkit/audio_source.h>

#include "output/failure.h"

namespace ctl
{
void TakeAudioSource(Session& session)
{
    ipodkit::AudioSource source(session.Ready(), 0);
    const ipodkit::Result<void> granted = source.Request();
    if (!granted)
        throw Failure(kNothingDone, granted.error().reason,
                      "another audio source may have priority; try again when it has ended");
    source.Activated(0);
}
}  // namespace ctl
