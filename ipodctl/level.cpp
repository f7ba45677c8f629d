#include "level.h"

#include <glib.h>

#include <algorithm>
#include <climits>
#include <optional>

#include "failure.h"
#include "text.h"

namespace ctl
{
namespace
{
constexpr int kPageSize = 500;

struct Flags
{
    int folder = 0;
    int root = 0;
};

std::vector<std::string> ReadNames(Session& session, int first, int last, Flags& flags)
{
    std::vector<std::string> names;
    const int filled = session.Ask([&](IQBXIpodPlayer& player)
                                   { return player.GetCurDBListItems(first, last, names, flags.folder, flags.root); });
    if (filled != 1) throw Failure(kNothingDone, "the service has no page of this level; is a device attached?");
    return names;
}

// Pinyin is an extra: without it the names stand alone.
std::vector<std::string> ReadPinyin(Session& session, int first, int last)
{
    std::vector<std::string> names;
    Flags flags;
    const int filled =
        session.Ask([&](IQBXIpodPlayer& player)
                    { return player.GetCurDBListItemsPinyin(first, last, names, flags.folder, flags.root); });
    return filled == 1 ? names : std::vector<std::string>();
}

std::string Folded(const std::string& text)
{
    gchar* const folded = g_utf8_casefold(Printable(text).c_str(), -1);
    const std::string result = folded;
    g_free(folded);
    return result;
}

// Blanks between syllables are a matter of taste.
std::string FoldedPinyin(const std::string& text)
{
    std::string folded = Folded(text);
    folded.erase(std::remove(folded.begin(), folded.end(), ' '), folded.end());
    return folded;
}

// False when the service had fewer names than the page has room for.
bool AppendPage(Session& session, Page& page, int first, int last)
{
    Flags flags;
    const std::vector<std::string> names = ReadNames(session, first, last, flags);
    const std::vector<std::string> pinyin = ReadPinyin(session, first, last);
    const auto room = static_cast<std::size_t>(last - first) + 1;
    page.folder = flags.folder != 0;
    page.root = flags.root != 0;
    for (std::size_t i = 0; i < std::min(names.size(), room); ++i)
    {
        const bool differs = pinyin.size() == names.size() && Folded(pinyin[i]) != Folded(names[i]);
        page.entries.push_back({first + static_cast<int>(i), names[i], differs ? pinyin[i] : std::string()});
    }
    return names.size() >= room;
}

[[noreturn]] void RefuseAmbiguous(const std::string& name, const std::vector<const Entry*>& found)
{
    std::string indices;
    for (std::size_t i = 0; i < std::min<std::size_t>(found.size(), 3); ++i)
        indices += (i == 0 ? "" : ", ") + std::to_string(found[i]->index);
    throw Failure(kUsage, "'" + Printable(name) + "' is the name of several entries (" + indices +
                              (found.size() > 3 ? ", ..." : "") + "); give the index");
}

template <class Matches>
std::optional<Entry> OnlyMatch(const Page& page, const std::string& name, Matches matches)
{
    std::vector<const Entry*> found;
    for (const Entry& entry : page.entries)
        if (matches(entry)) found.push_back(&entry);
    if (found.size() > 1) RefuseAmbiguous(name, found);
    return found.empty() ? std::nullopt : std::optional<Entry>(*found[0]);
}
}  // namespace

Page ReadLevel(Session& session, int from, int count)
{
    Page page;
    page.amount = std::max(0, session.Ask([](IQBXIpodPlayer& player) { return player.GetCurDBListItemsAmount(0); }));
    if (page.amount == 0) page.root = session.Ask([](IQBXIpodPlayer& player) { return player.IsiPodInDBRoot(); });
    const int end = from + std::clamp(page.amount - from, 0, std::max(0, count));
    for (int first = from; first < end; first += kPageSize)
        if (!AppendPage(session, page, first, std::min(first + kPageSize, end) - 1)) break;
    return page;
}

Entry FindEntry(Session& session, const std::string& text)
{
    const std::optional<int> index = ParseIndex(text);
    if (!index) return FindName(session, text);
    const Page page = ReadLevel(session, *index, 1);
    CheckIndex(*index, page.amount, "the current level");
    if (page.entries.empty())
        throw Failure(kNothingDone, "the service has no entry " + text + " although it counts it");
    return page.entries.front();
}

Entry FindName(Session& session, const std::string& name)
{
    const Page page = ReadLevel(session, 0, INT_MAX);
    if (const auto same = OnlyMatch(page, name, [&](const Entry& entry) { return entry.name == name; })) return *same;
    const std::string folded = Folded(name);
    const std::string pinyin = FoldedPinyin(name);
    const auto similar = [&](const Entry& entry)
    { return Folded(entry.name) == folded || (!entry.pinyin.empty() && FoldedPinyin(entry.pinyin) == pinyin); };
    if (const auto found = OnlyMatch(page, name, similar)) return *found;
    throw Failure(kUsage, "no '" + Printable(name) + "' in the current level; ipodctl ls --all shows what there is");
}

void CheckIndex(int index, int amount, const std::string& what)
{
    if (index >= 0 && index < amount) return;
    const std::string range = amount > 0 ? "has 0 to " + std::to_string(amount - 1) : "is empty";
    throw Failure(kUsage, "index " + std::to_string(index) + " is out of range: " + what + " " + range);
}
}  // namespace ctl
