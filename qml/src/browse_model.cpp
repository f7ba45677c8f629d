#include "browse_model.h"

#include <ipodqml/session.h>

#include <QPointer>
#include <QThreadPool>

#include "value.h"

namespace ipodqml
{
namespace
{
constexpr ipodkit::PagerOptions kAllNames{250, 1, 0};
constexpr std::size_t kMatches = 1000;
constexpr int kIndexed = 200'000;  // names; longer lists have neither sections nor search
}  // namespace

BrowseModel::BrowseModel() : PagedModel(ipodkit::ListKind::Database)
{
    ipodkit::Session* const kit = Session::Instance().Kit();
    if (kit == nullptr) return;
    m_reader.emplace(*kit, ipodkit::ListKind::Database, kAllNames);
    // A new service starts at the top level.
    connect(&Session::Instance(), &Session::connectionChanged, this,
            [this]
            {
                if (Session::Instance().State()->phase == ipodkit::Phase::Lost) Moved({}, 0);
            });
}

std::optional<int> BrowseModel::EntryOf(int row) const
{
    if (row < 0 || row >= Rows()) return std::nullopt;
    return Searching() ? m_found[static_cast<std::size_t>(row)] : row;
}

const std::string* BrowseModel::NameOf(int entry) const
{
    if (m_index == nullptr) return PagedModel::NameOf(entry);
    return static_cast<std::size_t>(entry) < m_index->names.size() ? &m_index->names[static_cast<std::size_t>(entry)]
                                                                   : nullptr;
}

int BrowseModel::Rows() const
{
    return Searching() ? static_cast<int>(m_found.size()) : Entries();
}

void BrowseModel::open(int row)
{
    const std::optional<int> entry = EntryOf(row);
    if (!entry || m_moving || !m_foldersKnown || Names() == nullptr) return;
    if (m_folders)
        Enter(*entry);
    else
        Play(*entry);
}

void BrowseModel::Play(int entry)
{
    Session& session = Session::Instance();
    if (session.AcquireAudio())
        session.Send(QStringLiteral("play"), session.Kit()->Commands().PlayDatabaseEntry(entry));
}

void BrowseModel::Enter(int entry)
{
    const std::string* const name = NameOf(entry);
    if (name == nullptr) return;
    m_moving = true;
    Names()->EnterChild(entry).Start(
        [self = QPointer<BrowseModel>(this), entry, title = Text(*name)](const ipodkit::Result<void>& done)
        {
            if (self == nullptr) return;
            self->m_moving = false;
            if (!done) return Session::Instance().Report(QStringLiteral("open"), done.error()), self->Recount();
            self->m_places.push_back(entry);
            self->Moved(self->m_path + QStringList(title), 0);
        });
}

void BrowseModel::back()
{
    if (m_path.isEmpty() || m_moving || Names() == nullptr) return;
    m_moving = true;
    Names()->EnterParent().Start(
        [self = QPointer<BrowseModel>(this)](const ipodkit::Result<void>& done)
        {
            if (self == nullptr) return;
            self->m_moving = false;
            if (!done) return Session::Instance().Report(QStringLiteral("back"), done.error()), self->Recount();
            const int row = self->m_places.empty() ? 0 : self->m_places.back();
            if (!self->m_places.empty()) self->m_places.pop_back();
            self->Moved(self->m_path.mid(0, self->m_path.size() - 1), row);
        });
}

void BrowseModel::Moved(const QStringList& path, int row)
{
    m_path = path;
    if (path.isEmpty()) m_places.clear();
    m_index = nullptr;
    if (Searching())
    {
        m_query.clear();
        Q_EMIT queryChanged();
    }
    m_found.clear();
    Clear();
    Q_EMIT pathChanged();
    // The view can scroll only when the rows exist.
    connect(
        this, &PagedModel::countChanged, this, [this, row] { Q_EMIT levelChanged(row); }, Qt::SingleShotConnection);
    Recount();
}

// The level of this model changed, or the device or the service did. In the latter case the current level is the top
// one, unless another application has entered a level; its name is then unknown.
void BrowseModel::Outdated()
{
    if (m_moving) return;
    Session& session = Session::Instance();
    session.Kit()->Commands().AtRoot().Start(
        [self = QPointer<BrowseModel>(this)](const ipodkit::Result<bool>& root)
        {
            if (self == nullptr || self->m_moving) return;
            if (!root.value_or(true) || self->m_path.isEmpty()) return self->Recount();
            self->Moved({}, 0);
        });
}

void BrowseModel::Counting()
{
    ++m_lists;
    m_foldersKnown = false;
    m_reading.Cancel();
    m_index = nullptr;
    m_sections.clear();
    Q_EMIT indexed();
}

void BrowseModel::CountRead()
{
    if (const ipodkit::PagePtr first = Names()->Cached(0))
        PageRead(*first);
    else
        Want(0);
    if (Entries() > 0 && Entries() <= kIndexed) ReadAllNames();
}

void BrowseModel::PageRead(const ipodkit::Page& page)
{
    m_foldersKnown = true;
    if (m_folders == page.folders) return;
    m_folders = page.folders;
    Q_EMIT foldersChanged();
}

void BrowseModel::ReadAllNames()
{
    m_reading = ipodkit::Cancellation();
    m_reader->Range(0, ipodkit::Pager::End)
        .Within(std::chrono::minutes(1))
        .CancelledBy(m_reading)
        .Start(
            [self = QPointer<BrowseModel>(this), list = m_lists](ipodkit::Result<std::vector<std::string>> names)
            {
                if (self != nullptr && names && list == self->m_lists) self->BuildIndex(std::move(*names));
            });
}

void BrowseModel::BuildIndex(std::vector<std::string> names)
{
    auto build = [self = QPointer<BrowseModel>(this), session = &Session::Instance(), list = m_lists,
                  names = std::move(names)]() mutable
    {
        const ipodnames::JumpIndex index(names);
        const auto built = std::make_shared<const Index>(Index{std::move(names), index});
        const auto set = [self, list, built]
        {
            if (self != nullptr && list == self->m_lists) self->SetIndex(built);
        };
        QMetaObject::invokeMethod(session, set, Qt::QueuedConnection);
    };
    QThreadPool::globalInstance()->start(std::move(build));
}

void BrowseModel::SetIndex(std::shared_ptr<const Index> index)
{
    m_index = std::move(index);
    const std::vector<int>& order = m_index->index.Order();
    for (const ipodnames::JumpSection& section : m_index->index.Sections())
        m_sections.append(
            QVariantMap{{"label", Text(section.label)}, {"row", order[static_cast<std::size_t>(section.position)]}});
    Q_EMIT indexed();
    if (Searching()) Search();
}

void BrowseModel::SetQuery(const QString& query)
{
    if (query == m_query) return;
    m_query = query;
    Search();
    Q_EMIT queryChanged();
}

void BrowseModel::Search()
{
    m_found.clear();
    if (m_index != nullptr && Searching()) m_found = m_index->index.Search(m_query.toStdString(), kMatches);
    UpdateRows();
    Q_EMIT countChanged();
}
}  // namespace ipodqml
