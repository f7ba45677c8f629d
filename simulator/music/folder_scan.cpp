#include "music/folder_scan.h"

#include <dirent.h>
#include <linux/magic.h>
#include <sys/stat.h>
#include <sys/vfs.h>
#include <taglib/fileref.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <filesystem>
#include <iterator>
#include <memory>
#include <set>
#include <system_error>
#include <utility>

#include "music/picture.h"
#include "music/text.h"

namespace ipodsim
{
namespace
{
std::string Extension(const std::string& name)
{
    const std::size_t dot = name.rfind('.');
    return dot == std::string::npos ? std::string() : ToLowerAscii(name.substr(dot + 1));
}

bool IsPlaylist(const std::string& name)
{
    const std::string extension = Extension(name);
    return extension == "m3u" || extension == "m3u8";
}

bool IsPictureName(const std::string& name)
{
    constexpr std::array<const char*, 6> kExtensions = {"jpg", "jpeg", "png", "gif", "bmp", "webp"};
    return std::find(kExtensions.begin(), kExtensions.end(), Extension(name)) != kExtensions.end();
}

// How well an image name fits a folder cover; other names do not qualify.
int CoverRank(const std::string& name)
{
    constexpr std::array<const char*, 5> kStems = {"cover", "folder", "front", "album", "albumart"};
    const std::string stem = ToLowerAscii(name.substr(0, name.rfind('.')));
    return static_cast<int>(std::find(kStems.begin(), kStems.end(), stem) - kStems.begin());
}

constexpr int kNoCover = 5;
constexpr off_t kLargestPlaylist = off_t{16} << 20;  // bytes

FileMark MarkOf(const struct stat& status)
{
    return {std::int64_t{status.st_mtim.tv_sec} * 1000000000 + status.st_mtim.tv_nsec,
            static_cast<std::uint64_t>(status.st_size)};
}

// These contain no music, may be endless, and their entries vanish while they are read.
bool IsVirtualFileSystem(const std::string& folder)
{
    constexpr std::uint32_t kTypes[] = {PROC_SUPER_MAGIC,   SYSFS_MAGIC,         DEBUGFS_MAGIC,
                                        TRACEFS_MAGIC,      SECURITYFS_MAGIC,    BPF_FS_MAGIC,
                                        CGROUP_SUPER_MAGIC, CGROUP2_SUPER_MAGIC, DEVPTS_SUPER_MAGIC};
    struct statfs system
    {
    };
    return statfs(folder.c_str(), &system) == 0 &&
           std::find(std::begin(kTypes), std::end(kTypes), static_cast<std::uint32_t>(system.f_type)) !=
               std::end(kTypes);
}

using Enter = std::function<bool(const std::string&)>;

class Scanner
{
public:
    Scanner(Depth depth, const Warn& warn, const Enter& enter) : m_depth(depth), m_warn(warn), m_enter(enter) {}

    void PassOver(const std::string& folder)
    {
        struct stat status
        {
        };
        if (stat(folder.c_str(), &status) == 0) m_seen.emplace(status.st_dev, status.st_ino);
    }

    void Read(const std::string& path, const struct stat& status)
    {
        if (!m_seen.emplace(status.st_dev, status.st_ino).second) return;
        if (IsVirtualFileSystem(path)) return Skip(path, "a virtual file system");
        m_ended = m_ended || (m_enter && !m_enter(path));
        if (m_ended) return;
        const std::size_t folder = m_scan.folders.size();
        m_scan.folders.push_back({path, CleanName(path.substr(path.rfind('/') + 1), "Music"), {}});
        int bestCover = kNoCover;
        for (const std::string& name : Names(path))
            if (!m_ended) ReadEntry(folder, name, bestCover);
    }

    FolderScan Take() { return std::move(m_scan); }

private:
    std::vector<std::string> Names(const std::string& path) const
    {
        std::vector<std::string> names;
        const std::unique_ptr<DIR, int (*)(DIR*)> folder(opendir(path.c_str()), &closedir);
        if (folder == nullptr) Skip(path, errno);
        while (const dirent* entry = folder == nullptr ? nullptr : readdir(folder.get()))
            if (entry->d_name[0] != '.') names.emplace_back(entry->d_name);
        std::sort(names.begin(), names.end());
        return names;
    }

    void ReadEntry(std::size_t folder, const std::string& name, int& bestCover)
    {
        const std::string path = m_scan.folders[folder].path + "/" + name;
        struct stat status
        {
        };
        if (stat(path.c_str(), &status) != 0) return Skip(path, errno);
        if (S_ISDIR(status.st_mode))
        {
            if (m_depth == Depth::Everything) Read(path, status);
            return;
        }
        if (!S_ISREG(status.st_mode)) return Skip(path, "not a regular file");
        if (IsPictureName(name)) return ReadPicture({path, MarkOf(status), folder}, name, bestCover);
        if (IsPlaylist(name) && status.st_size > kLargestPlaylist) return Skip(path, "larger than 16 MiB");
        auto& files = IsPlaylist(name) ? m_scan.playlists : m_scan.files;
        files.push_back({path, MarkOf(status), folder});
    }

    void ReadPicture(const ScannedFile& file, const std::string& name, int& bestCover)
    {
        const int rank = CoverRank(name);
        if (rank >= bestCover) return;
        if (!IsPictureFile(file.path)) return Skip(file.path, "not a valid image");
        if (file.mark.size > kLargestPicture) return Skip(file.path, TooLarge());
        bestCover = rank;
        m_scan.folders[file.folder].picture = file.path;
    }

    void Skip(const std::string& path, int error) const { Skip(path, std::generic_category().message(error)); }
    void Skip(const std::string& path, const std::string& why) const { m_warn("skipped " + path + ": " + why); }

    Depth m_depth;
    const Warn& m_warn;
    const Enter& m_enter;
    bool m_ended = false;
    FolderScan m_scan;
    std::set<std::pair<dev_t, ino_t>> m_seen;  // breaks symlink loops
};

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

FolderScan ScanFolder(const std::string& folder, Depth depth, const std::string& root, const Warn& warn,
                      const std::function<bool(const std::string&)>& enter)
{
    Scanner scanner(depth, warn, enter);
    if (folder != root) scanner.PassOver(root);
    struct stat status
    {
    };
    if (stat(folder.c_str(), &status) == 0) scanner.Read(folder, status);
    return scanner.Take();
}

std::uint64_t Fingerprint(const FolderScan& scan)
{
    // Paths cannot contain NUL.
    std::string all;
    const auto add = [&all](const std::string& text) { all.append(text).append(1, '\0'); };
    for (const auto* files : {&scan.files, &scan.playlists})
        for (const ScannedFile& file : *files)
        {
            add(file.path);
            add(std::to_string(file.mark.modified));
            add(std::to_string(file.mark.size));
        }
    for (const ScannedFolder& folder : scan.folders) add(folder.picture);
    return Fingerprint(all);
}

bool LooksLikeAudio(const std::string& name)
{
    static const TagLib::StringList extensions = TagLib::FileRef::defaultFileExtensions();
    return extensions.contains(TagLib::String(Extension(name), TagLib::String::UTF8));
}

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
