#include "browse/walker.h"

#include <gio/gio.h>
#include <glib.h>

#include <memory>
#include <optional>

#include "output/failure.h"

namespace ctl::browse
{
struct IndexBuilder::Job
{
    IndexBuilder& builder;
    std::vector<std::string> names;
    ipodnames::JumpIndexOptions options;
    Completion completion;
    std::optional<ipodnames::JumpIndex> index;

    static void Run(GTask* task, gpointer, gpointer data, GCancellable*)
    {
        auto& job = *static_cast<Job*>(data);
        job.index.emplace(job.names, job.options);
        g_task_return_boolean(task, TRUE);
    }

    static void Done(GObject*, GAsyncResult* task, gpointer)
    {
        const auto& job = *static_cast<Job*>(g_task_get_task_data(G_TASK(task)));
        --job.builder.m_running;
        job.completion(*job.index);
    }

    static void Delete(gpointer data) { delete static_cast<Job*>(data); }
};

IndexBuilder::~IndexBuilder()
{
    while (m_running > 0) g_main_context_iteration(nullptr, TRUE);
}

void IndexBuilder::Build(std::vector<std::string> names, std::vector<std::string> readings, Completion completion)
{
    ++m_running;
    GTask* const task = g_task_new(nullptr, nullptr, Job::Done, nullptr);
    auto job = std::make_unique<Job>(Job{*this, std::move(names), {}, std::move(completion), std::nullopt});
    job->options.readings = std::move(readings);
    g_task_set_task_data(task, job.release(), Job::Delete);
    g_task_run_in_thread(task, Job::Run);
    g_object_unref(task);
}

namespace
{
constexpr int kMaxReentries = 3;

// Minimal caches: the model shares the pages.
constexpr ipodkit::PagerOptions kNames{LevelNames::kPageSize, 1, 0};
constexpr ipodkit::PagerOptions kOneEntry{1, 1, 0};

bool AreAscii(const LevelNames& names)
{
    int index = 0;
    while (index < names.Count() && g_str_is_ascii(names.At(index)->c_str()) != FALSE) ++index;
    return index == names.Count();
}
}  // namespace

bool IsServiceLost(const ipodkit::Error& error)
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

// Like WhileCurrent(), and shows that the service is being waited for.
template <class T>
std::function<void(const ipodkit::Result<T>&)> Walker::Awaited(std::function<void(const ipodkit::Result<T>&)> arrived)
{
    m_waitingSince = std::chrono::steady_clock::now();
    return WhileCurrent<T>(
        [this, arrived = std::move(arrived)](const ipodkit::Result<T>& result)
        {
            m_waitingSince.reset();
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
    m_waitingSince.reset();
}

void Walker::ShowMessage(const std::string& message)
{
    m_model.ShowMessage(message, std::chrono::steady_clock::now());
    m_changed();
}

void Walker::Failed(const ipodkit::Error& error)
{
    m_moving = false;
    m_reading = false;
    if (!IsServiceLost(error)) ShowMessage(ToFailure(error).what());
}

void Walker::Unreadable(const ipodkit::Error& error)
{
    if (!IsServiceLost(error)) m_model.SetUnreadable();
    Failed(error);
}

void Walker::Reload()
{
    m_reentries = 0;
    Restart();
}

void Walker::Restart()
{
    BeginStep();
    // A path that is still being restored is kept.
    const auto& levels = m_model.Levels();
    for (std::size_t depth = levels.size() - 1; depth > 0; --depth)
        m_path.push_front({levels[depth].title, levels[depth].place, levels[depth].cursor});
    m_path.insert(m_path.end(), m_pendingPath.begin(), m_pendingPath.end());
    m_pendingPath.clear();
    m_model.LeaveAll();
    m_names.EnterRoot().Start(Awaited<void>([this](const ipodkit::Result<void>& done) { RootEntered(done); }));
}

// Without a database the service answers "false" to the root; an error may have any reason.
void Walker::RootEntered(const ipodkit::Result<void>& done)
{
    if (!done && done.error().kind == ipodkit::ErrorKind::Refused && done.error().name.empty())
    {
        Stop();
        ClearPath();
        m_model.SetCount(0);
        return ShowMessage("no music database; is a device attached?");
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

// Gives up on a service whose answers keep contradicting each other.
void Walker::Reenter(const std::string& why)
{
    if (++m_reentries > kMaxReentries)
    {
        Stop();
        m_model.SetUnreadable();
        return ShowMessage(why + "; press Ctrl-L to retry");
    }
    Restart();
    ShowMessage(why + "; returning");
}

// Nothing is shown before the first names arrive, to avoid flicker.
void Walker::ReadLevel()
{
    m_names.Count().Start(Awaited<int>(
        [this](const ipodkit::Result<int>& count)
        {
            if (!count) return Unreadable(count.error());
            m_model.SetCount(*count);
            ReadNext();
        }));
}

// Loads the visible names first, then the rest; while a path is being restored, its next entry.
void Walker::ReadNext()
{
    if (DescendPath()) return;
    const LevelNames& names = m_model.Current().names;
    const int seen = m_path.empty() ? m_model.Current().cursor.top : m_path.front().place;
    const int missing = names.NextMissing(seen, m_path.empty() ? m_model.Height() : 1);
    if (missing < 0)
    {
        m_readings.clear();
        return ReadReadings();
    }
    m_reading = true;
    m_names.At(missing).Start(
        Awaited<ipodkit::PagePtr>([this](const ipodkit::Result<ipodkit::PagePtr>& page) { PageArrived(page); }));
}

void Walker::PageArrived(const ipodkit::Result<ipodkit::PagePtr>& page)
{
    if (!page && page.error().kind != ipodkit::ErrorKind::BadReply) return Unreadable(page.error());
    if (!page || !Belongs(**page)) return Reenter("another program changed the level");
    m_model.Put(*page);
    m_moving = !m_path.empty();
    m_changed();
    ReadNext();
}

bool Walker::Belongs(const ipodkit::Page& page) const
{
    return page.root == m_model.AtRoot();
}

// Returns whether a level is being entered.
bool Walker::DescendPath()
{
    if (m_path.empty()) return false;
    const LevelNames& names = m_model.Current().names;
    const Stage stage = m_path.front();
    const std::string* const there = names.At(stage.place);
    const bool known = names.Complete() || (names.IsLoaded(stage.place) && there != nullptr && *there == stage.title);
    if (!known) return false;
    const int place = names.Find(stage.title, stage.place);
    if (place >= 0)
    {
        m_path.pop_front();
        Descend(place, stage.title, stage.cursor);
        return true;
    }
    PostponePath();
    m_moving = false;
    ShowMessage("'" + stage.title + "' no longer exists");
    return false;
}

void Walker::PostponePath()
{
    m_pendingPath = std::move(m_path);
    m_path.clear();
}

void Walker::ClearPath()
{
    m_path.clear();
    m_pendingPath.clear();
}

void Walker::Descend(int entry, const std::string& title, ListCursor cursor)
{
    BeginStep();
    m_names.EnterChild(entry).Start(Awaited<void>(
        [=](const ipodkit::Result<void>& done)
        {
            if (done)
            {
                m_model.Enter(title, entry, cursor);
                return ReadLevel();
            }
            PostponePath();
            Failed(done.error());
            ReadNext();
        }));
}

void Walker::Back()
{
    if (IsMoving()) return;
    if (m_model.AtRoot()) return ShowMessage("already at the top level; Ctrl-C quits");
    m_reentries = 0;
    ClearPath();
    BeginStep();
    m_names.EnterParent().Start(Awaited<void>(
        [this](const ipodkit::Result<void>& done)
        {
            if (!done) return Reenter("another program changed the level");
            m_model.Leave();
            ReadLevel();
        }));
}

void Walker::Open(int entry)
{
    if (IsMoving() || m_model.Current().names.At(entry) == nullptr) return;
    m_reentries = 0;
    ClearPath();
    m_opening = true;
    m_check.Refresh();
    m_check.At(entry).Start(Awaited<ipodkit::PagePtr>([this, entry](const ipodkit::Result<ipodkit::PagePtr>& page)
                                                      { EntryChecked(entry, page); }));
}

// BadArgument means that the level has become shorter than the entry's index.
void Walker::EntryChecked(int entry, const ipodkit::Result<ipodkit::PagePtr>& page)
{
    m_opening = false;
    const std::string* const name = m_model.Current().names.At(entry);
    const bool answered = page || page.error().kind == ipodkit::ErrorKind::BadReply ||
                          page.error().kind == ipodkit::ErrorKind::BadArgument;
    if (!answered) return Failed(page.error());
    if (!page || name == nullptr || !Belongs(**page) || (*page)->At(entry) != *name)
        return Reenter("another program changed the level");
    if ((*page)->folders) return Descend(entry, std::string(*name), {});
    m_play(entry);
}

// Loads the service's readings if any name is not ASCII. The index derives those that are missing.
void Walker::ReadReadings()
{
    m_moving = false;
    m_reading = !m_model.Current().index && m_model.Current().names.Count() > 0;
    m_changed();
    if (!m_reading) return;
    const LevelNames& names = m_model.Current().names;
    const bool needed = m_readings.empty() ? !AreAscii(names) : ReadingCount() < names.Count();
    if (!needed) return BuildIndex();
    m_pinyin.At(ReadingCount())
        .Start(Awaited<ipodkit::PagePtr>([this](const ipodkit::Result<ipodkit::PagePtr>& page)
                                         { ReadingsArrived(page); }));
}

void Walker::ReadingsArrived(const ipodkit::Result<ipodkit::PagePtr>& page)
{
    if (!page || !(*page)->Holds(ReadingCount())) return BuildIndex();
    while ((*page)->Holds(ReadingCount())) m_readings.push_back((*page)->At(ReadingCount()));
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
