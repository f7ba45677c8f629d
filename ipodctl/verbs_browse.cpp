// Looking at the music database and walking through it.
#include <climits>

#include "level.h"
#include "table.h"
#include "text.h"
#include "verbs.h"

namespace ctl
{
namespace
{
constexpr int kUsualCount = 50;

struct Range
{
    int from = 0;
    int count = kUsualCount;
    bool all = false;
};

Json EntryJson(const Entry& entry)
{
    Json json{{"index", entry.index}, {"name", entry.name}};
    if (!entry.pinyin.empty()) json["pinyin"] = entry.pinyin;
    return json;
}

Json PageJson(const Page& page)
{
    Json entries = Json::array();
    for (const Entry& entry : page.entries) entries.push_back(EntryJson(entry));
    return {{"verb", "ls"}, {"root", page.root}, {"folder", page.folder}, {"count", page.amount}, {"entries", entries}};
}

std::string PageText(const Page& page, int width)
{
    const int digits = Width(std::to_string(page.amount));
    std::vector<std::vector<std::string>> rows;
    for (const Entry& entry : page.entries)
        rows.push_back({PadLeft(std::to_string(entry.index), digits), Printable(entry.name) + (page.folder ? "/" : ""),
                        Printable(entry.pinyin)});
    return Table(rows, width);
}

// Only for people: in a pipe there is one line per entry and nothing else.
std::string Summary(const Page& page, const Output& out)
{
    if (!out.terminal()) return {};
    const int shown = static_cast<int>(page.entries.size());
    std::string text = page.root ? "root, " : "";
    text += Count(page.amount, page.folder ? "folder" : "song", page.folder ? "folders" : "songs");
    if (shown < page.amount)
        text += ", " + std::to_string(shown) + " shown; --from N, --count N or --all for the others";
    return (shown > 0 ? "\n" : "") + out.Paint(Colour::Dim, text);
}

Page ReadRange(Session& session, const Range& range)
{
    Page page = range.all ? ReadLevel(session, 0, INT_MAX) : ReadLevel(session, range.from, range.count);
    if (range.from > 0 && !range.all) CheckIndex(range.from, page.amount, "the current level");
    return page;
}

Run BuildLs(CLI::App& app)
{
    const auto range = Argument<Range>();
    auto* const from = app.add_option("--from", range->from, "First index, from 0")->check(WholeNumber(0));
    auto* const count = app.add_option("--count", range->count, "How many entries (50)")->check(WholeNumber(1));
    app.add_flag("--all", range->all, "The whole level")->excludes(from)->excludes(count);
    return [range](Context& context) -> Answer
    {
        const Page page = ReadRange(context.session, *range);
        return {PageJson(page), PageText(page, context.out.width()) + Summary(page, context.out)};
    };
}

void Enter(Session& session, const Entry& entry)
{
    if (session.Ask([&](IQBXIpodPlayer& player) { return player.EnterDBChildList(entry.index); })) return;
    throw Failure(kNothingDone, "'" + Printable(entry.name) + "' cannot be entered; if it is a song: ipodctl play " +
                                    std::to_string(entry.index));
}

void EnterRoot(Session& session)
{
    if (!session.Ask([](IQBXIpodPlayer& player) { return player.EnterDBRoot(); }))
        throw Failure(kNothingDone, "the service did not go to the root; is a device attached?");
}

void EnterParent(Session& session)
{
    if (!session.Ask([](IQBXIpodPlayer& player) { return player.EnterDBParentList(); }))
        throw Failure(kNothingDone, "the current level is the root already");
}

void EnterPart(Session& session, const std::string& part)
{
    if (part.empty() || part == ".") return;
    if (part == "..")
        EnterParent(session);
    else
        Enter(session, FindName(session, part));
}

// A path that ends too early has changed the level all the same.
[[noreturn]] void RefuseRest(const Failure& failure, const std::string& entered)
{
    throw Failure(failure.code(), failure.what() + (entered.empty() ? "" : "; the level is now " + Printable(entered)));
}

// Parts of a path are names, also those that look like numbers.
void EnterPath(Session& session, const std::string& path)
{
    if (path.front() == '/') EnterRoot(session);
    for (std::size_t begin = 0; begin <= path.size();)
    {
        const std::size_t end = std::min(path.find('/', begin), path.size());
        try
        {
            EnterPart(session, path.substr(begin, end - begin));
        }
        catch (const Failure& failure)
        {
            RefuseRest(failure, path.substr(0, begin));
        }
        begin = end + 1;
    }
}

// A name may have a slash in it.
bool EnterWholeName(Session& session, const std::string& name)
{
    for (const Entry& entry : ReadLevel(session, 0, INT_MAX).entries)
    {
        if (entry.name != name) continue;
        Enter(session, entry);
        return true;
    }
    return false;
}

void ChangeLevel(Session& session, const std::string& where)
{
    if (where == "..")
        EnterParent(session);
    else if (where.find('/') == std::string::npos)
        Enter(session, FindEntry(session, where));
    else if (where.front() == '/' || !EnterWholeName(session, where))
        EnterPath(session, where);
}

Run BuildCd(CLI::App& app)
{
    const auto where = Argument<std::string>();
    app.add_option("where", *where, "Index or name of a folder, .. for one up, / for the root, or a path of names")
        ->required();
    return [where](Context& context) -> Answer
    {
        if (where->empty()) throw Failure(kUsage, "cd needs an index, a name, .. or /");
        ChangeLevel(context.session, *where);
        const Page page = ReadLevel(context.session, 0, 1);
        const Json json{{"verb", "cd"}, {"root", page.root}, {"folder", page.folder}, {"count", page.amount}};
        return {json, (page.root ? "root, " : "") +
                          Count(page.amount, page.folder ? "folder" : "song", page.folder ? "folders" : "songs")};
    };
}
}  // namespace

std::vector<Verb> BrowseVerbs()
{
    return {
        {"ls", "List the current level of the music database: index, name, pinyin; folders end with /",
         "ipodctl ls\nipodctl ls --from 100 --count 20\nipodctl ls --all --json | jq -r '.entries[].name'", BuildLs},
        {"cd", "Change the current level; the service keeps it for all clients",
         "ipodctl cd 2\nipodctl cd Artists\nipodctl cd ..\nipodctl cd /Artists/周杰伦\nipodctl cd ./1989", BuildCd}};
}
}  // namespace ctl
