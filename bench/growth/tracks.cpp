// Growth of the simulator's database: readings, order, and every list of the top level.
#include <cstdio>
#include <cstdlib>
#include <map>

#include "growth.h"
#include "music/database.h"
#include "music/music_library.h"
#include "samples.h"

namespace
{
using namespace bench;

constexpr std::size_t kTracksOfAnAlbum = 12;
constexpr std::size_t kAlbumsOfAnArtist = 3;
constexpr std::size_t kGenres = 20;

ipodsim::Library LibraryOf(int size)
{
    const std::vector<std::string> names = SampleNames(static_cast<std::size_t>(size));
    ipodsim::Library library;
    for (std::size_t i = 0; i < names.size(); ++i)
    {
        ipodsim::Track track;
        track.title = names[i];
        track.album = "Album " + names[i / kTracksOfAnAlbum];
        track.artist = "Artist " + names[i / kTracksOfAnAlbum / kAlbumsOfAnArtist];
        track.genre = "Genre " + std::to_string(i / kTracksOfAnAlbum % kGenres);
        library.tracks.push_back(std::make_shared<const ipodsim::Track>(track));
    }
    return library;
}

void OpenEverything(ipodsim::Library library)
{
    ipodsim::Finish(library);
    ipodsim::Database database(library);
    const auto lists = static_cast<int>(database.Root().entries.size());
    for (int i = 0; i < lists; ++i)
    {
        database.EnterRoot();
        if (!database.EnterChild(i) || database.Current().entries.empty()) std::abort();
    }
}
}  // namespace

int main(int argc, char** argv)
{
    if (argc < 2 || std::atoi(argv[1]) < 1)
    {
        std::fprintf(stderr, "usage: bench_growth_tracks ROUNDS [CONTEST...]\n");
        return 2;
    }
    RunOnly({argv + 2, argv + argc});
    const std::vector<int> sizes{1000, 3000, 10000, 30000, 100000, 200000};
    std::map<int, ipodsim::Library> libraries;
    for (const int size : sizes) libraries[size] = LibraryOf(size);
    RunGrowth(
        "tracks of the simulator", std::atoi(argv[1]), sizes, [](int) {},
        [&libraries](int size) { OpenEverything(libraries.at(size)); });
}
