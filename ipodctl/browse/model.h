/// @file
/// The browser's state and its reaction to keys, independent of terminal and bus.
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

/// A level of the database that has been entered.
struct Level
{
    std::string title;        ///< name of its entry in the parent level
    int place = 0;            ///< index of its entry in the parent level
    bool counted = false;     ///< the number of names is known
    bool unreadable = false;  ///< loading failed; missing names will not arrive
    bool folders = false;     ///< its entries can be entered rather than played
    LevelNames names;
    ListCursor cursor;
    std::optional<ipodnames::JumpIndex> index;  ///< empty until it is built
};

/// A request to the service that a key asks for.
struct Action
{
    enum class Kind
    {
        Nothing,
        Open,  ///< enter or play an entry
        Back,
        Reload,
        TogglePause,
        Next,
        Previous,
    };

    Kind kind = Kind::Nothing;
    int entry = -1;  ///< Kind::Open only
};

/// Incremental search: once the query is not empty, only matching names are listed.
struct Search
{
    std::string query;
    std::vector<int> found;
    ListCursor cursor;  ///< row within found
};

/// Type-ahead: letters typed in the list select the first match.
struct Jump
{
    std::string query;
    bool matches = true;
    Time until;
};

class Model
{
public:
    static constexpr std::size_t kMaxMatches = 1000;
    static constexpr int kHelpLines = 9;

    Model() : m_levels(1) {}

    /// Sets the number of visible list rows.
    void SetHeight(int rows);
    int Height() const { return m_height; }

    /// @name The user
    /// @{
    Action Press(const KeyPress& press, Time now);

    /// Returns whether @p press refers to a match of a query while the index is still being built.
    bool NeedsIndex(const KeyPress& press) const;

    /// Ends type-ahead and removes the message once their time is over.
    void Tick(Time now);
    /// @}

    /// @name The levels; the first is the root and always exists
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
    int Rows() const;            ///< of the level, or of the search results
    int EntryAt(int row) const;  ///< index within the level, -1 if the row does not exist
    const ListCursor& Cursor() const;
    int Selected() const;  ///< index of the entry under the cursor, -1 if the list is empty
    const std::optional<Search>& Searching() const { return m_search; }
    const std::optional<Jump>& Jumping() const { return m_jump; }
    const std::optional<int>& Help() const { return m_help; }  ///< first visible line of the help, if shown
    const std::string& Message() const { return m_message; }
    void ShowMessage(const std::string& message, Time now);
    /// @}

    ipodkit::StatePtr state = std::make_shared<ipodkit::PlayerState>();
    ipodkit::Connection connection;
    std::string device;                ///< name of the device
    std::optional<Time> waitingSince;  ///< start of the oldest unanswered request

private:
    Level& Top() { return m_levels.back(); }
    bool IsFiltered() const { return m_search && !m_search->query.empty(); }
    ListCursor& ActiveCursor() { return IsFiltered() ? m_search->cursor : Top().cursor; }
    bool Navigate(Key key);
    void ScrollHelp(Key key);
    Action PressInList(const KeyPress& press, Time now);
    Action PressCharacter(const std::string& text, Time now);
    Action PressBackspace(Time now);
    Action PressInSearch(const KeyPress& press);
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
