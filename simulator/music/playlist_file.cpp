#include "music/playlist_file.h"

#include <glib.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <memory>

#include "music/text.h"

namespace ipodsim
{
namespace
{
namespace fs = std::filesystem;
using GText = std::unique_ptr<char, decltype(&g_free)>;

bool Begins(const std::string& text, const char* with)
{
    return text.rfind(with, 0) == 0;
}

std::string InUtf8(const std::string& line)
{
    if (g_utf8_validate(line.data(), static_cast<gssize>(line.size()), nullptr) != FALSE) return line;
    const GText text(
        g_convert(line.data(), static_cast<gssize>(line.size()), "UTF-8", "ISO-8859-1", nullptr, nullptr, nullptr),
        &g_free);
    return text == nullptr ? line : std::string(text.get());
}

std::string FromUri(const std::string& line)
{
    const GText path(g_filename_from_uri(line.c_str(), nullptr, nullptr), &g_free);
    return path == nullptr ? std::string() : std::string(path.get());
}

std::string Resolve(const fs::path& folder, const std::string& entry)
{
    return (folder / entry).lexically_normal().string();
}

// The raw bytes are tried first: a file name need not be UTF-8.
std::string FileOf(const fs::path& folder, const std::string& line)
{
    if (Begins(line, "file:")) return Resolve(folder, FromUri(line));
    std::string slashes = InUtf8(line);
    std::replace(slashes.begin(), slashes.end(), '\\', '/');
    for (const std::string& entry : {line, InUtf8(line)})
        if (std::error_code none; fs::exists(folder / entry, none)) return Resolve(folder, entry);
    return Resolve(folder, slashes);
}

void ReadLine(PlaylistFile& playlist, const fs::path& folder, const std::string& line)
{
    constexpr char kName[] = "#PLAYLIST:";
    if (Begins(line, kName)) playlist.name = CleanName(InUtf8(line.substr(sizeof(kName) - 1)), playlist.name);
    if (line.empty() || line.front() == '#') return;
    const bool address = line.find("://") != std::string::npos && !Begins(line, "file:");
    if (!address) playlist.files.push_back(FileOf(folder, line));
}
}  // namespace

PlaylistFile ReadPlaylist(const std::string& file)
{
    constexpr char kByteOrderMark[] = "\xEF\xBB\xBF";
    const fs::path path(file);
    PlaylistFile playlist{CleanName(path.stem().string(), "Playlist"), {}};
    std::ifstream in(file, std::ios::binary);
    for (std::string line; std::getline(in, line);)
    {
        if (Begins(line, kByteOrderMark)) line.erase(0, 3);
        while (!line.empty() && (line.back() == '\r' || line.back() == ' ')) line.pop_back();
        ReadLine(playlist, path.parent_path(), line);
    }
    return playlist;
}
}  // namespace ipodsim
