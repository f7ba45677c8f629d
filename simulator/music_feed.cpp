#include "music_feed.h"

#include <algorithm>
#include <utility>

#include "music/folder_scan.h"
#include "music/indexer.h"
#include "music/music_library.h"

namespace ipodsim
{
MusicFeed::MusicFeed(Service& service, GMainContext* context, const Options& options, std::function<void()> indexed)
    : m_service(service), m_context(context), m_options(options), m_indexed(std::move(indexed))
{
    m_options.musicFolder = CheckedFolder(m_options.musicFolder);
    for (const DeviceFolder& device : DeviceFoldersOf(m_options.musicFolder, m_options.deviceName, m_options.oneDevice))
    {
        m_service.devices.Attach(device.name, {}, device.path);
        m_folders.push_back(device.path);
    }
    m_watch = std::make_unique<FolderWatch>(m_options.musicFolder, m_context, m_options.warn, [this] { Wake(); });
    m_thread = std::thread([this] { Read(); });
}

MusicFeed::~MusicFeed()
{
    *m_alive = false;
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_stop = true;
    }
    m_awake.notify_one();
    m_thread.join();
}

void MusicFeed::Wake()
{
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_changed = true;
    }
    m_awake.notify_one();
}

void MusicFeed::Read()
{
    IndexCache cache(m_options.cacheFolder.empty() ? "" : CacheFileFor(m_options.cacheFolder, m_options.musicFolder),
                     m_options.warn);
    while (WaitForWork()) ReadChanges(cache);
    cache.Save(IndexCache::Unused::Keep);
}

bool MusicFeed::WaitForWork()
{
    std::unique_lock<std::mutex> lock(m_mutex);
    m_awake.wait(lock, [this] { return m_changed || m_stop; });
    m_changed = false;
    return !m_stop;
}

void MusicFeed::ReadChanges(IndexCache& cache)
{
    const auto devices = DeviceFoldersOf(m_options.musicFolder, m_options.deviceName, m_options.oneDevice);
    Post([this, devices] { RemoveAllBut(devices); });
    FewWarnings warnings(m_options.warn);
    const Warn warn = [&warnings](const std::string& line) { warnings.Add(line); };
    ReadDevices(FindChanges(devices, warn), cache, warn);
    if (m_stop) return;
    warnings.Summarize();
    cache.Save(IndexCache::Unused::Forget);
    if (m_indexed) Post(m_indexed);
}

std::vector<MusicFeed::Work> MusicFeed::FindChanges(const std::vector<DeviceFolder>& devices, const Warn& warn)
{
    std::vector<Work> changes;
    std::map<std::string, std::uint64_t> known;
    for (const DeviceFolder& device : devices)
    {
        // Watch before reading, so that no change is missed in between.
        FolderScan scan = ScanFolder(device.path, device.depth, m_options.musicFolder, warn,
                                     [this](const std::string& folder)
                                     {
                                         m_watch->Add(folder);
                                         return !m_stop;
                                     });
        const std::uint64_t fingerprint = Fingerprint(scan);
        const auto before = m_known.find(device.path);
        if (before == m_known.end() || before->second != fingerprint) changes.push_back({device, std::move(scan)});
        known[device.path] = fingerprint;
    }
    m_known = std::move(known);
    return changes;
}

void MusicFeed::ReadDevices(const std::vector<Work>& changes, IndexCache& cache, const Warn& warn)
{
    std::size_t all = 0;
    std::size_t done = 0;
    for (const Work& work : changes) all += work.scan.files.size();
    for (const Work& work : changes)
    {
        const auto progress = [&](std::size_t ofThis, std::size_t)
        {
            if (m_options.progress) m_options.progress(done + ofThis, all);
        };
        const auto library = std::make_shared<Library>(Index(work.scan, cache, {warn, progress, &m_stop}));
        if (m_stop) return;
        Post([this, device = work.device, library] { Show(device, std::move(*library)); });
        done += work.scan.files.size();
    }
}

void MusicFeed::Post(std::function<void()> work)
{
    struct Posted
    {
        std::shared_ptr<bool> alive;
        std::function<void()> work;
    };
    g_main_context_invoke_full(
        m_context, G_PRIORITY_DEFAULT,
        [](gpointer data) -> gboolean
        {
            const Posted& posted = *static_cast<Posted*>(data);
            if (*posted.alive) posted.work();
            return G_SOURCE_REMOVE;
        },
        new Posted{m_alive, std::move(work)}, [](gpointer data) { delete static_cast<Posted*>(data); });
}

// A device detached by an action stays detached until its folder changes.
void MusicFeed::Show(const DeviceFolder& folder, Library library)
{
    if (Device* const device = m_service.devices.OfFolder(folder.path))
    {
        device->database.Replace(std::move(library));
        m_service.signals.DeviceStatus(APPLE_DEVICE_DETECTED, true);
        return;
    }
    m_service.devices.Attach(folder.name, std::move(library), folder.path);
    m_folders.push_back(folder.path);
    m_service.signals.DeviceStatus(APPLE_DEVICE_DETECTED, false);
}

void MusicFeed::RemoveAllBut(const std::vector<DeviceFolder>& devices)
{
    const auto gone = [&](const std::string& folder)
    {
        return std::none_of(devices.begin(), devices.end(),
                            [&](const DeviceFolder& device) { return device.path == folder; });
    };
    for (const std::string& folder : m_folders)
        if (gone(folder)) m_service.DetachFolder(folder);
    m_folders.erase(std::remove_if(m_folders.begin(), m_folders.end(), gone), m_folders.end());
}
}  // namespace ipodsim
