/// @file
/// Names of the audio sources, for log lines.
#pragma once

namespace qbx
{
constexpr int kSourceIpod0 = 10;
constexpr int kSourceIpod1 = 11;

/// Returns the name of a source, "SID_UNKNOWN" for an invalid number. Points to a constant.
const char* SourceName(int source);
}  // namespace qbx
