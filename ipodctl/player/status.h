/// @file
/// All that is known of device and player, and the queue around the playing track.
#pragma once

#include <ipodkit/player_state.h>

#include <string>
#include <vector>

#include "output/output.h"
#include "session/session.h"

namespace ctl
{
struct Status
{
    ipodkit::StatePtr state;
    int firstNear = 0;              ///< index of the first entry of near
    std::vector<std::string> near;  ///< entries of the playing list around the playing one
    std::string nearRefusal;        ///< why near could not be read; empty when it was
    int position = 0;               ///< milliseconds, now
    int length = 0;                 ///< milliseconds
};

/// @param near  how many entries before and after the playing one
Status ReadStatus(Session& session, int near);

/// Whether something is loaded.
bool HasTrack(const Status& status);

/// What is unknown is null or left out.
Json StatusJson(const Status& status);
}  // namespace ctl
