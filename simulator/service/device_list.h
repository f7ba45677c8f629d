/// @file
/// The attached devices and the one that is browsed.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "music/database.h"

namespace ipodsim
{
struct Device
{
    std::string name;
    std::string folder;  ///< where its music lies; empty for the built-in library
    Database database;
};

/// May be empty: everything was detached.
class DeviceList
{
public:
    /// The first device to come is the one that is browsed.
    void Attach(const std::string& name, Library library, const std::string& folder = {});
    /// Takes away the first device of that name; false when there is none. When it was the one that is browsed, the
    /// first of the others is browsed from now on.
    bool Detach(const std::string& name);
    /// The same for the device whose music lies in a folder.
    bool DetachFolder(const std::string& folder);
    /// The device whose music lies in a folder; null when there is none.
    Device* OfFolder(const std::string& folder);
    /// False when there is no such device.
    bool Choose(int index);

    std::size_t Count() const { return m_devices.size(); }
    std::vector<std::string> Names() const;
    /// What all devices hold, without playlists.
    Library Everything() const;
    /// Null when no device is attached.
    Device* Current() { return m_current; }

private:
    template <class IsIt>
    bool Remove(IsIt isIt);

    std::vector<std::unique_ptr<Device>> m_devices;
    Device* m_current = nullptr;
};
}  // namespace ipodsim
