/// @file
/// What a verb works with while it runs.
#pragma once

#include "output/output.h"
#include "session/session.h"

namespace ctl
{
struct Context
{
    Session& session;
    Output& out;
};
}  // namespace ctl
