/// @file
/// The current level of the music database. The service keeps it, for all its clients.
#pragma once

#include <string>
#include <vector>

#include "session/session.h"

namespace ctl
{
struct Entry
{
    int index;
    std::string name;
    std::string pinyin;  ///< empty when it was not asked for
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

/// Finds an entry by its index, when @p text is one, or else by its name.
/// @throws Failure  no entry of that index or name, or several
Entry FindEntry(Session& session, const std::string& text);

/// Finds an entry by its name: the same, or the same but for upper and lower case, or its pinyin.
Entry FindName(Session& session, const std::string& name);

/// Checks that an index is one of @p amount entries of @p what.
/// @throws Failure  kUsage
void CheckIndex(int index, int amount, const std::string& what);
}  // namespace ctl
