/// @file
/// An accessory session as standard input and output, or as a UNIX socket.
#pragma once

#include "accessory/opening.h"
#include "session/context.h"

namespace ctl
{
struct BridgeRequest
{
    AccessoryRequest accessory;
    std::string socket;  ///< its path; empty for standard input and output
    double linger = 1;   ///< seconds to wait for more after the end of the input
};

/// Opens a session and passes bytes both ways until it closes or the input has ended.
Answer RunBridge(Context& context, const BridgeRequest& request);
}  // namespace ctl
