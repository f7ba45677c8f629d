// The service's half of a comparison: prints the layout that a build of the service gives the shared segments.
//
// Compile it with the service's own compiler, flags and Boost, and compare the last line with `ipodctl fingerprint`:
//
//     c++ -std=c++11 $(pkg-config --cflags libipod) layout_of_segments.cpp -lpthread -lrt -o layout-of-segments
//
// Better still, put the service's own types and names in the place of these.
#include <QBXIpodShareMemory.h>

#include <cstdio>

#include "layout.h"

int main()
{
    std::puts(layout::Text(layout::Describe<QBXSharedSegment, QBXStringPageVector, QBXByteVector>()).c_str());
}
