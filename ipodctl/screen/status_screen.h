/// @file
/// The status as lines of a screen of any size.
#pragma once

#include "output/output.h"
#include "player/status.h"

namespace ctl
{
enum class Art
{
    OnTerminal,  ///< where there is room for it
    Always,
    Never,
};

/// What `ipodctl status` shows.
std::string StatusText(const Status& status, const Output& out, Art art);

/// What `ipodctl info` shows.
std::string InfoText(const Status& status, const Output& out, Art art);
}  // namespace ctl
