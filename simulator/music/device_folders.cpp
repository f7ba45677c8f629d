#include "music/device_folders.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

#include "music/text.h"

namespace ipodsim
{
namespace
{
namespace fs = std::filesystem;

std::vector<std::string> NamesIn(const std::string& root)
{
    std::vector<std::string> names;
    std::error_code error;
    for (fs::directory_iterator at(root, error), end; !error && at != end; at.increment(error))
        names.push_back(at->path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
}

bool IsDevice(const std::string& root, const std::string& name)
{
    std::error_code error;
    const fs::path path = fs::path(root) / name;
    return name.front() != '.' && fs::is_directory(path, error) && !fs::equivalent(path, root, error);
}
}  // namespace

std::vector<DeviceFolder> DeviceFoldersOf(const std::string& root, const std::string& ownName, bool oneDevice)
{
    if (std::error_code error; !fs::is_directory(root, error)) return {};
    if (oneDevice) return {{root, ownName, Depth::Everything}};
    std::vector<DeviceFolder> devices;
    bool hasMusic = false;
    for (const std::string& name : NamesIn(root))
    {
        const bool isDevice = IsDevice(root, name);
        if (isDevice) devices.push_back({root + "/" + name, CleanName(name, "Music"), Depth::Everything});
        hasMusic = hasMusic || (!isDevice && name.front() != '.' && LooksLikeAudio(name));
    }
    if (hasMusic || devices.empty()) devices.insert(devices.begin(), {root, ownName, Depth::TopOnly});
    return devices;
}
}  // namespace ipodsim
