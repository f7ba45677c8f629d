// An application that lists what other processes list at the same time; sharing_test.py starts several.
//   lister pages|levels|core LISTINGS NUMBER   prints "listings N wrong N busy N failed N longest MS"
//   lister hold|page                           prints "held" or the error, then waits for the end of its input
#include <IQBXIpodPlayer.h>
#include <QBXLog.h>
#include <glib.h>
#include <ipodkit/pager.h>
#include <ipodkit/sharing.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <optional>

namespace test
{
namespace
{
using namespace ipodkit;
using Names = std::vector<std::string>;
using Clock = std::chrono::steady_clock;

// The collection that sharing_test.py writes.
constexpr int kAlbums = 8;
constexpr int kSongs = 40;  // in each album

std::string Song(int number)
{
    char name[16];
    std::snprintf(name, sizeof(name), "song %03d", number);
    return name;
}

Names Songs(int first, int count)
{
    Names names;
    for (int i = first; i < first + count; ++i) names.push_back(Song(i));
    return names;
}

template <class T>
Result<T> Completed(Request<T> request)
{
    std::optional<Result<T>> result;
    std::move(request).Start([&result](Result<T> done) { result = std::move(done); });
    while (!result) g_main_context_iteration(nullptr, TRUE);
    return *result;
}

struct Tally
{
    int listings = 0;
    int wrong = 0;
    int busy = 0;
    int failed = 0;
    std::chrono::milliseconds longest{};

    void Add(const Result<Names>& names, const Names& expected, Clock::time_point since)
    {
        ++listings;
        wrong += names && *names != expected ? 1 : 0;
        busy += !names && names.error().kind == ErrorKind::Busy ? 1 : 0;
        failed += !names && names.error().kind != ErrorKind::Busy ? 1 : 0;
        if (!names && names.error().kind != ErrorKind::Busy) std::cerr << names.error().Text() << '\n';
        longest = std::max(longest, std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - since));
    }

    void Print() const
    {
        std::printf("listings %d wrong %d busy %d failed %d longest %d\n", listings, wrong, busy, failed,
                    static_cast<int>(longest.count()));
    }
};

PagerOptions HalfAlbums()
{
    PagerOptions options;
    options.pageSize = kSongs / 2;
    options.prefetch = 0;
    return options;
}

// A range of the current level, which has all songs.
void ListPages(Session& session, Tally& tally, int number, int listing)
{
    Pager pager(session, ListKind::Database, HalfAlbums());
    const int first = (number + listing) % kAlbums * kSongs;
    const auto since = Clock::now();
    tally.Add(Completed(pager.Range(first, first + kSongs - 1)), Songs(first, kSongs), since);
}

Result<int> Find(Pager& pager, const std::string& name)
{
    const Result<Names> names = Completed(pager.Range(0, Pager::End));
    if (!names) return tl::unexpected<Error>(names.error());
    const auto found = std::find(names->begin(), names->end(), name);
    if (found != names->end()) return static_cast<int>(found - names->begin());
    return tl::unexpected<Error>(Error{ErrorKind::BadReply, "no " + name + " in the level"});
}

Result<void> Enter(Pager& pager, const std::string& name)
{
    return Find(pager, name).and_then([&](int index) { return Completed(pager.EnterChild(index)); });
}

Result<Names> AlbumSongs(Session& session, int album)
{
    const Result<BrowseLease> lease = Completed(BrowseLease::Acquire(session));
    if (!lease) return tl::unexpected<Error>(lease.error());
    Pager pager(session, ListKind::Database, HalfAlbums());
    return Completed(pager.EnterRoot())
        .and_then([&] { return Enter(pager, "Albums"); })
        .and_then([&] { return Enter(pager, "album " + std::to_string(album)); })
        .and_then([&] { return Completed(pager.Range(0, Pager::End)); });
}

// The songs of an album, which it enters from the root.
void ListLevels(Session& session, Tally& tally, int number, int listing)
{
    const int album = (number + listing) % kAlbums;
    const auto since = Clock::now();
    tally.Add(AlbumSongs(session, album), Songs(album * kSongs, kSongs), since);
}

void ListWithCore(IQBXIpodPlayer& player, Tally& tally, int number, int listing)
{
    const int first = (number + listing) % kAlbums * kSongs;
    int folder = 0;
    int root = 0;
    Names names;
    const auto since = Clock::now();
    player.GetCurDBListItems(first, first + kSongs - 1, names, folder, root);
    tally.Add(names, Songs(first, kSongs), since);
}

std::unique_ptr<Session> Ready()
{
    auto session = std::move(Session::Open().value());
    while (session->Connection().phase != Phase::Ready) g_main_context_iteration(nullptr, TRUE);
    return session;
}

int List(const std::string& what, int listings, int number)
{
    Tally tally;
    const auto session = Ready();
    IQBXIpodPlayer* const player = what == "core" ? QBX_GetIpodPlayer() : nullptr;
    if (player != nullptr) player->InitInstance();
    for (int i = 0; i < listings; ++i)
        if (player != nullptr)
            ListWithCore(*player, tally, number, i);
        else
            what == "pages" ? ListPages(*session, tally, number, i) : ListLevels(*session, tally, number, i);
    tally.Print();
    return EXIT_SUCCESS;
}

template <class T>
void Report(const Result<T>& result)
{
    std::cout << (result ? "held" : result.error().Text()) << std::endl;
    std::cin.get();
}

int Wait(const std::string& what)
{
    const auto session = Ready();
    Pager pager(*session, ListKind::Database, HalfAlbums());
    if (what == "hold")
        Report(Completed(BrowseLease::Acquire(*session)));
    else
        Report(Completed(pager.At(0)));
    return EXIT_SUCCESS;
}

int Run(int count, char** words)
{
    QBX_LogInit("ERROR:/dev/null");
    const std::string what = count > 1 ? words[1] : "";
    return count == 4 ? List(what, std::atoi(words[2]), std::atoi(words[3])) : Wait(what);
}
}  // namespace
}  // namespace test

int main(int count, char** words)
{
    return test::Run(count, words);
}
