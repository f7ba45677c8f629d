/// @file
/// The started requests that have not completed yet.
#pragma once

#include <cstdint>
#include <map>
#include <mutex>
#include <set>

#include "loop/cancellation_link.h"
#include "loop/home.h"
#include "loop/terms.h"

namespace ipodkit
{
/// A request that has been started.
class OpenRequest
{
public:
    OpenRequest() = default;
    virtual ~OpenRequest() = default;
    OpenRequest(const OpenRequest&) = delete;
    OpenRequest& operator=(const OpenRequest&) = delete;

    /// Runs the completion with an error. Called only by the group, which has just released the request.
    virtual void Fail(const Error& error) = 0;

    /// Returns whether it has not completed yet.
    virtual bool Open() const = 0;

    /// Returns whether it has begun, so that changes of the list or session affect it.
    virtual bool Begun() const = 0;

    virtual const detail::Terms& Terms() const = 0;
};

using OpenRequestPtr = std::shared_ptr<OpenRequest>;

/// Requests that end together, such as those of one pager or accessory session. Owns each until it completes, and
/// completes those whose deadline passes. Any thread, unless noted.
class RequestGroup : public std::enable_shared_from_this<RequestGroup>
{
public:
    using Serial = std::uint64_t;

    static std::shared_ptr<RequestGroup> Make(detail::HomePtr home);

    Serial Reserve();

    /// Adds the request. Returns an error if it must complete at once.
    std::optional<Error> Add(Serial serial, const OpenRequestPtr& request);

    /// Keeps the link until the request completes.
    void Keep(Serial serial, std::shared_ptr<CancellationLink> link);

    /// Releases the request. Returns false if it was released before: each completes once.
    bool Take(Serial serial);
    bool Has(Serial serial) const;

    /// Completes the requests that have begun, in the order of their Start(). Context thread only.
    void FailBegun(const Error& error);

    /// Completes all requests, also those added later, with the error. Context thread only.
    void Close(const Error& error);

    const detail::HomePtr& Home() const { return m_home; }

private:
    struct Entry
    {
        OpenRequestPtr request;
        gint64 due;  // microseconds of GLib's clock; 0 for none
        std::shared_ptr<CancellationLink> link;
    };

    explicit RequestGroup(detail::HomePtr home) : m_home(std::move(home)) {}
    static gboolean OnDue(gpointer data);
    void Watch();
    void WakeAt(gint64 due);
    void FailOverdue();
    OpenRequestPtr TakeDue(gint64 now);
    Entry Extract(Serial serial);
    template <class Wanted>
    void FailThose(const Error& error, const Wanted& wanted);
    void Fail(Serial serial, const Error& error);

    const detail::HomePtr m_home;
    mutable std::mutex m_mutex;
    std::map<Serial, Entry> m_open;
    std::set<std::pair<gint64, Serial>> m_due;
    std::optional<Error> m_closed;
    Serial m_lastSerial = 0;
    SourcePtr m_timer;
    Subscription m_clock;
};
}  // namespace ipodkit
