/// @file
/// Words for the numbers of the interface.
#pragma once

#include "scenario/json_value.h"

namespace ipodsim::words
{
inline const Words kCallStatus = {{"disconnected", 0}, {"sending", 1}, {"ringing", 2},      {"connecting", 3},
                                  {"active", 4},       {"held", 5},    {"disconnecting", 6}};
inline const Words kCallDirection = {{"unknown", 0}, {"incoming", 1}, {"outgoing", 2}};
inline const Words kCallService = {{"unknown", 0}, {"telephony", 1}, {"video", 2}, {"audio", 3}};
inline const Words kCallReason = {{"ended", 0}, {"declined", 1}, {"failed", 2}};
inline const Words kCharging = {{"disabled", 0}, {"charging", 1}, {"charged", 2}, {"discharging", 3}};
inline const Words kDetection = {{"detected", 0}, {"not-detected", 1}, {"unsupported", 2}};
}  // namespace ipodsim::words
