/// @file
/// Navigates the device's database and keeps the model in sync with it.
#pragma once

#include <IQBXIpodPlayerListener.h>
#include <ipodkit/pager.h>
#include <ipodnames/jump_index.h>

#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "browse/model.h"

namespace ctl::browse
{
/// Builds jump indexes on a worker thread. Use it only on the thread that runs the default main context.
class IndexBuilder
{
public:
    using Completion = std::function<void(const ipodnames::JumpIndex&)>;

    IndexBuilder() = default;

    /// Blocks until all builds have finished and their completions have run.
    ~IndexBuilder();
    IndexBuilder(const IndexBuilder&) = delete;
    IndexBuilder& operator=(const IndexBuilder&) = delete;

    /// Starts a build and returns at once.
    /// @param readings    readings of the first names; the index derives the others
    /// @param completion  called in the default main context
    void Build(std::vector<std::string> names, std::vector<std::string> readings, Completion completion);

private:
    struct Job;
    int m_running = 0;
};

/// Returns whether @p error means that the service is lost, which the status line shows already.
bool IsServiceLost(const ipodkit::Error& error);

/// The service has one current level for all clients. The walker starts at the root. Before it opens an entry, it
/// checks that the entry is still in place; if another program has changed the level, it returns along the names of the
/// path.
class Walker
{
public:
    using Play = std::function<void(int entry)>;

    /// @param changed  called when the model has changed
    /// @param play     called to play an entry of the current level
    Walker(ipodkit::Session& session, Model& model, std::function<void()> changed, Play play);
    ~Walker();
    Walker(const Walker&) = delete;
    Walker& operator=(const Walker&) = delete;

    /// Restart() on the user's request: allows as many attempts as at the start.
    void Reload();

    /// Enters the root, then follows the model's path by name as far as it still exists.
    void Restart();

    /// Ignores all pending answers, because the service is lost.
    void Stop();

    void Open(int entry);
    void Back();

    /// Returns whether the level is about to change, so that further keys refer to the next level.
    bool IsMoving() const { return m_moving || m_opening; }

    /// Start of the oldest unanswered request.
    const std::optional<Time>& WaitingSince() const { return m_waitingSince; }

    /// Returns whether names or their index are still being loaded.
    bool IsReading() const { return m_reading; }

private:
    // A level of the path to restore.
    struct Stage
    {
        std::string title;
        int place;
        ListCursor cursor;
    };

    template <class T>
    std::function<void(const ipodkit::Result<T>&)> WhileCurrent(std::function<void(const ipodkit::Result<T>&)> arrived);
    template <class T>
    std::function<void(const ipodkit::Result<T>&)> Awaited(std::function<void(const ipodkit::Result<T>&)> arrived);
    void BeginStep();
    void RootEntered(const ipodkit::Result<void>& done);
    void Reenter(const std::string& why);
    void ReadLevel();
    void ReadNext();
    void PageArrived(const ipodkit::Result<ipodkit::PagePtr>& page);
    bool Belongs(const ipodkit::Page& page) const;
    bool DescendPath();
    void PostponePath();
    void ClearPath();
    void Descend(int entry, const std::string& title, ListCursor cursor);
    int ReadingCount() const { return static_cast<int>(m_readings.size()); }
    void ReadReadings();
    void ReadingsArrived(const ipodkit::Result<ipodkit::PagePtr>& page);
    void BuildIndex();
    void EntryChecked(int entry, const ipodkit::Result<ipodkit::PagePtr>& page);
    void Failed(const ipodkit::Error& error);
    void Unreadable(const ipodkit::Error& error);
    void ShowMessage(const std::string& message);

    Model& m_model;
    std::function<void()> m_changed;
    Play m_play;
    ipodkit::Commands m_commands;
    // Incremented with each change of level, so that earlier answers are recognized and dropped.
    std::shared_ptr<unsigned> m_step = std::make_shared<unsigned>(0);
    bool m_moving = true;    // until the root has been entered
    bool m_opening = false;  // an entry is being checked; loading its level continues meanwhile
    bool m_reading = false;
    std::optional<Time> m_waitingSince;
    int m_reentries = 0;  // in a row, without a user action in between
    std::deque<Stage> m_path;
    std::deque<Stage> m_pendingPath;  // a service that has just started may know its names only later
    ipodkit::Pager m_names;
    ipodkit::Pager m_check;
    ipodkit::Pager m_pinyin;
    std::vector<std::string> m_readings;  // of the current level, from the service
    ipodkit::Subscription m_devices;
    IndexBuilder m_builder;
};
}  // namespace ctl::browse
