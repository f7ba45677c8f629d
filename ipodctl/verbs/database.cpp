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
    throw Failure(failure.code(),
                  failure.what() + (entered.empty() ? "" : "; the way led to '" + Printable(entered) + "'"));
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
    for (const Entry& entry : ReadLevel(session, 0, INT_MAX, Pinyin::None).entries)
    {
        if (entry.name != name) continue;
        Enter(session, entry);
        return true;
    }
    return false;
}

void ChangeLevel(Session& session, const std::string& where)
{
    if (where == "." || where == "..")
        EnterPart(session, where);
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
