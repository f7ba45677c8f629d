#include "segments/segment_plan.h"

#include <QBXIpodShareMemory.h>

namespace ctl
{
const std::vector<SegmentPlan>& SegmentPlans()
{
    static const std::vector<SegmentPlan> plans = {
        {"lists",
         kListSegmentName,
         kListSegmentSize,
         {"VecPlayingListShareMemory", "VecDBListShareMemory", "VecDBListPinyinShareMemory", "VecUpdateListShareMemory",
          "VecUpdateListPinyinShareMemory", "VecDeviceListShareMemory"},
         {}},
        {"buffers",
         kBufferSegmentName,
         kBufferSegmentSize,
         {},
         {"VecArtworkBufferShareMemory", "VecArtworkChangeBufferShareMemory", "VecEapWriteBufferShareMemory",
          "VecEapReadBufferShareMemory"}}};
    return plans;
}
}  // namespace ctl
