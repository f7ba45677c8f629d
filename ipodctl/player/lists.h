/// @file
/// Reads the lists of the service and the current level of the music database, which all clients of the service share.
#pragma once

#include <ipodkit/pager.h>

#include <optional>
#include <string>
#include <vector>

#include "session/session.h"

namespace ctl
{
class List
{
public:
    /// @param pageSize  entries per request
    List(Session& session, ipodkit::ListKind kind, int pageSize = kPageSize);

    /// Returns the number of entries in the whole list.
    int Count();

    /// Returns the names from @p first up to but not including @p end. The range must exist.
    /// @param refusal  the error if the service does not have the page
    std::vector<std::string> Names(int first, int end, const Refusal& refusal);

    /// Returns all names, also of a list without a reported size.
    std::vector<std::string> AllNames(const Refusal& refusal);

    /// Returns the page that holds an entry.
    ipodkit::PagePtr PageWith(int index, const Refusal& refusal);

    /// Changes the level of the database.
    /// @param where    Pager::EnterRoot or Pager::EnterParent
    /// @param refusal  the error if the service has no such level
    void Enter(ipodkit::Request<void> (ipodkit::Pager::*where)(), const Refusal& refusal);
    void EnterChild(int index, const Refusal& refusal);

    static constexpr int kPageSize = 500;

private:
    Session& m_session;
    ipodkit::Pager m_pager;
};

/// Returns names as an array of objects with "index", counted from @p first, and "name".
Json EntriesJson(int first, const std::vector<std::string>& names);

/// Returns one printable name per line.
std::string NamesText(const std::vector<std::string>& names);

struct Entry
{
    int index;
    std::string name;
    std::string pinyin;  ///< from the service, or derived by ipodnames; empty if not requested
};

/// A range of entries of a level.
struct Page
{
    int amount = 0;  ///< entries in the whole level
    bool folder = false;
    bool root = false;
    std::vector<Entry> entries;
};

std::vector<std::string> NamesIn(const Page& page);

enum class Pinyin
{
    None,
    WhereItDiffers,  ///< only if it differs from the name, ignoring case
    Always,
};

/// Reads @p count entries from index @p from on, with as many requests as needed; fewer if the level ends first.
Page ReadLevel(Session& session, int from, int count, Pinyin pinyin = Pinyin::WhereItDiffers);

/// Finds an entry of a level by its exact name, otherwise by its name or pinyin, ignoring case.
/// @throws Failure  several entries match
std::optional<Entry> FindName(const Page& level, const std::string& name);

/// Finds an entry of the current level by index if @p text is an integer, otherwise by name. "./22" is the name "22".
/// @throws Failure  no entry matches, or several match
Entry FindEntry(Session& session, const std::string& text);

/// Parses an index. A leading "./" marks any text as a name and is removed from @p text.
/// @return the index; nothing for a name
std::optional<int> TakeIndex(std::string& text);

/// Reads the list of changes that the device is making, with pinyin where it differs.
Page ReadUpdateList(Session& session);

/// @throws Failure  always: no entry of the level has that name. The hint suggests a similar one.
[[noreturn]] void RefuseUnknown(const Page& level, const std::string& name);

/// Checks that an index is between 0 and @p amount - 1.
/// @param what      name of the list, for the error message
/// @throws Failure  kUsage, if the index is out of range
void CheckIndex(int index, int amount, const std::string& what);
}  // namespace ctl
