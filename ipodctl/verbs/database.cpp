// Lists and changes the current level of the music database.
#include <ipodnames/jump_index.h>

#include <algorithm>
#include <climits>

#include "output/text.h"
#include "player/lists.h"
#include "verbs/verbs.h"

namespace ctl
{
namespace
{
List Level(Session& session)
{
    return {session, ipodkit::ListKind::Database};
}

void Enter(Session& session, const Entry& entry)
{
    Level(session).EnterChild(entry.index,
                              {"'" + Printable(entry.name) + "' cannot be entered",
                               "if it is a song, play it with 'ipodctl play " + std::to_string(entry.index) + "'"});
}

void EnterRoot(Session& session)
{
    Level(session).Enter(&ipodkit::Pager::EnterRoot, {"the service did not enter the root", kCheckDevices});
}

void EnterParent(Session& session)
{
    Level(session).Enter(&ipodkit::Pager::EnterParent, "the current level is already the root");
}

// Enters the entry whose name is the longest matching prefix of the path, because names may contain slashes. Returns
// the length of that name.
std::size_t EnterLongestName(Session& session, const std::string& path)
{
    const Page level = ReadLevel(session, 0, INT_MAX);
    for (std::size_t end = path.size(); end != std::string::npos && end > 0; end = path.rfind('/', end - 1))
    {
        const std::optional<Entry> found = FindName(level, path.substr(0, end));
        if (!found) continue;
        Enter(session, *found);
        return end;
    }
    RefuseUnknown(level, path.substr(0, path.find('/')));
}

// Follows one component of a path. Returns the number of bytes consumed.
std::size_t EnterPart(Session& session, const std::string& path)
{
    const std::string part = path.substr(0, path.find('/'));
    if (part == "..") EnterParent(session);
    const bool special = part.empty() || part == "." || part == "..";
    return special ? part.size() : EnterLongestName(session, path);
}

// Reports the level reached so far: a path that fails halfway has already changed it. Only the root has no parent.
[[noreturn]] void RefuseRest(const Failure& failure, const std::string& entered, const std::string& rest)
{
    if (entered.empty()) throw failure;
    const bool atRoot = failure.code() == kNothingDone && rest.substr(0, rest.find('/')) == "..";
    throw Failure(failure.code(), failure.what(),
                  "the current level is now '" + (atRoot ? "/" : Printable(entered)) + "'");
}

// Path components are always names, even if they look like numbers.
void EnterPath(Session& session, const std::string& path)
{
    if (path.front() == '/') EnterRoot(session);
    const std::size_t start = path.rfind("./", 0) == 0 ? 2 : 0;
    for (std::size_t begin = start; begin < path.size();)
    {
        try
        {
            begin += EnterPart(session, path.substr(begin)) + 1;
        }
        catch (const Failure& failure)
        {
            RefuseRest(failure, path.substr(start, begin - start), path.substr(begin));
        }
    }
}

void ChangeLevel(Session& session, const std::string& where)
{
    session.HoldLevel(ipodkit::Browsing::Changing);
    if (where == ".." || where == "." || where.find('/') != std::string::npos)
        EnterPath(session, where);
    else
        Enter(session, FindEntry(session, where));
}

Run BuildCd(CLI::App& app)
{
    const auto where = Argument<std::string>();
    app.add_option("folder", *where,
                   "Index or name of a folder, .. for one up, / for the root, or a path of names; ./NAME is a name "
                   "even if it looks like an index")
        ->required();
    return [where](Context& context) -> Answer
    {
        if (where->empty()) throw Failure(kUsage, "missing argument: folder", "give an index, a name, .., / or a path");
        ChangeLevel(context.session, *where);
        const Page page = ReadLevel(context.session, 0, 1, Pinyin::None);
        const Json json{{"verb", "cd"}, {"root", page.root}, {"folder", page.folder}, {"count", page.amount}};
        return {json, (page.root ? "root, " : "") +
                          Count(page.amount, page.folder ? "folder" : "song", page.folder ? "folders" : "songs")};
    };
}
}  // namespace

std::vector<Verb> BrowseVerbs()
{
    return {{"cd", "Change the current level, which all clients share",
             "ipodctl cd 2\nipodctl cd Artists\nipodctl cd ..\nipodctl cd /Artists/周明轩\nipodctl cd ./1989",
             BuildCd}};
}

namespace
{
constexpr int kUsualCount = 50;

struct Listing
{
    int from = 0;
    int count = kUsualCount;
    bool all = false;
    bool index = false;
    bool names = false;
    Pinyin pinyin = Pinyin::WhereItDiffers;
};

Json EntryJson(const Entry& entry)
{
    Json json{{"index", entry.index}, {"name", entry.name}};
    if (!entry.pinyin.empty()) json["pinyin"] = entry.pinyin;
    return json;
}

Json LevelJson(const Page& page)
{
    return {{"verb", "ls"}, {"root", page.root}, {"folder", page.folder}, {"count", page.amount}};
}

Json PageJson(const Page& page)
{
    Json entries = Json::array();
    for (const Entry& entry : page.entries) entries.push_back(EntryJson(entry));
    Json json = LevelJson(page);
    json["entries"] = entries;
    return json;
}

std::string PageText(const Page& page, const Output& out)
{
    const int digits = out.terminal() ? Width(std::to_string(page.amount)) : 0;
    std::vector<std::vector<std::string>> rows;
    for (const Entry& entry : page.entries)
        rows.push_back({PadLeft(std::to_string(entry.index), digits), Printable(entry.name) + (page.folder ? "/" : ""),
                        Printable(entry.pinyin)});
    return out.terminal() ? Table(rows, out.width()) : Unaligned(rows);
}

// Printed on terminals only: piped output has exactly one line per entry.
std::string Summary(const Page& page, const Output& out)
{
    if (!out.terminal()) return {};
    const int shown = static_cast<int>(page.entries.size());
    std::string text = page.root ? "root, " : "";
    text += Count(page.amount, page.folder ? "folder" : "song", page.folder ? "folders" : "songs");
    if (shown < page.amount)
        text += ", " + std::to_string(shown) + " shown; --from N, --count N, or --all for the others";
    return (shown > 0 ? "\n" : "") + out.Paint(Color::Dim, Cut(text, out.width()));
}

Page ReadListing(Session& session, const Listing& listing)
{
    const Pinyin pinyin = listing.index ? Pinyin::Always : listing.names ? Pinyin::None : listing.pinyin;
    const bool whole = listing.all || listing.index;
    Page page =
        whole ? ReadLevel(session, 0, INT_MAX, pinyin) : ReadLevel(session, listing.from, listing.count, pinyin);
    if (listing.from > 0 && !whole) CheckIndex(listing.from, page.amount, "the current level");
    return page;
}

// The entries that start with one letter, in the service's order. Entries with pinyin are sorted by it.
struct Letter
{
    std::string label;
    int first;
    int count;
};

ipodnames::JumpIndex IndexOf(const Page& page)
{
    ipodnames::JumpIndexOptions options;
    for (const Entry& entry : page.entries) options.readings.push_back(entry.pinyin);
    return ipodnames::JumpIndex(NamesIn(page), options);
}

std::vector<Letter> Letters(const Page& page)
{
    const ipodnames::JumpIndex index = IndexOf(page);
    std::vector<Letter> letters;
    for (std::size_t i = 0; i < index.Sections().size(); ++i)
    {
        const bool last = i + 1 == index.Sections().size();
        const int begin = index.Sections()[i].position;
        const int end = last ? static_cast<int>(index.Size()) : index.Sections()[i + 1].position;
        const auto found = std::min_element(index.Order().begin() + begin, index.Order().begin() + end);
        letters.push_back({index.Sections()[i].label, *found, end - begin});
    }
    std::sort(letters.begin(), letters.end(), [](const Letter& a, const Letter& b) { return a.first < b.first; });
    return letters;
}

Answer ShowLetters(Context& context, const Page& page)
{
    Json json = LevelJson(page);
    json["letters"] = Json::array();
    std::vector<std::vector<std::string>> rows;
    const int digits = Width(std::to_string(page.amount));
    for (const Letter& letter : Letters(page))
    {
        json["letters"].push_back({{"label", letter.label}, {"index", letter.first}, {"count", letter.count}});
        rows.push_back({letter.label, PadLeft(std::to_string(letter.first), digits),
                        Count(letter.count, "entry", "entries"),
                        Printable(page.entries[static_cast<std::size_t>(letter.first)].name)});
    }
    return {json, Table(rows, context.out.width())};
}

Answer ShowList(Context& context, const Listing& listing)
{
    const Page page = ReadListing(context.session, listing);
    if (listing.index) return ShowLetters(context, page);
    if (listing.names) return {PageJson(page), NamesText(NamesIn(page))};
    return {PageJson(page), PageText(page, context.out) + Summary(page, context.out)};
}

Run BuildLs(CLI::App& app)
{
    const auto listing = Argument<Listing>();
    auto* const from = app.add_option("--from", listing->from, "Index of the first entry")
                           ->type_name("INDEX")
                           ->transform(WholeNumber(0));
    auto* const count =
        app.add_option("--count", listing->count, "Number of entries (default: 50)")->transform(WholeNumber(1));
    app.add_flag("--all", listing->all, "List the whole level")->excludes(from)->excludes(count);
    auto* const pinyin = app.add_flag_callback(
        "--pinyin", [listing] { listing->pinyin = Pinyin::Always; }, "Print pinyin even where it equals the name");
    app.add_flag_callback(
           "--no-pinyin", [listing] { listing->pinyin = Pinyin::None; },
           "Omit pinyin, which halves the number of requests")
        ->excludes(pinyin);
    auto* const names =
        app.add_flag("--names", listing->names, "Print one name per line and nothing else, for scripts");
    app.add_flag("--index", listing->index, "Print the index of each letter's first name (Chinese names by pinyin)")
        ->excludes(from)
        ->excludes(count)
        ->excludes(names);
    return [listing](Context& context) { return ShowList(context, *listing); };
}
// Prints the entries that match, as ls does, in the order of the level.
Answer Search(Context& context, const std::string& text)
{
    Page page = ReadLevel(context.session, 0, INT_MAX);
    std::vector<int> found = IndexOf(page).Search(text, page.entries.size());
    if (found.empty()) throw Failure(kNothingDone, "no entry of the current level matches '" + Printable(text) + "'");
    std::sort(found.begin(), found.end());
    std::vector<Entry> matches;
    matches.reserve(found.size());
    for (const int index : found) matches.push_back(std::move(page.entries[static_cast<std::size_t>(index)]));
    page.entries = std::move(matches);
    Json json = PageJson(page);
    json["verb"] = "search";
    return {json, PageText(page, context.out)};
}

Run BuildSearch(CLI::App& app)
{
    const auto text = Argument<std::string>();
    app.add_option("text", *text, "The beginning of a word in the name or its pinyin, or initials")
        ->required()
        ->check(cli::NonEmpty());
    return [text](Context& context) { return Search(context, *text); };
}

Run BuildUpdateList(CLI::App& app)
{
    const auto names = Argument<bool>();
    app.add_flag("--names", *names, "Print one name per line and nothing else, for scripts");
    return [names](Context& context) -> Answer
    {
        const Page page = ReadUpdateList(context.session);
        Json entries = Json::array();
        for (const Entry& entry : page.entries) entries.push_back(EntryJson(entry));
        const Json json{{"verb", "update-list"}, {"count", page.amount}, {"entries", entries}};
        return {json, *names ? NamesText(NamesIn(page)) : PageText(page, context.out)};
    };
}
}  // namespace

std::vector<Verb> ListVerbs()
{
    return {{"ls", "List the current level: index, name, pinyin",
             "ipodctl ls\nipodctl ls --from 100 --count 20\nipodctl ls --index\nipodctl ls --all --names | fzf\n"
             "ipodctl ls --all --json | jq -r '.entries[].name'",
             BuildLs},
            {"search", "List the entries of the current level that match TEXT", "ipodctl search zmx", BuildSearch},
            {"update-list", "List what a synchronization of the device has changed", "ipodctl update-list",
             BuildUpdateList}};
}
}  // namespace ctl
