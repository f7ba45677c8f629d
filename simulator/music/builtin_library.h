/// @file
/// The library of a simulator that was given no folder.
#pragma once

#include "music/track.h"

namespace ipodsim
{
/// 24 invented tracks of nine artists, some of them Chinese, with covers that are drawn at the call.
Library BuiltinLibrary();
}  // namespace ipodsim
