#include "commands/requests.h"

#include "commands/proxy.h"
#include "memory/shared_vectors.h"

namespace ipodkit
{
namespace
{
const tl::unexpected kNotFilled(Error{ErrorKind::Refused, "the service did not fill the page"});

Result<PageHead> PlainHead(GVariant* body)
{
    gboolean filled = FALSE;
    g_variant_get(body, "(b)", &filled);
    if (!filled) return kNotFilled;
    return PageHead{};
}

Result<PageHead> DatabaseHead(GVariant* body)
{
    gboolean folders = FALSE;
    gboolean root = FALSE;
    gboolean filled = FALSE;
    g_variant_get(body, "(bbb)", &folders, &root, &filled);
    if (!filled) return kNotFilled;
    return PageHead{folders != FALSE, root != FALSE};
}

struct List
{
    const char* method;
    QBXStringPageVector* const& vector;
    bool hasRange;
    bool isDatabase;
    Place place;
};

// In the order of ListKind.
const List kLists[] = {
    {"GetPlayingListItems", g_VecPlayingListShareMemory, true, false, Place::PlayingList},
    {"GetCurDbListItems", g_VecDBListShareMemory, true, true, Place::DatabaseList},
    {"GetCurDbListItemsPinyin", g_VecDBListPinyinShareMemory, true, true, Place::DatabaseListPinyin},
    {"GetUpdateListItems", g_VecUpdateListShareMemory, true, false, Place::UpdateList},
    {"GetUpdateListItemsPinyin", g_VecUpdateListPinyinShareMemory, true, false, Place::UpdateListPinyin},
    {"GetDeviceList", g_VecDeviceListShareMemory, false, false, Place::DeviceList},
};
}  // namespace

Request<PictureHead> AskForArtwork(const std::shared_ptr<detail::Bus>& bus, std::chrono::milliseconds deadline)
{
    return Proxy{bus, deadline}.Query("GetPlayingTrackAlbumArtwork", "(v)", ToPictureHead);
}

Request<void> AskToWrite(const std::shared_ptr<detail::Bus>& bus, std::chrono::milliseconds deadline,
                         std::uint16_t session)
{
    return Proxy{bus, deadline}.Command("EapWrite", g_variant_new("(q)", session));
}

Request<PageHead> AskForPage(const std::shared_ptr<detail::Bus>& bus, std::chrono::milliseconds deadline, ListKind kind,
                             int first, int last)
{
    const List& list = kLists[static_cast<int>(kind)];
    return Proxy{bus, deadline}.Query(list.method, list.isDatabase ? "(bbb)" : "(b)",
                                      list.isDatabase ? DatabaseHead : PlainHead,
                                      list.hasRange ? g_variant_new("(ii)", first, last) : nullptr);
}

Place PlaceOf(ListKind kind)
{
    return kLists[static_cast<int>(kind)].place;
}

std::optional<std::vector<std::string>> NamesOf(ListKind kind)
{
    return NamesIn(kLists[static_cast<int>(kind)].vector);
}
}  // namespace ipodkit
