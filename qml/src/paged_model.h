/// @file
/// A list of the device as a Qt model: its rows exist at once, and their names arrive page by page.
#pragma once

#include <ipodkit/pager.h>

#include <QAbstractListModel>
#include <QTimer>
#include <deque>
#include <optional>
#include <set>

namespace ipodqml
{
class PagedModel : public QAbstractListModel
{
    Q_OBJECT

    /// Number of rows.
    Q_PROPERTY(int count READ Count NOTIFY countChanged)
    /// Whether the number of entries has been read; false while the service is absent.
    Q_PROPERTY(bool counted READ Counted NOTIFY countChanged)

public:
    enum Role
    {
        Name = Qt::UserRole,  ///< text; empty until the page arrives
        Loaded,               ///< whether it has arrived
        Entry,                ///< index in the list of the device
    };

    explicit PagedModel(ipodkit::ListKind kind);
    ~PagedModel() override;

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

    int Count() const { return rowCount(); }
    bool Counted() const { return m_counted; }

Q_SIGNALS:
    void countChanged();

protected:
    /// Cancels pending requests. Derived destructors must call it, because completions use their members.
    void Close();

    /// Reads the number of entries again, and the pages that are shown.
    void Recount();

    /// Schedules a read of the page that contains an entry, and of the adjacent page if the entry is near its edge.
    void Want(int entry) const;

    /// Removes all rows until the list is counted.
    void Clear();

    /// Inserts or removes rows at the end until there are Rows(), and reports the others as changed.
    void UpdateRows();

    /// Returns the entry of a row. They differ if a search shows only some entries.
    virtual std::optional<int> EntryOf(int row) const { return row; }
    virtual const std::string* NameOf(int entry) const;
    virtual void Counting() {}
    virtual void CountRead() {}
    virtual void PageRead(const ipodkit::Page&) {}
    virtual void Outdated() { Recount(); }
    virtual int Rows() const { return m_entries; }  ///< calculates how many rows there should be

    ipodkit::Pager* Names() { return m_pager ? &*m_pager : nullptr; }
    int Entries() const { return m_entries; }

private:
    void CountArrived(const ipodkit::Result<int>& count);
    void WantPage(int page) const;
    void ReadWanted();
    void Read(int page);
    void PageArrived(int page, const ipodkit::Result<ipodkit::PagePtr>& arrived);
    void Retry(int page, ipodkit::ErrorKind why);

    std::optional<ipodkit::Pager> m_pager;
    ipodkit::Subscription m_outdated;
    QTimer m_recount;
    mutable QTimer m_read;
    mutable std::deque<int> m_wanted;  // pages, the newest first
    std::set<int> m_underWay;
    int m_entries = 0;
    int m_rows = 0;
    unsigned m_counts = 0;
    bool m_counted = false;
};
}  // namespace ipodqml
