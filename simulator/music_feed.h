/// @file
/// Keeps the devices of a service in sync with the subfolders of a music folder.
#pragma once

#include <ipodsim.h>

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
/// Reads tags on its own thread, so that the service keeps answering. Everything else lives on the service's thread.
class MusicFeed
{
public:
    /// Attaches the existing devices without their contents and starts reading.
    /// @throws std::runtime_error  the folder is missing, not a folder, or cannot be read
    ///
    /// @param indexed  called after each scan that read something
    MusicFeed(Service& service, GMainContext* context, const Options& options, std::function<void()> indexed);
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
    Options m_options;
    std::function<void()> m_indexed;
    std::shared_ptr<bool> m_alive = std::make_shared<bool>(true);
    std::vector<std::string> m_folders;  // folders of the devices that the feed attached

    std::map<std::string, std::uint64_t> m_known;  // fingerprint of each device; used on the reading thread only
    std::mutex m_mutex;
    std::condition_variable m_awake;
    bool m_changed = true;
    std::atomic<bool> m_stop{false};
    std::unique_ptr<FolderWatch> m_watch;
    std::thread m_thread;
};
}  // namespace ipodsim
