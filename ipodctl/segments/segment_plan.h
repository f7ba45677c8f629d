/// @file
/// The two segments and what is to lie in them.
#pragma once

#include <cstddef>
#include <vector>

namespace ctl
{
struct SegmentPlan
{
    const char* what;  ///< "lists" or "buffers"
    const char* name;
    std::size_t size;
    std::vector<const char*> lists;    ///< names of vectors of names
    std::vector<const char*> buffers;  ///< names of vectors of bytes
};

const std::vector<SegmentPlan>& SegmentPlans();
}  // namespace ctl
