#include "music/music_library.h"

#include <future>

#include "music/cover.h"

namespace ipodsim
{
namespace
{
struct Song
{
    const char* title;
    int seconds;
};

struct Album
{
    const char* artist;
    const char* title;
    const char* genre;
    std::vector<Song> songs;
};

// Performers and titles are fictitious. The surnames have a pinyin that differs from the common reading of the
// character.
const std::vector<Album>& Albums()
{
    static const std::vector<Album> albums = {
        {"曾雨桐", "江南小雨", "Folk", {{"江南小雨", 218}, {"山间清晨", 195}, {"乌篷船", 241}}},
        {"单晓岚", "长夜里的音乐", "Pop", {{"长夜里的音乐", 204}, {"单身的夜", 187}, {"银行旁的咖啡店", 226}}},
        {"解思远", "月下独行", "Folk", {{"月下独行", 263}, {"竹林深处", 232}}},
        {"周明轩", "城市灯火", "Pop", {{"城市灯火", 199}, {"最后一班地铁", 213}, {"晴天以后", 206}}},
        {"查云舟", "古琴小品", "Classical", {{"流水", 324}, {"梅花", 287}}},
        {"Nadia Brandt", "Lanterns", "Jazz", {{"Blue Lantern", 254}, {"Slow Ferry", 301}, {"Rain on Copper", 238}}},
        {"Harbour Quartet",
         "Tide Tables",
         "Classical",
         {{"Low Water", 276}, {"Slack Tide", 193}, {"Spring Tide", 318}}},
        {"The Paper Kites of Mill Road",
         "Second Wind",
         "Rock",
         {{"Second Wind", 229}, {"Gravel", 184}, {"Half Past June", 247}}},
        {"Élodie Rouvière", "Été à vélo", "Electronic", {{"Été à vélo", 211}, {"Ligne 6", 233}}},
    };
    return albums;
}

Track MakeTrack(const Album& album, std::size_t index, const std::shared_future<Picture>& cover)
{
    Track track;
    track.title = album.songs[index].title;
    track.artist = album.artist;
    track.album = album.title;
    track.genre = album.genre;
    track.number = static_cast<int>(index) + 1;
    track.lengthMs = album.songs[index].seconds * 1000;
    track.hasPicture = true;
    track.cover = cover;
    return track;
}

Playlist PlaylistOf(const char* name, const TrackList& tracks, std::size_t first, std::size_t step)
{
    Playlist playlist{name, {}};
    for (std::size_t i = first; i < tracks.size(); i += step) playlist.tracks.push_back(tracks[i]);
    return playlist;
}
}  // namespace

Library BuiltinLibrary()
{
    Library library;
    unsigned number = 0;
    for (const Album& album : Albums())
    {
        const auto cover = std::async(std::launch::deferred, DrawCover, number++).share();
        for (std::size_t i = 0; i < album.songs.size(); ++i)
            library.tracks.push_back(std::make_shared<const Track>(MakeTrack(album, i, cover)));
    }
    library.playlists = {PlaylistOf("Evening drive", library.tracks, 0, 3),
                         PlaylistOf("通勤路上", library.tracks, 1, 4)};
    Finish(library);
    return library;
}
}  // namespace ipodsim
