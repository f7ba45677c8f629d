#include "music/index_cache.h"

#include <glib.h>

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <sstream>
#include <stdexcept>
#include <string_view>
#include <system_error>
#include <utility>

#include "music/text.h"

namespace ipodsim
{
namespace
{
using Json = nlohmann::json;

// Increment the number when the layout or the derivation of the entries changes.
constexpr char kMagic[] = "ipod-simulator index 5\n";
constexpr std::size_t kSealSize = sizeof(std::uint64_t);

// The fingerprint, appended to the file.
std::string SealOf(std::string_view text)
{
    const std::uint64_t fingerprint = Fingerprint(text);
    std::string seal(kSealSize, '\0');
    std::memcpy(seal.data(), &fingerprint, kSealSize);
    return seal;
}

Json ToJson(const Track& track)
{
    const Readings& readings = track.readings;
    return {track.title,    track.artist,   track.album,  track.genre,    readings.title,   readings.artist,
            readings.album, readings.genre, track.number, track.lengthMs, track.hasPicture, track.pictureTooLarge};
}

TrackPtr ToTrack(const Json& values, const std::string& file)
{
    auto track = std::make_shared<Track>();
    std::size_t next = 0;
    track->file = file;
    for (std::string* text : {&track->title, &track->artist, &track->album, &track->genre, &track->readings.title,
                              &track->readings.artist, &track->readings.album, &track->readings.genre})
        *text = values.at(next++).get_ref<const std::string&>();
    for (int* number : {&track->number, &track->lengthMs}) *number = values.at(next++);
    for (bool* is : {&track->hasPicture, &track->pictureTooLarge}) *is = values.at(next++);
    return track;
}
}  // namespace

IndexCache::IndexCache(std::string file, Warn warn) : m_file(std::move(file)), m_warn(std::move(warn))
{
    if (!m_file.empty()) Load();
}

void IndexCache::Load()
{
    std::ifstream in(m_file, std::ios::binary);
    if (!in) return;
    std::ostringstream all;
    all << in.rdbuf();
    const std::string bytes = all.str();
    try
    {
        Parse(bytes);
    }
    catch (const std::exception&)
    {
        m_known.clear();
        m_warn("the index " + m_file + " is damaged or from another version; reading every file again");
    }
}

void IndexCache::Parse(const std::string& bytes)
{
    const std::string_view magic(kMagic);
    if (bytes.size() < magic.size() + kSealSize || bytes.compare(0, magic.size(), magic) != 0)
        throw std::out_of_range("not an index");
    const std::string_view sealed(bytes.data(), bytes.size() - kSealSize);
    if (bytes.compare(sealed.size(), kSealSize, SealOf(sealed)) != 0) throw std::out_of_range("damaged");
    // Parses value by value: a document of all entries would use as much memory as the library.
    std::istringstream in(std::string(sealed.substr(magic.size())));
    while (in.peek() != std::istringstream::traits_type::eof())
    {
        const Json file = Json::from_cbor(in, false);
        const std::string path = file.at(0);
        const TrackPtr track = file.at(3).is_null() ? nullptr : ToTrack(file.at(3), path);
        m_known.emplace(path, Known{{file.at(1), file.at(2)}, track});
    }
}

const TrackPtr* IndexCache::Find(const ScannedFile& file)
{
    const auto found = m_known.find(file.path);
    if (found == m_known.end() || !(found->second.mark == file.mark)) return nullptr;
    found->second.used = true;
    return &found->second.track;
}

const TrackPtr* IndexCache::Put(const ScannedFile& file, TrackPtr track)
{
    Known& known = m_known[file.path];
    known = {file.mark, std::move(track), true};
    m_changed = true;
    return &known.track;
}

std::string IndexCache::Serialize(Unused unused) const
{
    std::string bytes = kMagic;
    for (const auto& [path, known] : m_known)
    {
        if (!known.used && unused == Unused::Forget) continue;
        const Json track = known.track ? ToJson(*known.track) : Json();
        Json::to_cbor({path, known.mark.modified, known.mark.size, track}, bytes);
    }
    return bytes + SealOf(bytes);
}

void IndexCache::Save(Unused unused)
{
    if (m_file.empty() || !m_changed) return;
    std::error_code ignored;  // errors surface when the file is written
    std::filesystem::create_directories(std::filesystem::path(m_file).parent_path(), ignored);
    const std::string bytes = Serialize(unused);
    GError* error = nullptr;
    // Writes a temporary file and renames it.
    if (g_file_set_contents(m_file.c_str(), bytes.data(), static_cast<gssize>(bytes.size()), &error) == FALSE)
    {
        m_warn("cannot store the index: " + std::string(error->message));
        g_error_free(error);
    }
    m_changed = false;
}

std::string CacheFileFor(const std::string& cacheFolder, const std::string& musicFolder)
{
    char name[24];
    std::snprintf(name, sizeof(name), "%016llx.index", static_cast<unsigned long long>(Fingerprint(musicFolder)));
    return cacheFolder + "/" + name;
}
}  // namespace ipodsim
