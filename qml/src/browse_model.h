/// @file
/// The music database for QML: one level at a time, with an index of letters and a search.
#pragma once

#include <ipodnames/jump_index.h>

#include <QtQml/qqmlregistration.h>
#include <QStringList>
#include <QVariantList>
#include <memory>
#include <string>
#include <vector>

#include "paged_model.h"

namespace ipodqml
{
class BrowseModel : public PagedModel
{
    Q_OBJECT
    QML_ELEMENT

    /// Names of the levels that were entered, below the top level.
    Q_PROPERTY(QStringList path READ Path NOTIFY pathChanged)
    /// Whether the entries can be entered; otherwise they are played.
    Q_PROPERTY(bool folders READ Folders NOTIFY foldersChanged)
    /// The letters of the level in alphabetical order, each with `label` and the `row` of its first name; empty until
    /// all names are read.
    Q_PROPERTY(QVariantList sections READ Sections NOTIFY indexed)
    /// Search text. While it is not empty, the rows are up to 1,000 entries that match by name, initials, or pinyin.
    Q_PROPERTY(QString query READ Query WRITE SetQuery NOTIFY queryChanged)

public:
    BrowseModel();
    ~BrowseModel() override { Close(); }

    /// Enters the entry of the row if entries are folders, and plays it otherwise.
    Q_INVOKABLE void open(int row);

    /// Returns to the parent level.
    Q_INVOKABLE void back();

    QStringList Path() const { return m_path; }
    bool Folders() const { return m_folders; }
    QVariantList Sections() const { return m_sections; }
    QString Query() const { return m_query; }
    void SetQuery(const QString& query);

Q_SIGNALS:
    void pathChanged();
    void levelChanged(int row);  ///< another level is listed; the view should scroll to @p row
    void foldersChanged();
    void indexed();
    void queryChanged();

protected:
    std::optional<int> EntryOf(int row) const override;
    const std::string* NameOf(int entry) const override;
    int Rows() const override;
    void Counting() override;
    void CountRead() override;
    void PageRead(const ipodkit::Page& page) override;
    void Outdated() override;

private:
    struct Index
    {
        std::vector<std::string> names;
        ipodnames::JumpIndex index;
    };

    void Enter(int entry);
    void Play(int entry);
    void Moved(const QStringList& path, int row);
    void ReadAllNames();
    void BuildIndex(std::vector<std::string> names);
    void SetIndex(std::shared_ptr<const Index> index);
    void Search();
    bool Searching() const { return !m_query.isEmpty(); }

    std::optional<ipodkit::Pager> m_reader;
    ipodkit::Cancellation m_reading;
    std::shared_ptr<const Index> m_index;
    std::vector<int> m_found;
    std::vector<int> m_places;  // the row of each entered level in the level above
    QStringList m_path;
    QVariantList m_sections;
    QString m_query;
    unsigned m_lists = 0;  // counts lists, so that results for an earlier one are ignored
    bool m_folders = true;
    bool m_foldersKnown = false;  // whether m_folders is that of the current list
    bool m_moving = false;
};
}  // namespace ipodqml
