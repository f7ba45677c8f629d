// Pages, artwork, and accessory writes: through shared memory, and over the bus for comparison.
#include <string>

#include "bus.h"
#include "calls.h"
#include "contest.h"
#include "samples.h"

namespace bench
{
namespace
{
constexpr int kNoNames = 1;
constexpr int kNoBytes = 1;
constexpr int kKilobyte = 1000;

constexpr int kBigPage = 3000;
constexpr int kBigPicture = 300 * kKilobyte;

void BarePage()
{
    GError* error = nullptr;
    gboolean result = FALSE;
    com_zarn_linux_ipod_call_get_playing_list_items_sync(BareProxy(), 0, 9, &result, nullptr, &error);
    Check(error);
}

void BareArtwork()
{
    GError* error = nullptr;
    GVariant* head = nullptr;
    com_zarn_linux_ipod_call_get_playing_track_album_artwork_sync(BareProxy(), &head, nullptr, &error);
    Check(error);
    g_variant_unref(head);
}

void BareEapWrite()
{
    GError* error = nullptr;
    gboolean result = FALSE;
    com_zarn_linux_ipod_call_eap_write_sync(BareProxy(), 1, &result, nullptr, &error);
    Check(error);
}

// The application's current page; each page replaces the previous one.
std::vector<std::string> shown;

void Page()
{
    Player()->GetPlayingListItems(0, 9, shown);
}

void PageOverTheBus()
{
    shown = NamesOverTheBus();
}

void ComparePages(int names, int calls)
{
    const std::string size = std::to_string(names);
    Prepare(names, kNoBytes, false);
    Run({"page copied " + size, calls, {Timed("bare", BarePage), Timed("library", Page)}});
    Prepare(names, kNoBytes, true);
    Run({"page delivered " + size, calls, {Timed("library", Page), Timed("bus", PageOverTheBus)}});
}

void ComparePictures(int bytes, int calls)
{
    const std::string size = std::to_string(bytes / kKilobyte);
    const Variant library = Timed("library", [] { Player()->GetPlayingTrackAlbumArtwork(); });
    Prepare(kNoNames, bytes, false);
    Run({"artwork copied " + size, calls, {Timed("bare", BareArtwork), library}});
    Prepare(kNoNames, bytes, true);
    Run({"artwork delivered " + size, calls, {library, Timed("bus", BytesOverTheBus)}});
}

void CompareWrites(int bytes, int calls)
{
    std::vector<unsigned char> data = SampleBytes(static_cast<std::size_t>(bytes));
    Prepare(kNoNames, kNoBytes, false);
    Run({"EapWrite " + std::to_string(bytes / kKilobyte),
         calls,
         {Timed("bare", BareEapWrite), Timed("library", [&data] { Player()->EapWrite(1, data); }),
          Timed("bus", [&data] { SendOverTheBus(data); })}});
}
}  // namespace

void CompareBulk(int calls, int bigCalls)
{
    for (const int names : {10, 100, 1000, 10000}) ComparePages(names, names < kBigPage ? calls : bigCalls);
    for (const int kilobytes : {1, 10, 100, 300, 900})
        ComparePictures(kilobytes * kKilobyte, kilobytes * kKilobyte < kBigPicture ? calls : bigCalls);
    for (const int kilobytes : {1, 10, 100, 300})
        CompareWrites(kilobytes * kKilobyte, kilobytes * kKilobyte < kBigPicture ? calls : bigCalls);
}
}  // namespace bench
