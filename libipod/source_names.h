/// @file
/// Names of the audio sources, for log lines.
#pragma once

namespace qbx
{
constexpr int kSourceIpod0 = 10;
constexpr int kSourceIpod1 = 11;

/// The name of a source, "SID_UNKNOWN" for a number that is none. Points to a constant.
const char* SourceName(int source);
}  // namespace qbx
