/// @file
/// Which devices a music folder stands for.
#pragma once

#include <string>
#include <vector>

#include "music/folder_scan.h"

namespace ipodsim
{
/// A device and where its music lies.
struct DeviceFolder
{
    std::string path;
    std::string name;
    Depth depth = Depth::Everything;
};

/// Each sub-folder is a device of its own, in the order of names; those whose names begin with a dot and links back to
/// @p root are not. The files that lie in @p root itself make a device named @p ownName, which comes first; it is also
/// there when nothing else is. With @p oneDevice everything below @p root belongs to that one.
/// None when @p root has gone.
std::vector<DeviceFolder> DeviceFoldersOf(const std::string& root, const std::string& ownName, bool oneDevice);
}  // namespace ipodsim
