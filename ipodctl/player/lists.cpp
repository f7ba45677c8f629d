#include "player/lists.h"

#include <glib.h>
#include <ipodnames/nearest.h>
#include <ipodnames/reading.h>

#include <algorithm>
#include <climits>

#include "output/failure.h"
#include "output/text.h"

namespace ctl
{
namespace
{
ipodkit::PagerOptions OptionsFor(int pageSize)
{
    ipodkit::PagerOptions options;
    options.pageSize = pageSize;
    options.cachedPages = 2;
    options.prefetch = 0;
    return options;
}
}  // namespace

List::List(Session& session, ipodkit::ListKind kind, int pageSize)
    : m_session(session), m_pager(session.Ready(), kind, OptionsFor(pageSize))
{
}

int List::Count()
{
    return m_session.ValueOf(m_session.Await(m_pager.Count()));
}

ipodkit::PagePtr List::PageWith(int index, const Refusal& refusal)
{
    return m_session.ValueOf(m_session.Await(m_pager.At(index)), refusal);
}

std::vector<std::string> List::Names(int first, int end, const Refusal& refusal)
{
    if (first >= end) return {};
    return m_session.ValueOf(m_session.Await(m_pager.Range(first, end - 1)), refusal);
}

void List::Enter(ipodkit::Request<void> (ipodkit::Pager::*where)(), const Refusal& refusal)
{
    m_session.ValueOf(m_session.Await((m_pager.*where)()), refusal);
}

void List::EnterChild(int index, const Refusal& refusal)
{
    m_session.ValueOf(m_session.Await(m_pager.EnterChild(index)), refusal);
}

std::vector<std::string> List::AllNames(const Refusal& refusal)
{
    return m_session.ValueOf(m_session.Await(m_pager.Range(0, ipodkit::Pager::End)), refusal);
}

Json EntriesJson(int first, const std::vector<std::string>& names)
{
    Json entries = Json::array();
    for (const std::string& name : names) entries.push_back({{"index", first++}, {"name", name}});
    return entries;
}

std::string NamesText(const std::vector<std::string>& names)
{
    Lines lines;
    for (const std::string& name : names) lines.push_back(Printable(name));
    return Joined(lines);
}

namespace
{
Refusal NoUpdateList()
{
    return {"the service has no update list", kCheckDevices};
}

Refusal NoPage()
{
    return {"the service did not deliver this level", kCheckDevices};
}

// Sources differ in the spaces between syllables, so comparisons ignore them.
std::string FoldedPinyin(const std::string& text)
{
    std::string folded = Folded(text);
    folded.erase(std::remove(folded.begin(), folded.end(), ' '), folded.end());
    return folded;
}

// Returns an empty vector if the service has no pinyin.
std::vector<std::string> ReadPinyin(Session& session, int from, int end, int pageSize)
{
    try
    {
        return List(session, ipodkit::ListKind::DatabasePinyin, pageSize).Names(from, end, NoPage());
    }
    catch (const Failure& failure)
    {
        if (failure.code() != kNothingDone) throw;
        return {};
    }
}

// An ASCII name is its own reading.
std::string OwnReading(const std::string& name)
{
    return g_str_is_ascii(name.c_str()) ? Folded(name) : ipodnames::Reading(name);
}

void AddPinyin(std::vector<Entry>& entries, std::vector<std::string> pinyin, bool always)
{
    if (pinyin.size() != entries.size()) pinyin.assign(entries.size(), "");
    for (std::size_t i = 0; i < entries.size(); ++i)
    {
        Entry& entry = entries[i];
        std::string reading = pinyin[i].empty() ? OwnReading(entry.name) : std::move(pinyin[i]);
        if (always || Folded(reading) != Folded(entry.name)) entry.pinyin = std::move(reading);
    }
}

void ReadEntries(List& names, int from, int end, Page& page)
{
    for (std::string& name : names.Names(from, end, NoPage()))
        page.entries.push_back({from + static_cast<int>(page.entries.size()), std::move(name), {}});
}

[[noreturn]] void RefuseAmbiguous(const std::string& name, const std::vector<const Entry*>& found)
{
    constexpr std::size_t kNamed = 3;
    Lines indices;
    for (std::size_t i = 0; i < std::min(found.size(), kNamed); ++i) indices.push_back(std::to_string(found[i]->index));
    if (found.size() > kNamed) indices.emplace_back("...");
    throw Failure(kUsage, "'" + Printable(name) + "' matches several entries (" + Joined(indices, ", ") + ")",
                  "give the index");
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

std::vector<std::string> NamesIn(const Page& page)
{
    std::vector<std::string> names;
    for (const Entry& entry : page.entries) names.push_back(entry.name);
    return names;
}

Page ReadLevel(Session& session, int from, int count, Pinyin pinyin)
{
    session.HoldLevel(ipodkit::Browsing::Reading);
    const int pageSize = std::clamp(count, 1, List::kPageSize);
    List names(session, ipodkit::ListKind::Database, pageSize);
    Page page;
    page.amount = names.Count();
    if (page.amount == 0) page.root = session.Ask(session.Commands().AtRoot());
    const int end = from + std::clamp(page.amount - from, 0, std::max(0, count));
    if (end <= from) return page;
    const ipodkit::PagePtr first = names.PageWith(from, NoPage());
    page.folder = first->folders;
    page.root = first->root;
    ReadEntries(names, from, end, page);
    if (pinyin != Pinyin::None)
        AddPinyin(page.entries, ReadPinyin(session, from, end, pageSize), pinyin == Pinyin::Always);
    return page;
}

std::optional<Entry> FindName(const Page& level, const std::string& name)
{
    if (auto same = OnlyMatch(level, name, [&](const Entry& entry) { return entry.name == name; })) return same;
    const std::string folded = Folded(name);
    const std::string pinyin = FoldedPinyin(name);
    const auto similar = [&](const Entry& entry)
    { return Folded(entry.name) == folded || (!entry.pinyin.empty() && FoldedPinyin(entry.pinyin) == pinyin); };
    return OnlyMatch(level, name, similar);
}

std::optional<int> TakeIndex(std::string& text)
{
    const std::optional<int> index = ParseIndex(text);
    if (text.rfind("./", 0) == 0) text.erase(0, 2);
    return index;
}

Page ReadUpdateList(Session& session)
{
    Page page;
    for (std::string& name : List(session, ipodkit::ListKind::Update).AllNames(NoUpdateList()))
        page.entries.push_back({page.amount++, std::move(name), {}});
    std::vector<std::string> pinyin = List(session, ipodkit::ListKind::UpdatePinyin).AllNames(NoUpdateList());
    AddPinyin(page.entries, std::move(pinyin), false);
    return page;
}

void RefuseUnknown(const Page& level, const std::string& name)
{
    std::string similar = Printable(ipodnames::Nearest(name, NamesIn(level)));
    if (ParseIndex(similar)) similar.insert(0, "./");
    throw Failure(kUsage, "no '" + Printable(name) + "' in the current level",
                  similar.empty() ? "list it with 'ipodctl ls --all'" : "did you mean '" + similar + "'?");
}

Entry FindEntry(Session& session, const std::string& text)
{
    std::string name = text;
    const std::optional<int> index = TakeIndex(name);
    const Page page = index ? ReadLevel(session, *index, 1, Pinyin::None) : ReadLevel(session, 0, INT_MAX);
    if (!index)
    {
        const std::optional<Entry> found = FindName(page, name);
        if (!found) RefuseUnknown(page, name);
        return *found;
    }
    CheckIndex(*index, page.amount, "the current level");
    if (page.entries.empty()) throw Failure(kNothingDone, "the service did not deliver entry " + text);
    return page.entries.front();
}

void CheckIndex(int index, int amount, const std::string& what)
{
    if (index >= 0 && index < amount) return;
    const std::string range = amount > 0 ? "has entries 0 to " + std::to_string(amount - 1) : "is empty";
    throw Failure(kUsage, "index " + std::to_string(index) + " is out of range: " + what + " " + range);
}
}  // namespace ctl
