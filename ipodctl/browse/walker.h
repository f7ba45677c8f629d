/// @file
/// Walks through the database of the device and keeps the model in step with it.
#pragma once

#include <IQBXIpodPlayerListener.h>
#include <ipodkit/pager.h>

#include <deque>
#include <functional>
#include <memory>
#include <optional>

#include "browse/index_builder.h"
#include "browse/model.h"

namespace ctl::browse
{
/// Whether that is said on the screen already, for as long as it is true.
bool IsOfNoService(const ipodkit::Error& error);

/// The service keeps one level for all its clients. The walker starts at the root, and before an entry is opened it
/// looks whether it is still where it was; if others have changed the level, it goes back by the names of the path.
class Walker
{
public:
    using Play = std::function<void(int entry)>;

    /// @param changed  called when there is something new to show
    /// @param play     called to play an entry of the current level
    Walker(ipodkit::Session& session, Model& model, std::function<void()> changed, Play play);
    ~Walker();
    Walker(const Walker&) = delete;
    Walker& operator=(const Walker&) = delete;

    /// The same as Restart(), because the user wants it.
    void Reload();

    /// Goes to the root and from there to where the model is, as far as the names still lead there.
    void Restart();

    /// The service is gone: nothing that was asked for counts any more.
    void Stop();

    void Open(int entry);
    void Back();

    /// Whether the level is about to become another one: what is typed now is meant for that one.
    bool IsMoving() const { return m_moving || m_opening; }

    /// When the service was asked what it has not answered yet.
    const std::optional<Time>& AskedAt() const { return m_askedAt; }

    /// Whether names or their index are still to come.
    bool IsReading() const { return m_reading; }

private:
    // A level on the way back to where one was.
    struct Stage
    {
        std::string title;
        int place;
        ListCursor cursor;
    };

    template <class T>
    std::function<void(const ipodkit::Result<T>&)> WhileCurrent(std::function<void(const ipodkit::Result<T>&)> arrived);
    template <class T>
    std::function<void(const ipodkit::Result<T>&)> Asked(std::function<void(const ipodkit::Result<T>&)> arrived);
    void BeginStep();
    void RootEntered(const ipodkit::Result<void>& done);
    void Rejoin(const std::string& why);
    void ReadLevel();
    void ReadOn();
    void PageArrived(const ipodkit::Result<ipodkit::PagePtr>& page);
    bool Belongs(const ipodkit::Page& page) const;
    bool WalkOn();
    void PutOffTheWay();
    void ForgetTheWay();
    void Descend(int entry, const std::string& title, ListCursor cursor);
    int NumberRead() const { return static_cast<int>(m_readings.size()); }
    void ReadReadings();
    void ReadingsArrived(const ipodkit::Result<ipodkit::PagePtr>& page);
    void BuildIndex();
    void EntryChecked(int entry, const ipodkit::Result<ipodkit::PagePtr>& page);
    void Failed(const ipodkit::Error& error);
    void Unreadable(const ipodkit::Error& error);
    void Say(const std::string& message);

    Model& m_model;
    std::function<void()> m_changed;
    Play m_play;
    ipodkit::Commands m_commands;
    // Grows with each change of level: what was asked for before does not count any more. Ends with the walker.
    std::shared_ptr<unsigned> m_step = std::make_shared<unsigned>(0);
    bool m_moving = true;  // until the root is reached for the first time
    bool m_opening = false;  // an entry is being checked; reading its level goes on meanwhile
    bool m_reading = false;
    std::optional<Time> m_askedAt;
    int m_rejoined = 0;  // in a row, without the user in between
    std::deque<Stage> m_way;
    std::deque<Stage> m_unreached;  // a service that has just started may know the names only later
    ipodkit::Pager m_names;
    ipodkit::Pager m_check;
    ipodkit::Pager m_pinyin;
    std::vector<std::string> m_readings;  // of the current level, by the service
    ipodkit::Subscription m_devices;
    IndexBuilder m_builder;
};
}  // namespace ctl::browse
