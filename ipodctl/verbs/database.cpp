// Walking through the music database.
#include <climits>

#include "output/text.h"
#include "player/level.h"
#include "verbs/verbs.h"

namespace ctl
{
namespace
{
void Enter(Session& session, const Entry& entry)
{
    const std::string refusal = "'" + Printable(entry.name) + "' cannot be entered; if it is a song: ipodctl play " +
                                std::to_string(entry.index);
    session.Ask(session.Commands().EnterChild(entry.index), refusal.c_str());
}

void EnterRoot(Session& session)
{
    session.Ask(session.Commands().EnterRoot(), "the service did not go to the root; is a device attached?");
}

void EnterParent(Session& session)
{
    session.Ask(session.Commands().EnterParent(), "the current level is the root already");
}

// The longest beginning of a path that is a name of the current level, which is then entered: names may contain
// slashes. Returns its length.
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
    RefuseUnknown(path.substr(0, path.find('/')));
}

// One step along a path. Returns how many characters of it that took.
std::size_t EnterPart(Session& session, const std::string& path)
{
    const std::string part = path.substr(0, path.find('/'));
    if (part == "..") EnterParent(session);
    const bool special = part.empty() || part == "." || part == "..";
    return special ? part.size() : EnterLongestName(session, path);
}

// A path that ends too early has changed the level all the same.
[[noreturn]] void RefuseRest(const Failure& failure, const std::string& entered)
{
    if (entered.empty()) throw failure;
    throw Failure(failure.code(), failure.what(), "the current level is '" + Printable(entered) + "' now");
}

// Parts of a path are names, also those that look like numbers.
void EnterPath(Session& session, const std::string& path)
{
    if (path.front() == '/') EnterRoot(session);
    for (std::size_t begin = 0; begin < path.size();)
    {
        try
        {
            begin += EnterPart(session, path.substr(begin)) + 1;
        }
        catch (const Failure& failure)
        {
            RefuseRest(failure, path.substr(0, begin));
        }
    }
}

void ChangeLevel(Session& session, const std::string& where)
{
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
             "ipodctl cd 2\nipodctl cd Artists\nipodctl cd ..\nipodctl cd /Artists/周杰伦\nipodctl cd ./1989",
             BuildCd}};
}
}  // namespace ctl
