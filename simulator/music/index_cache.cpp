#include "music/index_cache.h"

#include <glib.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <system_error>
#include <utility>

#include "music/bytes_io.h"

namespace ipodsim
{
namespace
{
// The number changes with everything that changes what is kept of a file: another layout, another reading.
constexpr char kMagic[] = "ipod-simulator index 4\n";

void Put(ByteWriter& out, const Track& track)
{
    for (const std::string* text : {&track.title, &track.artist, &track.album, &track.genre, &track.readings.title,
                                    &track.readings.artist, &track.readings.album, &track.readings.genre})
        out.Put(*text);
    out.Put(static_cast<std::int32_t>(track.number));
    out.Put(static_cast<std::int32_t>(track.lengthMs));
    out.Put(static_cast<std::uint8_t>(track.hasPicture ? 1 : 0));
    out.Put(static_cast<std::uint8_t>(track.pictureTooLarge ? 1 : 0));
}

TrackPtr TakeTrack(ByteReader& in, const std::string& file)
{
    auto taken = std::make_shared<Track>();
    Track& track = *taken;
    track.file = file;
    for (std::string* text : {&track.title, &track.artist, &track.album, &track.genre, &track.readings.title,
                              &track.readings.artist, &track.readings.album, &track.readings.genre})
        *text = in.TakeText();
    track.number = in.Take<std::int32_t>();
    track.lengthMs = in.Take<std::int32_t>();
    track.hasPicture = in.Take<std::uint8_t>() != 0;
    track.pictureTooLarge = in.Take<std::uint8_t>() != 0;
    return taken;
}

// Its fingerprint at the end of a text.
std::string Sealed(const std::string& text)
{
    ByteWriter seal;
    seal.Put(Fingerprint(text));
    return text + seal.Bytes();
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
        m_warn("the index " + m_file + " is damaged or of another version: every file is read again");
    }
}

void IndexCache::Parse(const std::string& bytes)
{
    const std::string_view magic(kMagic);
    if (bytes.size() < magic.size() + 8 || bytes.compare(0, magic.size(), magic) != 0)
        throw std::out_of_range("no index");
    const std::string_view sealed(bytes.data(), bytes.size() - 8);
    if (Fingerprint(sealed) != ByteReader(std::string_view(bytes).substr(sealed.size())).Take<std::uint64_t>())
        throw std::out_of_range("damaged");
    ByteReader in(sealed.substr(magic.size()));
    const auto count = in.Take<std::uint64_t>();
    m_known.reserve(static_cast<std::size_t>(std::min<std::uint64_t>(count, bytes.size())));
    for (std::uint64_t i = 0; i < count; ++i)
    {
        std::string path = in.TakeText();
        Known known;
        known.mark = {in.Take<std::int64_t>(), in.Take<std::uint64_t>()};
        if (in.Take<std::uint8_t>() != 0) known.track = TakeTrack(in, path);
        m_known.emplace(std::move(path), std::move(known));
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

std::string IndexCache::Serialise(Unused unused) const
{
    const auto stays = [unused](const Known& known) { return known.used || unused == Unused::Keep; };
    std::uint64_t count = 0;
    for (const auto& [path, known] : m_known) count += stays(known) ? 1 : 0;
    ByteWriter out;
    out.Put(count);
    for (const auto& [path, known] : m_known)
    {
        if (!stays(known)) continue;
        out.Put(path);
        out.Put(known.mark.modified);
        out.Put(known.mark.size);
        out.Put(static_cast<std::uint8_t>(known.track ? 1 : 0));
        if (known.track) ipodsim::Put(out, *known.track);
    }
    return Sealed(kMagic + out.Bytes());
}

void IndexCache::Save(Unused unused)
{
    if (m_file.empty() || !m_changed) return;
    std::error_code ignored;  // what is wrong shows when the file is written
    std::filesystem::create_directories(std::filesystem::path(m_file).parent_path(), ignored);
    const std::string bytes = Serialise(unused);
    GError* error = nullptr;
    // Writes a file beside it and renames that.
    if (g_file_set_contents(m_file.c_str(), bytes.data(), static_cast<gssize>(bytes.size()), &error) == FALSE)
    {
        m_warn("the index is not kept: " + std::string(error->message));
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
