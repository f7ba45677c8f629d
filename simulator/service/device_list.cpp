#include "service/device_list.h"

#include <algorithm>
#include <utility>

namespace ipodsim
{
void DeviceList::Attach(const std::string& name, Library library, const std::string& folder)
{
    m_devices.push_back(std::make_unique<Device>(Device{name, folder, Database(std::move(library))}));
    if (m_current == nullptr) m_current = m_devices.front().get();
}

template <class IsIt>
bool DeviceList::Remove(IsIt isIt)
{
    const auto found =
        std::find_if(m_devices.begin(), m_devices.end(), [&](const auto& device) { return isIt(*device); });
    if (found == m_devices.end()) return false;
    const bool wasCurrent = found->get() == m_current;
    m_devices.erase(found);
    if (wasCurrent) m_current = m_devices.empty() ? nullptr : m_devices.front().get();
    return true;
}

bool DeviceList::Detach(const std::string& name)
{
    return Remove([&](const Device& device) { return device.name == name; });
}

bool DeviceList::DetachFolder(const std::string& folder)
{
    return Remove([&](const Device& device) { return device.folder == folder; });
}

Device* DeviceList::OfFolder(const std::string& folder)
{
    for (const auto& device : m_devices)
        if (device->folder == folder) return device.get();
    return nullptr;
}

bool DeviceList::Choose(int index)
{
    if (index < 0 || static_cast<std::size_t>(index) >= m_devices.size()) return false;
    m_current = m_devices[static_cast<std::size_t>(index)].get();
    m_current->database.EnterRoot();
    return true;
}

std::vector<std::string> DeviceList::Names() const
{
    std::vector<std::string> names;
    for (const auto& device : m_devices) names.push_back(device->name);
    return names;
}

Library DeviceList::Everything() const
{
    Library all;
    for (const auto& device : m_devices)
    {
        const TrackList& songs = device->database.Songs();
        all.tracks.insert(all.tracks.end(), songs.begin(), songs.end());
    }
    return all;
}
}  // namespace ipodsim
