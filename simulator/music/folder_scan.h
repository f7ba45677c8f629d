/// @file
/// The contents of a folder: files with change stamps, images, playlists.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace ipodsim
{
/// Receives one line about something that was skipped.
using Warn = std::function<void(const std::string&)>;

/// Forwards the first ten warnings and counts the rest. Not thread-safe.
class FewWarnings
{
public:
    explicit FewWarnings(Warn warn) : m_warn(std::move(warn)) {}

    void Add(const std::string& line)
    {
        if (m_count++ < kMost) m_warn(line);
    }

    /// Forwards one line with the number of suppressed warnings.
    void Summarize() const
    {
        if (m_count > kMost) m_warn("and " + std::to_string(m_count - kMost) + " more warnings like these");
    }

private:
    static constexpr std::size_t kMost = 10;

    Warn m_warn;
    std::size_t m_count = 0;
};

/// Identifies a state of a file.
struct FileMark
{
    std::int64_t modified = 0;  ///< nanoseconds since 1970-01-01 UTC
    std::uint64_t size = 0;     ///< bytes

    bool operator==(const FileMark& other) const { return modified == other.modified && size == other.size; }
};

struct ScannedFile
{
    std::string path;
    FileMark mark;
    std::size_t folder = 0;  ///< index into FolderScan::folders
};

struct ScannedFolder
{
    std::string path;
    std::string name;
    std::string picture;  ///< image file with the folder's cover; empty if none
};

struct FolderScan
{
    std::vector<ScannedFolder> folders;
    std::vector<ScannedFile> files;      ///< candidate audio files
    std::vector<ScannedFile> playlists;  ///< .m3u and .m3u8
};

enum class Depth
{
    TopOnly,
    Everything,
};

/// Walks @p folder in the order of names. A folder is read once however many links lead to it, and never through a link
/// to @p root, the music folder. Names that begin with a dot are ignored; unreadable files and oversized playlists are
/// skipped with a warning.
///
/// @param enter  called with each folder before it is read; returning false aborts the scan and makes its result
///               meaningless. May be empty.
FolderScan ScanFolder(const std::string& folder, Depth depth, const std::string& root, const Warn& warn,
                      const std::function<bool(const std::string&)>& enter = {});

/// A hash: scans of the same state have the same fingerprint.
std::uint64_t Fingerprint(const FolderScan& scan);

/// Whether the name has the extension of an audio file.
bool LooksLikeAudio(const std::string& name);

/// A device and the folder with its music.
struct DeviceFolder
{
    std::string path;
    std::string name;
    Depth depth = Depth::Everything;
};

/// Each subfolder is a device, in the order of names, except names that begin with a dot and links back to @p root.
/// Files directly in @p root form a device named @p ownName, which comes first and exists even if there is no other.
/// With @p oneDevice, everything below @p root belongs to that device. Empty if @p root no longer exists.
std::vector<DeviceFolder> DeviceFoldersOf(const std::string& root, const std::string& ownName, bool oneDevice);
}  // namespace ipodsim
