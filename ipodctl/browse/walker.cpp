#include "browse/walker.h"

#include <glib.h>

#include <algorithm>

#include "output/failure.h"

namespace ctl::browse
{
namespace
{
constexpr int kPageSize = 250;
constexpr int kMostRejoins = 3;

// The names are kept by the model.
constexpr ipodkit::PagerOptions kNames{kPageSize, 1, 0};
constexpr ipodkit::PagerOptions kOneEntry{1, 1, 0};

bool AreAscii(const std::vector<std::string>& names)
{
    return std::all_of(names.begin(), names.end(),
                       [](const std::string& name) { return g_str_is_ascii(name.c_str()); });
}
}  // namespace

bool IsOfNoService(const ipodkit::Error& error)
{
    return error.kind == ipodkit::ErrorKind::NoService || error.kind == ipodkit::ErrorKind::ServiceLost;
}

Walker::Walker(ipodkit::Session& session, Model& model, std::function<void()> changed, Play play)
    : m_model(model),
      m_changed(std::move(changed)),
      m_play(std::move(play)),
      m_commands(session.Commands()),
      m_names(session, ipodkit::ListKind::Database, kNames),
      m_check(session, ipodkit::ListKind::Database, kOneEntry),
      m_pinyin(session, ipodkit::ListKind::DatabasePinyin, kNames),
      m_devices(session.OnEvent("browse",
                                [this](const ipodkit::Event& event)
                                {
                                    if (std::holds_alternative<ipodkit::DeviceChanged>(event)) Restart();
                                }))
{
}

Walker::~Walker()
{
    Stop();
}

template <class T>
std::function<void(const ipodkit::Result<T>&)> Walker::WhileCurrent(
    std::function<void(const ipodkit::Result<T>&)> arrived)
{
    return [current = std::weak_ptr<unsigned>(m_step), step = *m_step,
            arrived = std::move(arrived)](const ipodkit::Result<T>& result)
    {
        const auto now = current.lock();
        if (now != nullptr && *now == step) arrived(result);
    };
}

// The same, and until then the service is waited for.
template <class T>
std::function<void(const ipodkit::Result<T>&)> Walker::Asked(std::function<void(const ipodkit::Result<T>&)> arrived)
{
    m_askedAt = std::chrono::steady_clock::now();
    return WhileCurrent<T>(
        [this, arrived = std::move(arrived)](const ipodkit::Result<T>& result)
        {
            m_askedAt.reset();
            arrived(result);
        });
}

void Walker::BeginStep()
{
    ++*m_step;
    m_opening = false;
    m_moving = true;
}

void Walker::Stop()
{
    ++*m_step;
    m_opening = false;
    m_moving = false;
    m_reading = false;
    m_askedAt.reset();
}

void Walker::Say(const std::string& message)
{
    m_model.Say(message, std::chrono::steady_clock::now());
    m_changed();
}

void Walker::Failed(const ipodkit::Error& error)
{
    m_moving = false;
    m_reading = false;
    if (!IsOfNoService(error)) Say(ToFailure(error).what());
}

void Walker::Unreadable(const ipodkit::Error& error)
{
    if (!IsOfNoService(error)) m_model.SetUnreadable();
    Failed(error);
}

void Walker::Reload()
{
    m_rejoined = 0;
    Restart();
}

void Walker::Restart()
{
    BeginStep();
    // A way that was not walked to its end yet is still the way.
    const auto& levels = m_model.Levels();
    for (std::size_t depth = levels.size() - 1; depth > 0; --depth)
        m_way.push_front({levels[depth].title, levels[depth].place, levels[depth].cursor});
    m_way.insert(m_way.end(), m_unreached.begin(), m_unreached.end());
    m_unreached.clear();
    m_model.LeaveAll();
    m_names.EnterRoot().Start(Asked<void>([this](const ipodkit::Result<void>& done) { RootEntered(done); }));
}

// What answers "false" to its root has no database at all; an error may mean anything.
void Walker::RootEntered(const ipodkit::Result<void>& done)
{
    if (!done && done.error().kind == ipodkit::ErrorKind::Refused && done.error().name.empty())
    {
        Stop();
        ForgetTheWay();
        m_model.SetCount(0);
        return Say("there is no database to show; is a device attached?");
    }
    if (!done) return Unreadable(done.error());
    m_commands.IpodName().Start(WhileCurrent<std::string>(
        [this](const ipodkit::Result<std::string>& name)
        {
            m_model.device = name.value_or("");
            m_changed();
        }));
    ReadLevel();
}

// A service that always contradicts itself is not asked for ever.
void Walker::Rejoin(const std::string& why)
{
    if (++m_rejoined > kMostRejoins)
    {
        Stop();
        m_model.SetUnreadable();
        return Say(why + "; Ctrl-L tries again");
    }
    Restart();
    Say(why + "; returning");
}

// Nothing is shown before the first names are there: it would only flicker.
void Walker::ReadLevel()
{
    m_names.Count().Start(Asked<int>(
        [this](const ipodkit::Result<int>& count)
        {
            if (!count) return Unreadable(count.error());
            m_model.SetCount(*count);
            ReadOn();
        }));
}

// What can be seen comes first, then the rest; on the way to another level, what leads there.
void Walker::ReadOn()
{
    if (WalkOn()) return;
    const LevelNames& names = m_model.Current().names;
    const int seen = m_way.empty() ? m_model.Current().cursor.top : m_way.front().place;
    const int missing = names.Missing(seen, m_way.empty() ? m_model.Height() : 1);
    if (missing < 0)
    {
        m_readings.clear();
        return ReadReadings();
    }
    m_reading = true;
    m_names.At(missing).Start(
        Asked<ipodkit::PagePtr>([this](const ipodkit::Result<ipodkit::PagePtr>& page) { PageArrived(page); }));
}

void Walker::PageArrived(const ipodkit::Result<ipodkit::PagePtr>& page)
{
    if (!page && page.error().kind != ipodkit::ErrorKind::BadReply) return Unreadable(page.error());
    if (!page || !Belongs(**page)) return Rejoin("another program changed the level");
    m_model.Put(**page);
    m_moving = !m_way.empty();
    m_changed();
    ReadOn();
}

bool Walker::Belongs(const ipodkit::Page& page) const
{
    return page.root == m_model.AtRoot();
}

// True when a level is being entered.
bool Walker::WalkOn()
{
    if (m_way.empty()) return false;
    const LevelNames& names = m_model.Current().names;
    const Stage stage = m_way.front();
    const std::string* const there = names.At(stage.place);
    const bool known =
        names.Complete() || (names.Missing(stage.place, 1) != stage.place && there != nullptr && *there == stage.title);
    if (!known) return false;
    const int place = names.Find(stage.title, stage.place);
    if (place >= 0)
    {
        m_way.pop_front();
        Descend(place, stage.title, stage.cursor);
        return true;
    }
    PutOffTheWay();
    m_moving = false;
    Say("'" + stage.title + "' is not there any more");
    return false;
}

void Walker::PutOffTheWay()
{
    m_unreached = std::move(m_way);
    m_way.clear();
}

void Walker::ForgetTheWay()
{
    m_way.clear();
    m_unreached.clear();
}

void Walker::Descend(int entry, const std::string& title, ListCursor cursor)
{
    BeginStep();
    m_names.EnterChild(entry).Start(Asked<void>(
        [=](const ipodkit::Result<void>& done)
        {
            if (done)
            {
                m_model.Enter(title, entry, cursor);
                return ReadLevel();
            }
            PutOffTheWay();
            Failed(done.error());
            ReadOn();
        }));
}

void Walker::Back()
{
    if (IsMoving()) return;
    if (m_model.AtRoot()) return Say("this is the top; Ctrl-C quits");
    m_rejoined = 0;
    ForgetTheWay();
    BeginStep();
    m_names.EnterParent().Start(Asked<void>(
        [this](const ipodkit::Result<void>& done)
        {
            if (!done) return Rejoin("another program changed the level");
            m_model.Leave();
            ReadLevel();
        }));
}

void Walker::Open(int entry)
{
    if (IsMoving() || m_model.Current().names.At(entry) == nullptr) return;
    m_rejoined = 0;
    ForgetTheWay();
    m_opening = true;
    m_check.Refresh();
    m_check.At(entry).Start(Asked<ipodkit::PagePtr>([this, entry](const ipodkit::Result<ipodkit::PagePtr>& page)
                                                    { EntryChecked(entry, page); }));
}

// The size of the level is checked by the page: asking for an entry that is not there is a mistake.
void Walker::EntryChecked(int entry, const ipodkit::Result<ipodkit::PagePtr>& page)
{
    m_opening = false;
    const std::string* const name = m_model.Current().names.At(entry);
    const bool answered = page || page.error().kind == ipodkit::ErrorKind::BadReply ||
                          page.error().kind == ipodkit::ErrorKind::BadArgument;
    if (!answered) return Failed(page.error());
    if (!page || name == nullptr || !Belongs(**page) || (*page)->At(entry) != *name)
        return Rejoin("another program changed the level");
    if ((*page)->folders) return Descend(entry, std::string(*name), {});
    m_play(entry);
}

// The service's readings of names that are not ASCII. Where it has none, the index makes them.
void Walker::ReadReadings()
{
    m_moving = false;
    m_reading = !m_model.Current().index && m_model.Current().names.Count() > 0;
    m_changed();
    if (!m_reading) return;
    const LevelNames& names = m_model.Current().names;
    const bool needed = m_readings.empty() ? !AreAscii(names.All()) : NumberRead() < names.Count();
    if (!needed) return BuildIndex();
    m_pinyin.At(NumberRead())
        .Start(
            Asked<ipodkit::PagePtr>([this](const ipodkit::Result<ipodkit::PagePtr>& page) { ReadingsArrived(page); }));
}

void Walker::ReadingsArrived(const ipodkit::Result<ipodkit::PagePtr>& page)
{
    if (!page || !(*page)->Holds(NumberRead())) return BuildIndex();
    while ((*page)->Holds(NumberRead())) m_readings.push_back((*page)->At(NumberRead()));
    ReadReadings();
}

void Walker::BuildIndex()
{
    m_builder.Build(m_model.Current().names.All(), std::move(m_readings),
                    WhileCurrent<ipodnames::JumpIndex>(
                        [this](const ipodkit::Result<ipodnames::JumpIndex>& index)
                        {
                            m_reading = false;
                            m_model.SetIndex(*index);
                            m_changed();
                        }));
}
}  // namespace ctl::browse
