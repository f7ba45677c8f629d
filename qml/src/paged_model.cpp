#include "paged_model.h"

#include <ipodqml/session.h>

#include <QPointer>
#include <algorithm>

#include "value.h"

namespace ipodqml
{
namespace
{
constexpr int kPage = 50;
constexpr int kAhead = 25;            // entries before the end of a page at which the next one is read
constexpr std::size_t kCached = 100;  // pages
constexpr std::size_t kWanted = 20;   // pages; fast scrolling drops older ones
constexpr std::size_t kUnderWay = 2;  // pages
constexpr int kRetryMilliseconds = 500;
}  // namespace

PagedModel::PagedModel(ipodkit::ListKind kind)
{
    m_recount.setSingleShot(true);
    m_read.setSingleShot(true);
    connect(&m_recount, &QTimer::timeout, this, &PagedModel::Recount);
    connect(&m_read, &QTimer::timeout, this, &PagedModel::ReadWanted);
    Session& session = Session::Instance();
    if (session.Kit() == nullptr) return;
    m_pager.emplace(*session.Kit(), kind, ipodkit::PagerOptions{kPage, kCached, 0});
    m_outdated = m_pager->OnOutdated("QML list", [this] { Outdated(); });
    connect(&session, &Session::connectionChanged, this, &PagedModel::Recount);
    m_recount.start(0);
}

PagedModel::~PagedModel()
{
    Close();
}

void PagedModel::Close()
{
    m_wanted.clear();
    m_pager.reset();
}

int PagedModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : m_rows;
}

QHash<int, QByteArray> PagedModel::roleNames() const
{
    return {{Name, "name"}, {Loaded, "loaded"}, {Entry, "entry"}};
}

const std::string* PagedModel::NameOf(int entry) const
{
    const ipodkit::PagePtr page = m_pager ? m_pager->Cached(entry) : nullptr;
    return page == nullptr ? nullptr : &page->At(entry);
}

QVariant PagedModel::data(const QModelIndex& index, int role) const
{
    const std::optional<int> entry = EntryOf(index.row());
    if (!entry) return {};
    if (role == Entry) return *entry;
    const std::string* const name = NameOf(*entry);
    if (role == Name) Want(*entry);
    if (role == Loaded) return name != nullptr;
    return name == nullptr ? QVariant(QString()) : Text(*name);
}

void PagedModel::Want(int entry) const
{
    WantPage((entry + kAhead) / kPage);
    WantPage(std::max(0, entry - kAhead) / kPage);
    WantPage(entry / kPage);
}

void PagedModel::WantPage(int page) const
{
    const int first = page * kPage;
    if (first >= m_entries || NameOf(first) != nullptr || m_underWay.count(page) != 0) return;
    if (!m_wanted.empty() && m_wanted.front() == page) return;
    m_wanted.erase(std::remove(m_wanted.begin(), m_wanted.end(), page), m_wanted.end());
    m_wanted.push_front(page);
    if (m_wanted.size() > kWanted) m_wanted.pop_back();
    if (!m_read.isActive()) m_read.start(0);
}

void PagedModel::ReadWanted()
{
    while (m_underWay.size() < kUnderWay && !m_wanted.empty())
    {
        const int page = m_wanted.front();
        m_wanted.pop_front();
        Read(page);
    }
}

void PagedModel::Read(int page)
{
    m_underWay.insert(page);
    m_pager->At(page * kPage)
        .Start(
            [self = QPointer<PagedModel>(this), page](const ipodkit::Result<ipodkit::PagePtr>& arrived)
            {
                if (self != nullptr) self->PageArrived(page, arrived);
            });
}

void PagedModel::PageArrived(int page, const ipodkit::Result<ipodkit::PagePtr>& arrived)
{
    m_underWay.erase(page);
    ReadWanted();
    if (!arrived) return Retry(page, arrived.error().kind);
    PageRead(**arrived);
    const int last = std::min(page * kPage + kPage, m_entries) - 1;
    if (m_rows == m_entries && last >= page * kPage) Q_EMIT dataChanged(index(page * kPage), index(last));
}

// The service was slow, or the list changed after the request. In that case WantPage() may have ignored the page of the
// new list because this request was pending.
void PagedModel::Retry(int page, ipodkit::ErrorKind why)
{
    const bool again = why == ipodkit::ErrorKind::TimedOut || why == ipodkit::ErrorKind::Cancelled;
    if (again && m_pager && Session::Instance().State()->phase == ipodkit::Phase::Ready) WantPage(page);
}

void PagedModel::Recount()
{
    if (!m_pager || Session::Instance().State()->phase != ipodkit::Phase::Ready) return;
    m_wanted.clear();
    Counting();
    const unsigned number = ++m_counts;
    m_pager->Count().Start(
        [self = QPointer<PagedModel>(this), number](const ipodkit::Result<int>& count)
        {
            if (self != nullptr && number == self->m_counts) self->CountArrived(count);
        });
}

void PagedModel::CountArrived(const ipodkit::Result<int>& count)
{
    using ipodkit::ErrorKind;
    const bool again =
        !count && (count.error().kind == ErrorKind::Cancelled || count.error().kind == ErrorKind::TimedOut);
    if (again) return m_recount.start(kRetryMilliseconds);
    m_counted = true;
    m_entries = count.value_or(0);
    UpdateRows();
    CountRead();
    Q_EMIT countChanged();
}

// A reset would make the view discard its items and scroll to the top.
void PagedModel::UpdateRows()
{
    const int before = m_rows;
    const int rows = Rows();
    const int kept = std::min(before, rows);
    if (rows > before) beginInsertRows({}, before, rows - 1);
    if (rows < before) beginRemoveRows({}, rows, before - 1);
    m_rows = rows;
    if (rows > before) endInsertRows();
    if (rows < before) endRemoveRows();
    if (kept > 0) Q_EMIT dataChanged(index(0), index(kept - 1));
}

void PagedModel::Clear()
{
    m_counted = false;
    m_wanted.clear();
    m_entries = 0;
    UpdateRows();
    Q_EMIT countChanged();
}
}  // namespace ipodqml
