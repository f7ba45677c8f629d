/// @file
/// The browser's state and its reaction to keys, independent of terminal and bus.
#pragma once

#include <ipodkit/pager.h>
#include <ipodkit/player_state.h>
#include <ipodkit/session.h>
#include <ipodnames/jump_index.h>

#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace ctl::browse
{
/// The selected row and the scroll position of a list.
struct ListCursor
{
    int at = 0;   ///< the selected row
    int top = 0;  ///< the first visible row
};

/// Selects row @p to, clamped to the list of @p count rows, and scrolls just enough to show it among @p height rows.
ListCursor Moved(ListCursor cursor, int to, int count, int height);

/// Like Moved(), but centers the row if it was not visible, to show its surroundings.
ListCursor Jumped(ListCursor cursor, int to, int count, int height);

/// Keys, independent of the terminal.
enum class Key
{
    Text,  ///< a character
    Up,
    Down,
    PageUp,
    PageDown,
    Home,
    End,
    Left,
    Right,
    Enter,
    Backspace,
    Escape,
    Refresh,  ///< Ctrl-L
};

struct KeyPress
{
    Key key;
    std::string text;  ///< Key::Text only: the character, UTF-8
};

using Time = std::chrono::steady_clock::time_point;

/// The names of a level while they are loaded, page by page and in any order. Shares the pages with the pager.
class LevelNames
{
public:
    static constexpr int kPageSize = 250;

    /// Starts over with @p count unknown entries.
    void Reset(int count);

    /// Marks all pages for loading again. At() keeps returning the old names until then.
    void MarkStale() { m_loaded.assign(m_pages.size(), false); }

    int Count() const { return m_count; }
    int Loaded() const;  ///< number of entries that are loaded
    bool IsLoaded(int index) const;
    bool Complete() const { return NextMissing(0, 0) < 0; }

    /// Returns the name, which may be stale; null if it is unknown or @p index is out of range.
    const std::string* At(int index) const;

    /// Stores a page of kPageSize entries; ignores one outside the level.
    /// @return whether any name changed
    bool Put(ipodkit::PagePtr page);

    /// Returns an entry of the page to load next: the first missing one of @p rows entries starting at @p first, or
    /// else the first missing one of the level; -1 if the level is complete.
    int NextMissing(int first, int rows) const;

    /// Returns the index of @p name, trying @p likely first; -1 if no entry has this name.
    int Find(const std::string& name, int likely) const;

    /// Returns copies of all names, empty where they are unknown.
    std::vector<std::string> All() const;

private:
    int LoadedIn(std::size_t page) const;

    int m_count = 0;
    std::vector<ipodkit::PagePtr> m_pages;  // null if unknown
    std::vector<bool> m_loaded;             // false for pages that are unknown or stale
};

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
    void Put(const ipodkit::PagePtr& page);
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
