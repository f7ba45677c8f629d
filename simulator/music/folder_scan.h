/// @file
/// What lies in a folder: files with the marks by which a change is recognised, pictures, playlists.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace ipodsim
{
/// Receives one line about something that was left out.
using Warn = std::function<void(const std::string&)>;

/// What tells one state of a file from the next.
struct FileMark
{
    std::int64_t modified = 0;  ///< nanoseconds since 1970
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
    std::string picture;  ///< file with the cover of what lies in the folder; empty when none
};

struct FolderScan
{
    std::vector<ScannedFolder> folders;
    std::vector<ScannedFile> files;      ///< everything that may be music
    std::vector<ScannedFile> playlists;  ///< .m3u and .m3u8
};

enum class Depth
{
    TopOnly,
    Everything,
};

/// Walks @p folder in the order of names; a folder is read once however many links lead to it, and never through a link
/// to @p root, which is the music folder. Names that begin with a dot are passed over; what cannot be read, and
/// a playlist that is too large for one, is skipped with a warning.
///
/// @param enter  called with each folder before it is read; false ends the scan, whose result is of no use then. May be
///               empty.
FolderScan ScanFolder(const std::string& folder, Depth depth, const std::string& root, const Warn& warn,
                      const std::function<bool(const std::string&)>& enter = {});

/// A number that two scans of the same state have in common.
std::uint64_t Fingerprint(const FolderScan& scan);

/// Whether the name ends like that of an audio file.
bool LooksLikeAudio(const std::string& name);

/// A device and where its music lies.
struct DeviceFolder
{
    std::string path;
    std::string name;
    Depth depth = Depth::Everything;
};

/// Each sub-folder is a device of its own, in the order of names; those whose names begin with a dot and links back to
/// @p root are not. The files that lie in @p root itself make a device named @p ownName, which comes first; it is also
/// there when nothing else is. With @p oneDevice everything below @p root belongs to that one.
/// None when @p root has gone.
std::vector<DeviceFolder> DeviceFoldersOf(const std::string& root, const std::string& ownName, bool oneDevice);
}  // namespace ipodsim
