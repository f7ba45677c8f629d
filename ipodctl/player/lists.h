/// @file
/// The lists of the service, and the current level of the music database, which the service keeps for all its clients.
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

    /// Entries of the whole list.
    int Count();

    /// The names from @p first up to but not including @p end, which there must be.
    /// @param refusal  what to say when the service has no page of it
    std::vector<std::string> Names(int first, int end, const char* refusal);

    /// The page that holds an entry.
    ipodkit::PagePtr PageWith(int index, const char* refusal);

    static constexpr int kPageSize = 500;

private:
    Session& m_session;
    ipodkit::Pager m_pager;
};

struct Entry
{
    int index;
    std::string name;
    std::string pinyin;  ///< the service's, or a reading of our own; empty when it was not asked for
};

/// A part of a level.
struct Page
{
    int amount = 0;  ///< entries of the whole level
    bool folder = false;
    bool root = false;
    std::vector<Entry> entries;
};

enum class Pinyin
{
    None,
    WhereItDiffers,  ///< from the name, but for upper and lower case
    Always,
};

/// Reads @p count entries from @p from on, as many requests as it takes. No more than there are.
Page ReadLevel(Session& session, int from, int count, Pinyin pinyin = Pinyin::WhereItDiffers);

/// Finds an entry of a level by its name: the same, or the same but for upper and lower case, or its pinyin.
/// @throws Failure  several entries have that name
std::optional<Entry> FindName(const Page& level, const std::string& name);

/// Finds an entry of the current level by its index, when @p text is one, or else by its name. "./22" is the name "22".
/// @throws Failure  no entry has that index or name, or several have
Entry FindEntry(Session& session, const std::string& text);

/// What "./" in front of a name makes a name whatever it looks like.
/// @return the index; nothing for a name, from which "./" is taken away
std::optional<int> TakeIndex(std::string& text);

/// @throws Failure  no entry of the current level has that name
[[noreturn]] void RefuseUnknown(const std::string& name);

/// Checks that an index is one of @p amount entries of @p what.
/// @throws Failure  kUsage
void CheckIndex(int index, int amount, const std::string& what);
}  // namespace ctl
