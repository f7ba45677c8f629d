/// @file
/// Finds the holder of a lock.
#pragma once

#include <ipodkit/sharing.h>

#include <string>

#include "sharing/place.h"

namespace ipodkit
{
/// Returns "process 123 (ipodctl)", or "another process" if the holder cannot be found, for example because it belongs
/// to another user. Reads /proc, which takes milliseconds. Any thread.
std::string HolderOf(Place place);
}  // namespace ipodkit
