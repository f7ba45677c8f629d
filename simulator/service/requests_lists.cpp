#include <algorithm>

#include "service/requests.h"

namespace ipodsim::requests
{
namespace
{
// Copies the existing entries from begin to end, inclusive, into a vector. If there are none, empties the vector and
// returns false.
template <class NameAt>
bool FillPage(QBXStringPageVector& vector, gint begin, gint end, std::size_t size, NameAt nameAt)
{
    std::vector<std::string> names;
    const gint last = std::min(end, static_cast<gint>(size) - 1);
    for (gint i = std::max(begin, 0); begin <= end && i <= last; ++i)
        names.push_back(nameAt(static_cast<std::size_t>(i)));
    return Fill(vector, names) && !names.empty();
}

const Level& NoLevel()
{
    static const Level none;
    return none;
}

const Level& CurrentLevel(Service& service)
{
    const Database* const database = service.Browsed();
    return database == nullptr ? NoLevel() : database->Current();
}

bool FillNames(QBXStringPageVector& vector, const Level& level, gint begin, gint end)
{
    return FillPage(vector, begin, end, level.entries.size(), [&](std::size_t i) { return level.entries[i].name; });
}

bool FillPinyin(QBXStringPageVector& vector, const Level& level, gint begin, gint end)
{
    return FillPage(vector, begin, end, level.entries.size(), [&](std::size_t i) { return level.entries[i].reading; });
}

std::tuple<bool, bool, bool> WithFlags(Service& service, bool filled)
{
    return {CurrentLevel(service).folder, IsIPodInDbRoot(service), filled};
}
}  // namespace

gint GetPlayingListItemsAmount(Service& service)
{
    return static_cast<gint>(service.player.List().Tracks().size());
}

gint GetCurDbListItemsAmount(Service& service, gboolean fromTop)
{
    const Database* const database = service.Browsed();
    if (database == nullptr) return 0;
    return static_cast<gint>((fromTop ? database->Root() : database->Current()).entries.size());
}

bool GetPlayingListItems(Service& service, gint begin, gint end)
{
    const TrackList& tracks = service.player.List().Tracks();
    return FillPage(*service.segments.playingList, begin, end, tracks.size(),
                    [&](std::size_t i) { return tracks[i]->title; });
}

std::tuple<bool, bool, bool> GetCurDbListItems(Service& service, gint begin, gint end)
{
    return WithFlags(service, FillNames(*service.segments.dbList, CurrentLevel(service), begin, end));
}

std::tuple<bool, bool, bool> GetCurDbListItemsPinyin(Service& service, gint begin, gint end)
{
    return WithFlags(service, FillPinyin(*service.segments.dbListPinyin, CurrentLevel(service), begin, end));
}

// A real device lists here what a synchronization has changed so far. The simulated one never synchronizes and returns
// the current level.
bool GetUpdateListItems(Service& service, gint begin, gint end)
{
    return FillNames(*service.segments.updateList, CurrentLevel(service), begin, end);
}

bool GetUpdateListItemsPinyin(Service& service, gint begin, gint end)
{
    return FillPinyin(*service.segments.updateListPinyin, CurrentLevel(service), begin, end);
}

bool EnterDbRoot(Service& service)
{
    Database* const database = service.Browsed();
    if (database == nullptr) return false;
    database->EnterRoot();
    return true;
}

bool IsIPodInDbRoot(Service& service)
{
    const Database* const database = service.Browsed();
    return database == nullptr || database->AtRoot();
}

bool EnterDbParentList(Service& service)
{
    Database* const database = service.Browsed();
    return database != nullptr && database->EnterParent();
}

bool EnterDbChildList(Service& service, gint index)
{
    Database* const database = service.Browsed();
    return database != nullptr && database->EnterChild(index);
}

bool EnterDeviceChildList(Service& service, gint index)
{
    return service.devices.Choose(index);
}

bool GetDeviceList(Service& service)
{
    return Fill(*service.segments.deviceList, service.devices.Names());
}

gint GetDeviceAmount(Service& service)
{
    return static_cast<gint>(service.devices.Count());
}
}  // namespace ipodsim::requests
