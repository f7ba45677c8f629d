/// @file
/// What the browser knows and what it does with keys; nothing of terminals, nothing of the bus.
#pragma once

#include <ipodkit/pager.h>
#include <ipodkit/player_state.h>
#include <ipodkit/session.h>
#include <ipodnames/jump_index.h>

#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include "browse/key.h"
#include "browse/level_names.h"
#include "browse/list_cursor.h"

namespace ctl::browse
{
using Time = std::chrono::steady_clock::time_point;

/// A level of the database, from the moment on in which it was entered.
struct Level
{
    std::string title;  ///< the name of the entry that was entered
    int place = 0;      ///< and its index in the level above
    bool counted = false;
    bool unreadable = false;  ///< what is missing of it does not come
    bool folders = false;
    LevelNames names;
    ListCursor cursor;
    std::optional<ipodnames::JumpIndex> index;  ///< as soon as it is built
};

/// What shall be asked of the service.
struct Wish
{
    enum class What
    {
        Nothing,
        Open,  ///< enter or play an entry
        Back,
        Reload,
        TogglePause,
        Next,
        Previous,
    };

    What what = What::Nothing;
    int entry = -1;  ///< What::Open only
};

/// Looking for names with a line of its own: once something is typed, only those that match are listed.
struct Search
{
    std::string query;
    std::vector<int> found;
    ListCursor cursor;  ///< among those found
};

/// Jumping by what is typed in the list itself.
struct Jump
{
    std::string query;
    bool matches = true;
    Time until;
};

class Model
{
public:
    static constexpr std::size_t kMostMatches = 1000;
    static constexpr int kHelpLines = 9;

    Model() : m_levels(1) {}

    /// Rows that the list has on the screen.
    void SetHeight(int rows);
    int Height() const { return m_height; }

    /// @name The user
    /// @{
    Wish Press(const KeyPress& press, Time now);

    /// Whether a key means an entry that only the index will find, which is not there yet.
    bool NeedsIndex(const KeyPress& press) const;

    /// Forgets what was to be seen for a while only.
    void Tick(Time now);
    /// @}

    /// @name The levels. There is always one, the root.
    /// @{
    const Level& Current() const { return m_levels.back(); }
    const std::vector<Level>& Levels() const { return m_levels; }
    bool AtRoot() const { return m_levels.size() == 1; }

    void Enter(const std::string& title, int place, ListCursor cursor = {});
    void Leave();
    void LeaveAll();

    void SetCount(int count);
    void SetUnreadable() { Top().unreadable = true; }
    void Put(const ipodkit::Page& page);
    void SetIndex(ipodnames::JumpIndex index);
    /// @}

    /// @name What is shown
    /// @{
    int Rows() const;            ///< of the list, or of those found
    int EntryAt(int row) const;  ///< index within the level
    const ListCursor& Cursor() const;
    int Selected() const;  ///< the entry under the cursor, -1 when there is none
    const std::optional<Search>& Searching() const { return m_search; }
    const std::optional<Jump>& Jumping() const { return m_jump; }
    const std::optional<int>& Help() const { return m_help; }  ///< its first line, when it is shown
    const std::string& Message() const { return m_message; }
    void Say(const std::string& message, Time now);
    /// @}

    ipodkit::StatePtr state = std::make_shared<ipodkit::PlayerState>();
    ipodkit::Connection connection;
    std::string device;                ///< its name
    std::optional<Time> waitingSince;  ///< when the service was asked what it has not answered yet

private:
    Level& Top() { return m_levels.back(); }
    bool IsFiltered() const { return m_search && !m_search->query.empty(); }
    ListCursor& ActiveCursor() { return IsFiltered() ? m_search->cursor : Top().cursor; }
    bool Navigate(Key key);
    void ScrollHelp(Key key);
    Wish PressInList(const KeyPress& press, Time now);
    Wish PressCharacter(const std::string& text, Time now);
    Wish PressBackspace(Time now);
    Wish PressInSearch(const KeyPress& press);
    void Find();
    void SelectInList(int entry);
    void JumpTo(std::string query, Time now);
    int FirstMatch(const std::string& query) const;
    void EndModes();

    std::vector<Level> m_levels;
    std::optional<Search> m_search;
    std::optional<Jump> m_jump;
    std::optional<int> m_help;
    std::string m_message;
    Time m_messageUntil;
    int m_height = 1;
};
}  // namespace ctl::browse
