#include "device_list.h"

#include <algorithm>
#include <utility>

namespace ipodsim
{
void DeviceList::Attach(const std::string& name, Library library)
{
    m_devices.push_back(std::make_unique<Device>(Device{name, Database(std::move(library))}));
    if (m_current == nullptr) m_current = m_devices.front().get();
}

bool DeviceList::Detach(const std::string& name)
{
    const auto found =
        std::find_if(m_devices.begin(), m_devices.end(), [&](const auto& device) { return device->name == name; });
    if (found == m_devices.end()) return false;
    const bool wasCurrent = found->get() == m_current;
    m_devices.erase(found);
    if (wasCurrent) m_current = m_devices.empty() ? nullptr : m_devices.front().get();
    return true;
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
}  // namespace ipodsim
