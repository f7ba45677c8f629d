#include <ipodkit/picture_files.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <regex>
#include <vector>

#include "loop/glib_ptr.h"
#include "pictures/image_type.h"

namespace ipodkit
{
namespace
{
namespace fs = std::filesystem;

// Size and hash together identify an image.
std::string NameOf(const Picture& picture)
{
    gchar* const name = g_strdup_printf("%zu-%016" G_GINT64_MODIFIER "x%s", picture.bytes.size(), picture.hash,
                                        images::Extension(ToImageType(picture.type)));
    std::string owned(name);
    g_free(name);
    return owned;
}

tl::unexpected<Error> NoStorage(const std::string& reason)
{
    return tl::unexpected(Error{ErrorKind::NoStorage, reason});
}

Result<std::string> AddressOf(const std::string& path)
{
    GError* failure = nullptr;
    gchar* const uri = g_filename_to_uri(path.c_str(), nullptr, &failure);
    const ErrorPtr error(failure);
    if (error != nullptr) return NoStorage(error->message);
    std::string owned(uri);
    g_free(uri);
    return owned;
}

// Other files in the directory stay.
bool IsOurs(const std::string& name)
{
    static const std::regex ours("[0-9]+-[0-9a-f]{16}\\.(bin|jpg|png|gif|bmp|webp|tiff)");
    return std::regex_match(name, ours);
}

// A file may have been truncated, or damaged without a change of size.
bool HoldsBytes(const std::string& path, const std::vector<unsigned char>& bytes)
{
    std::error_code missing;
    if (fs::file_size(path, missing) != bytes.size() || missing) return false;
    std::ifstream file(path, std::ios::binary);
    std::vector<char> present(bytes.size());
    file.read(present.data(), static_cast<std::streamsize>(present.size()));
    return file && std::memcmp(present.data(), bytes.data(), bytes.size()) == 0;
}

std::string AbsoluteOf(const std::string& directory)
{
    if (directory.empty()) return fs::path(g_get_user_runtime_dir()) / "ipodkit";
    std::error_code unknown;
    const fs::path absolute = fs::absolute(directory, unknown);
    return unknown ? directory : absolute.string();
}
}  // namespace

PictureFiles::PictureFiles(std::string directory, std::size_t keep)
    : m_directory(AbsoluteOf(directory)), m_keep(std::max<std::size_t>(keep, 1))
{
}

// GLib writes a temporary file in the same directory and renames it.
Result<std::string> PictureFiles::Uri(const Picture& picture) const
{
    const std::string path = fs::path(m_directory) / NameOf(picture);
    Result<std::string> address = AddressOf(path);
    if (!address) return address;
    if (g_mkdir_with_parents(m_directory.c_str(), 0700) != 0)
        return NoStorage(m_directory + ": " + std::strerror(errno));
    GError* failure = nullptr;
    if (!HoldsBytes(path, picture.bytes))
        g_file_set_contents(path.c_str(), reinterpret_cast<const gchar*>(picture.bytes.data()),
                            static_cast<gssize>(picture.bytes.size()), &failure);
    const ErrorPtr error(failure);
    if (error != nullptr) return NoStorage(error->message);
    KeepInUse(path);
    return address;
}

// A file's time is that of its last use: later than those of all others, even if the clock was set back. Files that
// cannot be read now are removed another time.
void PictureFiles::KeepInUse(const std::string& path) const
{
    using Time = fs::file_time_type;
    std::error_code ignored;
    std::vector<std::pair<Time, fs::path>> others;
    for (fs::directory_iterator entry(m_directory, ignored); entry != fs::directory_iterator();
         entry.increment(ignored))
        if (entry->path() != path && IsOurs(entry->path().filename()))
            others.emplace_back(entry->last_write_time(ignored), entry->path());
    std::sort(others.begin(), others.end());
    const Time now = Time::clock::now();
    const Time latest = others.empty() ? now : others.back().first + Time::duration(1);
    fs::last_write_time(path, std::max(now, latest), ignored);
    for (std::size_t i = 0; i + m_keep - 1 < others.size(); ++i) fs::remove(others[i].second, ignored);
}
}  // namespace ipodkit
