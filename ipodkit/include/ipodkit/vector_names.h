/// @file
/// Names of the ten vectors in shared memory, for C++11 and later.
#pragma once

#include <QBXIpodShareMemory.h>

namespace ipodkit
{
/// The name of a vector, and that of the segment that holds it. The list segment holds vectors of names, the buffer
/// segment holds vectors of bytes.
struct VectorName
{
    const char* name;
    const char* segment;
};

/// The vectors of the bus contract, in the order of their variables in QBXIpodShareMemory.h.
constexpr VectorName kVectorNames[] = {
    {"VecPlayingListShareMemory", kListSegmentName},      {"VecDBListShareMemory", kListSegmentName},
    {"VecDBListPinyinShareMemory", kListSegmentName},     {"VecUpdateListShareMemory", kListSegmentName},
    {"VecUpdateListPinyinShareMemory", kListSegmentName}, {"VecDeviceListShareMemory", kListSegmentName},
    {"VecArtworkBufferShareMemory", kBufferSegmentName},  {"VecArtworkChangeBufferShareMemory", kBufferSegmentName},
    {"VecEapWriteBufferShareMemory", kBufferSegmentName}, {"VecEapReadBufferShareMemory", kBufferSegmentName},
};
}  // namespace ipodkit
