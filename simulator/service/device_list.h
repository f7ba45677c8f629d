/// @file
/// The attached devices and the browsed one.
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
    std::string folder;  ///< folder of its music; empty for the built-in library
    Database database;
};

/// Empty if every device is detached.
class DeviceList
{
public:
    /// The first attached device becomes the browsed one.
    void Attach(const std::string& name, Library library, const std::string& folder = {});
    /// Removes the first device of that name; false if there is none. If it was the browsed one, the first remaining
    /// device takes its place.
    bool Detach(const std::string& name);
    /// The same for the device with the music in a folder.
    bool DetachFolder(const std::string& folder);
    /// The device with the music in a folder; null if there is none.
    Device* OfFolder(const std::string& folder);
    /// Selects the browsed device; false if the index does not exist.
    bool Choose(int index);

    std::size_t Count() const { return m_devices.size(); }
    std::vector<std::string> Names() const;
    /// The contents of all devices, without playlists.
    Library Everything() const;
    /// The browsed device; null if no device is attached.
    Device* Current() { return m_current; }

private:
    template <class IsIt>
    bool Remove(IsIt isIt);

    std::vector<std::unique_ptr<Device>> m_devices;
    Device* m_current = nullptr;
};
}  // namespace ipodsim
