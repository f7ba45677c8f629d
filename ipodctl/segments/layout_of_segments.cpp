// Prints the layout of the shared segments in a build of the service, to compare it with the library's.
//
// Compile it with the service's own compiler, flags, and Boost, and compare the last line with `ipodctl fingerprint`:
//
//     c++ -std=c++11 $(pkg-config --cflags libipod) layout_of_segments.cpp -lpthread -lrt -o layout-of-segments
//
// For a stricter check, substitute the service's own types and names.
#include <QBXIpodShareMemory.h>
#include <ipodkit/vector_names.h>

#include <cstdio>

#include "layout.h"

int main()
{
    std::puts(layout::Text(layout::Describe<QBXSharedSegment, QBXStringPageVector, QBXByteVector>(
                               ipodkit::kVectorNames, kListSegmentSize, kBufferSegmentSize))
                  .c_str());
}
