/// @file
/// Keeps the devices of a service as the sub-folders of a music folder are.
#pragma once

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "music/folder_scan.h"
#include "music/folder_watch.h"
#include "music/index_cache.h"
#include "service/service.h"

namespace ipodsim
{
/// Reads tags on a thread of its own: the service answers meanwhile. Everything but that lives on the service's thread.
class MusicFeed
{
public:
    struct Settings
    {
        std::string folder;
        std::string ownName;      ///< of the device that has the files in the folder itself
        bool oneDevice = false;   ///< everything belongs to that one
        std::string cacheFolder;  ///< empty: what is read is not kept
        Warn warn;
        std::function<void(std::size_t, std::size_t)> progress;  ///< on any thread; may be empty
        std::function<void()> indexed;                           ///< after each time that something was read
    };

    /// Attaches the devices that are there, still empty, and begins to read.
    /// @throws std::runtime_error  the folder is missing, is none, or cannot be read
    MusicFeed(Service& service, GMainContext* context, Settings settings);
    ~MusicFeed();
    MusicFeed(const MusicFeed&) = delete;
    MusicFeed& operator=(const MusicFeed&) = delete;

private:
    struct Work
    {
        DeviceFolder device;
        FolderScan scan;
    };

    // On the reading thread:
    void Read();
    bool WaitForWork();
    void ReadChanges(IndexCache& cache);
    std::vector<Work> FindChanges(const std::vector<DeviceFolder>& devices, const Warn& warn);
    void ReadDevices(const std::vector<Work>& changes, IndexCache& cache, const Warn& warn);
    void Post(std::function<void()> work);

    // On the service's thread:
    void Wake();
    void Show(const DeviceFolder& folder, Library library);
    void RemoveAllBut(const std::vector<DeviceFolder>& devices);

    Service& m_service;
    GMainContext* m_context;
    Settings m_settings;
    std::shared_ptr<bool> m_alive = std::make_shared<bool>(true);
    std::vector<std::string> m_folders;  // of the devices that the feed attached

    std::map<std::string, std::uint64_t> m_known;  // fingerprint of each device; reading thread only
    std::mutex m_mutex;
    std::condition_variable m_awake;
    bool m_changed = true;
    std::atomic<bool> m_stop{false};
    std::unique_ptr<FolderWatch> m_watch;
    std::thread m_thread;
};
}  // namespace ipodsim
