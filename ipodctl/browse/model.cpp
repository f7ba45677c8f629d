#include "browse/model.h"

#include <algorithm>

namespace ctl::browse
{
ListCursor Moved(ListCursor cursor, int to, int count, int height)
{
    const int rows = std::max(1, height);
    const int at = std::clamp(to, 0, std::max(0, count - 1));
    const int highest = std::max(0, count - rows);
    return {at, std::clamp(std::clamp(cursor.top, at - rows + 1, at), 0, highest)};
}

ListCursor Jumped(ListCursor cursor, int to, int count, int height)
{
    const bool shown = to >= cursor.top && to < cursor.top + height;
    return Moved({to, shown ? cursor.top : to - height / 2}, to, count, height);
}

namespace
{
constexpr std::chrono::seconds kJumpTimeout{2};
constexpr std::chrono::seconds kMessageTimeout{5};

bool IsContinuation(char byte)
{
    return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
}

void DropLastCharacter(std::string& text)
{
    while (!text.empty() && IsContinuation(text.back())) text.pop_back();
    if (!text.empty()) text.pop_back();
}
}  // namespace

void LevelNames::Reset(int count)
{
    m_count = std::max(0, count);
    m_pages.assign(static_cast<std::size_t>((m_count + kPageSize - 1) / kPageSize), nullptr);
    MarkStale();
}

// Fewer than the page has entries if the list became shorter between two requests.
int LevelNames::LoadedIn(std::size_t page) const
{
    return m_loaded[page] ? static_cast<int>(m_pages[page]->names.size()) : 0;
}

int LevelNames::Loaded() const
{
    int loaded = 0;
    for (std::size_t page = 0; page < m_pages.size(); ++page) loaded += LoadedIn(page);
    return std::min(loaded, m_count);
}

bool LevelNames::IsLoaded(int index) const
{
    return At(index) != nullptr && m_loaded[static_cast<std::size_t>(index / kPageSize)];
}

const std::string* LevelNames::At(int index) const
{
    if (index < 0 || index >= m_count) return nullptr;
    const ipodkit::PagePtr& page = m_pages[static_cast<std::size_t>(index / kPageSize)];
    return page != nullptr && page->Holds(index) ? &page->At(index) : nullptr;
}

bool LevelNames::Put(ipodkit::PagePtr page)
{
    const auto number = static_cast<std::size_t>(page->first / kPageSize);
    if (page->first < 0 || number >= m_pages.size()) return false;
    const bool changed = m_pages[number] == nullptr || m_pages[number]->names != page->names;
    m_pages[number] = std::move(page);
    m_loaded[number] = true;
    return changed;
}

int LevelNames::NextMissing(int first, int rows) const
{
    const int end = std::min(first + rows, m_count);
    for (int index = std::max(0, first); index < end; ++index)
        if (!IsLoaded(index)) return index;
    for (int page = 0; page < static_cast<int>(m_pages.size()); ++page)
    {
        const int loaded = LoadedIn(static_cast<std::size_t>(page));
        const int missing = page * kPageSize + loaded;
        if (loaded < kPageSize && missing < m_count) return missing;
    }
    return -1;
}

int LevelNames::Find(const std::string& name, int likely) const
{
    const auto isThere = [&](int index)
    {
        const std::string* const there = At(index);
        return there != nullptr && *there == name;
    };
    if (isThere(likely)) return likely;
    for (int index = 0; index < m_count; ++index)
        if (isThere(index)) return index;
    return -1;
}

std::vector<std::string> LevelNames::All() const
{
    std::vector<std::string> names(static_cast<std::size_t>(m_count));
    for (int index = 0; index < m_count; ++index)
        if (const std::string* const name = At(index)) names[static_cast<std::size_t>(index)] = *name;
    return names;
}

void Model::SetHeight(int rows)
{
    m_height = std::max(1, rows);
    Level& level = Top();
    if (level.counted) level.cursor = Moved(level.cursor, level.cursor.at, level.names.Count(), m_height);
    if (IsFiltered()) m_search->cursor = Moved(m_search->cursor, m_search->cursor.at, Rows(), m_height);
}

Action Model::Press(const KeyPress& press, Time now)
{
    m_message.clear();
    if (press.key == Key::Refresh) return {Action::Kind::Reload};
    if (m_help)
    {
        ScrollHelp(press.key);
        return {};
    }
    return m_search ? PressInSearch(press) : PressInList(press, now);
}

bool Model::NeedsIndex(const KeyPress& press) const
{
    const bool opens = press.key == Key::Enter || press.key == Key::Right;
    return opens && !Current().index && (m_jump || IsFiltered());
}

// Without an index the jump is still pending, so it does not time out.
void Model::Tick(Time now)
{
    if (m_jump && now >= m_jump->until && Current().index) m_jump.reset();
    if (now >= m_messageUntil) m_message.clear();
}

// Any other key closes the help.
void Model::ScrollHelp(Key key)
{
    if (key == Key::Down)
        *m_help = std::min(*m_help + 1, std::max(0, kHelpLines - m_height));
    else if (key == Key::Up)
        *m_help = std::max(0, *m_help - 1);
    else
        m_help.reset();
}

bool Model::Navigate(Key key)
{
    ListCursor& cursor = ActiveCursor();
    const auto go = [&](int to)
    {
        cursor = Moved(cursor, to, Rows(), m_height);
        return true;
    };
    switch (key)
    {
        case Key::Up:
            return go(cursor.at - 1);
        case Key::Down:
            return go(cursor.at + 1);
        case Key::PageUp:
            return go(cursor.at - m_height);
        case Key::PageDown:
            return go(cursor.at + m_height);
        case Key::Home:
            return go(0);
        case Key::End:
            return go(Rows() - 1);
        default:
            return false;
    }
}

Action Model::PressInList(const KeyPress& press, Time now)
{
    if (press.key == Key::Text) return PressCharacter(press.text, now);
    if (press.key == Key::Backspace) return PressBackspace(now);
    const bool wasJumping = m_jump.has_value();
    m_jump.reset();
    if (Navigate(press.key)) return {};
    if (press.key == Key::Enter || press.key == Key::Right) return {Action::Kind::Open, Selected()};
    if (press.key == Key::Escape && wasJumping) return {};
    return {Action::Kind::Back};
}

Action Model::PressCharacter(const std::string& text, Time now)
{
    if (text == " ") return {Action::Kind::TogglePause};
    if (text == ">") return {Action::Kind::Next};
    if (text == "<") return {Action::Kind::Previous};
    if (text == "?")
        m_help = 0;
    else if (text == "/")
    {
        m_jump.reset();
        m_search = Search{};
    }
    else
        JumpTo((m_jump ? m_jump->query : std::string()) + text, now);
    return {};
}

// Deletes the last letter of a jump; otherwise goes back one level.
Action Model::PressBackspace(Time now)
{
    if (!m_jump) return {Action::Kind::Back};
    std::string query = m_jump->query;
    DropLastCharacter(query);
    m_jump.reset();
    if (!query.empty()) JumpTo(std::move(query), now);
    return {};
}

Action Model::PressInSearch(const KeyPress& press)
{
    if (Navigate(press.key)) return {};
    const bool end =
        press.key == Key::Escape || press.key == Key::Left || (press.key == Key::Backspace && m_search->query.empty());
    if (press.key == Key::Enter || press.key == Key::Right)
    {
        SelectInList(Selected());
        return {Action::Kind::Open, Selected()};
    }
    if (end)
    {
        m_search.reset();
        return {};
    }
    if (press.key == Key::Backspace)
        DropLastCharacter(m_search->query);
    else
        m_search->query += press.text;
    Find();
    return {};
}

void Model::Find()
{
    m_search->found = Top().index ? Top().index->Search(m_search->query, kMaxMatches) : std::vector<int>();
    m_search->cursor = {};
}

void Model::SelectInList(int entry)
{
    if (entry >= 0) Top().cursor = Jumped(Top().cursor, entry, Top().names.Count(), m_height);
}

int Model::FirstMatch(const std::string& query) const
{
    if (!Current().index) return -1;
    const std::vector<int> found = Current().index->Search(query, 1);
    return found.empty() ? -1 : found.front();
}

void Model::JumpTo(std::string query, Time now)
{
    const int entry = FirstMatch(query);
    m_jump = Jump{std::move(query), entry >= 0, now + kJumpTimeout};
    SelectInList(entry);
}

void Model::EndModes()
{
    m_search.reset();
    m_jump.reset();
}

void Model::Enter(const std::string& title, int place, ListCursor cursor)
{
    EndModes();
    Level level;
    level.title = title;
    level.place = place;
    level.cursor = cursor;
    m_levels.push_back(std::move(level));
}

void Model::Leave()
{
    EndModes();
    if (!AtRoot()) m_levels.pop_back();
    Top().names.MarkStale();
    SetHeight(m_height);
}

void Model::LeaveAll()
{
    EndModes();
    m_levels.erase(m_levels.begin() + 1, m_levels.end());
    Top().names.MarkStale();
    SetHeight(m_height);
}

// With an unchanged count, the old names stay visible until their pages arrive.
void Model::SetCount(int count)
{
    Level& level = Top();
    level.counted = true;
    level.unreadable = false;
    if (count == level.names.Count()) return;
    level.names.Reset(count);
    level.index.reset();
    level.cursor = Moved(level.cursor, level.cursor.at, count, m_height);
    if (m_search) Find();
}

void Model::Put(const ipodkit::PagePtr& page)
{
    Level& level = Top();
    level.folders = page->folders;
    if (!level.names.Put(page)) return;
    level.index.reset();
    if (m_search) Find();
}

// Applies the query typed while the index was being built.
void Model::SetIndex(ipodnames::JumpIndex index)
{
    Top().index = std::move(index);
    if (m_search) Find();
    if (m_jump) JumpTo(m_jump->query, m_jump->until - kJumpTimeout);
}

int Model::Rows() const
{
    return IsFiltered() ? static_cast<int>(m_search->found.size()) : Current().names.Count();
}

int Model::EntryAt(int row) const
{
    if (row < 0 || row >= Rows()) return -1;
    return IsFiltered() ? m_search->found[static_cast<std::size_t>(row)] : row;
}

const ListCursor& Model::Cursor() const
{
    return IsFiltered() ? m_search->cursor : Current().cursor;
}

int Model::Selected() const
{
    return EntryAt(Cursor().at);
}

void Model::ShowMessage(const std::string& message, Time now)
{
    m_message = message;
    m_messageUntil = now + kMessageTimeout;
}
}  // namespace ctl::browse
