/// @file
/// Who holds a lock.
#pragma once

#include <ipodkit/sharing.h>

#include <string>

#include "sharing/place.h"

namespace ipodkit
{
/// Returns "process 123 (ipodctl)", or "another process" when that cannot be found, as for those of other users. Reads
/// /proc, which takes milliseconds. Any thread.
std::string HolderOf(Place place);
}  // namespace ipodkit
