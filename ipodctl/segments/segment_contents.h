/// @file
/// What lies in a segment now. It is read in a child process, and from a private copy: nothing in it is changed.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "segments/segment_plan.h"

namespace ctl
{
struct VectorContents
{
    std::string name;
    bool isNames;  ///< of names, otherwise of bytes
    std::size_t elements;
    std::size_t capacity;  ///< elements
    std::string problem;   ///< empty when it can be read
};

struct SegmentContents
{
    std::string problem;      ///< empty when the segment can be read
    std::size_t free = 0;     ///< bytes
    std::size_t objects = 0;  ///< named ones, whatever they are
    std::vector<VectorContents> vectors;
};

SegmentContents ReadContents(const SegmentPlan& plan);

/// The bytes of all elements of a vector.
/// @throws Failure  kNoSegments, when they cannot be read
std::string ReadVector(const SegmentPlan& plan, const std::string& name);

/// The names in the bytes of a vector of names.
std::vector<std::string> NamesIn(const std::string& bytes);
}  // namespace ctl
