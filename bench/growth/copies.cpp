// Growth of what the library copies and of its listeners, in one process. The segments are larger than those the
// library creates, to allow for larger sizes.
#include <QBXIpodShareMemory.h>

#include <cstdio>
#include <cstdlib>
#include <optional>

#include "fixture.h"
#include "growth.h"
#include "internal/notify.h"

namespace
{
using namespace bench;

constexpr std::size_t kSegmentSize = 64 << 20;
constexpr std::size_t kMostNames = 100000;
constexpr std::size_t kMostBytes = 4 << 20;

void CreateLargeSegments()
{
    const QBXSharedSegment lists(boost::interprocess::open_or_create, kListSegmentName, kSegmentSize);
    const QBXSharedSegment buffers(boost::interprocess::open_or_create, kBufferSegmentName, kSegmentSize);
}

void Nothing(int) {}

void RunPages(int rounds)
{
    std::vector<std::string> list;
    auto page = Page(kMostNames);
    RunGrowth("page of names", rounds, {100, 300, 1000, 3000, 10000, 30000, 100000}, Nothing,
              [&](int size)
              {
                  page.count = static_cast<std::size_t>(size);
                  qbx::CopyNames(page, list);
              });
}

void RunArtwork(int rounds)
{
    auto picture = Picture(kMostBytes);
    RunGrowth("bytes of artwork", rounds, {1 << 10, 1 << 12, 1 << 14, 1 << 16, 1 << 18, 1 << 20, 1 << 22}, Nothing,
              [&](int size)
              {
                  picture.count = static_cast<std::size_t>(size);
                  qbx::CopyBytes(picture);
              });
}

void Notify()
{
    iPodPlayerPlayStatus status{};
    qbx::Notify(Client(), &IQBXIpodPlayerListener::OnPlayStatusChanged, status);
}

void RunListeners(int rounds)
{
    std::optional<Audience> audience;
    RunGrowth(
        "listeners of an event", rounds, {1, 3, 10, 30, 100, 300, 1000},
        [&](int size)
        {
            audience.reset();
            audience.emplace(static_cast<std::size_t>(size));
            Notify();
        },
        [](int) { Notify(); });
}
}  // namespace

int main(int argc, char** argv)
{
    if (argc < 2 || std::atoi(argv[1]) < 1)
    {
        std::fprintf(stderr, "usage: bench_growth_copies ROUNDS [CONTEST...]\n");
        return 2;
    }
    RunOnly({argv + 2, argv + argc});
    CreateLargeSegments();
    RunPages(std::atoi(argv[1]));
    RunArtwork(std::atoi(argv[1]));
    RunListeners(std::atoi(argv[1]));
}
