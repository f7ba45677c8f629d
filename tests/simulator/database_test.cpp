#include "music/database.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>

#include "music/music_library.h"
#include "music/picture.h"
#include "tracks.h"

using ipodsim::BuiltinLibrary;
using ipodsim::Database;
using ipodsim::Library;

namespace
{
constexpr int kPlaylists = 0;
constexpr int kArtists = 1;
constexpr int kAlbums = 2;
constexpr int kGenres = 3;
constexpr int kSongs = 4;

std::vector<std::string> NamesOf(const Database& database)
{
    std::vector<std::string> names;
    for (const auto& entry : database.Current().entries) names.push_back(entry.name);
    return names;
}

int IndexOf(const Database& database, const std::string& name)
{
    const auto names = NamesOf(database);
    const auto found = std::find(names.begin(), names.end(), name);
    return found == names.end() ? -1 : static_cast<int>(found - names.begin());
}

ipodsim::TrackPtr TrackOf(const char* title, const char* artist, const char* album, int number)
{
    ipodsim::Track track;
    track.title = title;
    track.artist = artist;
    track.album = album;
    track.genre = "Genre";
    track.number = number;
    track.lengthMs = 1000;
    return std::make_shared<const ipodsim::Track>(track);
}
}  // namespace

TEST(Database, StartsAtARootOfFiveFolders)
{
    const Database database(BuiltinLibrary());

    EXPECT_TRUE(database.AtRoot());
    EXPECT_TRUE(database.Current().folder);
    EXPECT_EQ(NamesOf(database), (std::vector<std::string>{"Playlists", "Artists", "Albums", "Genres", "Songs"}));
}

TEST(Database, HasNoParentAboveTheRoot)
{
    Database database(BuiltinLibrary());

    EXPECT_FALSE(database.EnterParent());
    EXPECT_TRUE(database.AtRoot());
}

TEST(Database, LeadsFromGenresToArtistsToAlbumsToSongs)
{
    Database database(BuiltinLibrary());

    ASSERT_TRUE(database.EnterChild(kGenres));
    ASSERT_TRUE(database.EnterChild(IndexOf(database, "Jazz")));
    ASSERT_EQ(NamesOf(database), std::vector<std::string>{"Nadia Brandt"});
    ASSERT_TRUE(database.EnterChild(0));
    ASSERT_EQ(NamesOf(database), std::vector<std::string>{"Lanterns"});
    EXPECT_TRUE(database.Current().folder);
    ASSERT_TRUE(database.EnterChild(0));

    EXPECT_FALSE(database.Current().folder);
    EXPECT_EQ(NamesOf(database), (std::vector<std::string>{"Blue Lantern", "Slow Ferry", "Rain on Copper"}));
}

TEST(Database, RetracesItsPathToTheRoot)
{
    Database database(BuiltinLibrary());
    database.EnterChild(kArtists);
    const auto artists = NamesOf(database);
    database.EnterChild(3);

    EXPECT_TRUE(database.EnterParent());
    EXPECT_EQ(NamesOf(database), artists);
    EXPECT_TRUE(database.EnterParent());
    EXPECT_TRUE(database.AtRoot());
}

TEST(Database, ReturnsToTheRootFromAnyDepth)
{
    Database database(BuiltinLibrary());
    for (int depth = 0; depth < 3; ++depth) database.EnterChild(3 - depth);

    database.EnterRoot();

    EXPECT_TRUE(database.AtRoot());
}

TEST(Database, RejectsSongsAndInvalidIndices)
{
    Database database(BuiltinLibrary());

    EXPECT_FALSE(database.EnterChild(-1));
    EXPECT_FALSE(database.EnterChild(5));
    database.EnterChild(kSongs);
    EXPECT_FALSE(database.EnterChild(0));
    EXPECT_EQ(database.Current().entries.size(), 24U);
}

TEST(Database, SortsArtistsByReading)
{
    Database database(BuiltinLibrary());

    database.EnterChild(kArtists);

    EXPECT_EQ(NamesOf(database),
              (std::vector<std::string>{"Élodie Rouvière", "Harbour Quartet", "Nadia Brandt", "单晓岚",
                                        "The Paper Kites of Mill Road", "解思远", "曾雨桐", "查云舟", "周明轩"}));
}

TEST(Database, KeepsTheOrderOfAPlaylist)
{
    Library library{Tracks(3), {{"Backwards", {}}}};
    library.playlists.front().tracks = {library.tracks[2], library.tracks[0]};
    ipodsim::Finish(library);
    Database database(library);

    database.EnterChild(kPlaylists);
    ASSERT_EQ(NamesOf(database), (std::vector<std::string>{"All songs", "Backwards"}));
    database.EnterChild(1);

    EXPECT_EQ(NamesOf(database), (std::vector<std::string>{"Song 2", "Song 0"}));
}

TEST(Database, SortsAnAlbumOfSeveralArtistsByTrackNumber)
{
    Library library{{TrackOf("Second", "A", "Shared", 2), TrackOf("First", "B", "Shared", 1)}, {}};
    Database database(library);

    database.EnterChild(kAlbums);
    database.EnterChild(0);

    EXPECT_EQ(NamesOf(database), (std::vector<std::string>{"First", "Second"}));
}

TEST(Database, SelectsASongWithTheRestOfItsLevel)
{
    Database database(BuiltinLibrary());
    database.EnterChild(kAlbums);
    database.EnterChild(IndexOf(database, "Tide Tables"));

    const auto selection = database.Select(1);

    ASSERT_TRUE(selection);
    EXPECT_EQ(selection->start, 1U);
    ASSERT_EQ(selection->tracks.size(), 3U);
    EXPECT_EQ(selection->tracks[1]->title, "Slack Tide");
}

TEST(Database, SelectsEverythingBelowAFolder)
{
    Database database(BuiltinLibrary());
    database.EnterChild(kArtists);

    const auto selection = database.Select(IndexOf(database, "曾雨桐"));

    ASSERT_TRUE(selection);
    EXPECT_EQ(selection->start, 0U);
    EXPECT_EQ(selection->tracks.size(), 3U);
}

TEST(Database, SelectsNothingAtAnInvalidIndex)
{
    const Database database(BuiltinLibrary());

    EXPECT_FALSE(database.Select(-1));
    EXPECT_FALSE(database.Select(5));
}

TEST(Database, HasEmptyLevelsForAnEmptyLibrary)
{
    Library library;
    ipodsim::Finish(library);
    Database database(library);

    ASSERT_TRUE(database.EnterChild(kSongs));
    EXPECT_TRUE(database.Current().entries.empty());
    EXPECT_FALSE(database.Select(0));
}

TEST(BuiltinLibrary, HasADifferentCoverForEachAlbum)
{
    const Library library = BuiltinLibrary();

    std::map<std::string, ipodsim::Bytes> covers;
    for (const auto& track : library.tracks)
    {
        const ipodsim::Picture cover = ipodsim::PictureOf(*track);
        EXPECT_EQ(cover.width, 300U);
        EXPECT_EQ(cover.height, 300U);
        covers[track->album] = cover.bytes;
    }

    std::set<ipodsim::Bytes> different;
    for (const auto& [album, cover] : covers) different.insert(cover);
    EXPECT_EQ(covers.size(), 9U);
    EXPECT_EQ(different.size(), 9U);
}
