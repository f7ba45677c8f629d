#include "loop/request_group.h"

#include <vector>

#include "loop/weak_data.h"

namespace ipodkit
{
namespace
{
gboolean Dispatch(GSource* source, GSourceFunc callback, gpointer data)
{
    g_source_set_ready_time(source, -1);
    return callback(data);
}

GSourceFuncs timerFunctions = {nullptr, nullptr, Dispatch, nullptr, nullptr, nullptr};
}  // namespace

std::shared_ptr<RequestGroup> RequestGroup::Make(detail::HomePtr home)
{
    std::shared_ptr<RequestGroup> group(new RequestGroup(std::move(home)));
    group->Watch();
    return group;
}

void RequestGroup::Watch()
{
    m_timer.reset(g_source_new(&timerFunctions, sizeof(GSource)));
    g_source_set_callback(m_timer.get(), OnDue, Weakly(shared_from_this()), DeleteWeak<RequestGroup>);
    const auto advanced = [weak = weak_from_this()]
    {
        if (const auto self = weak.lock()) self->FailOverdue();
    };
    m_clock = Subscription(m_home->ClockWatchers().Add("deadlines", advanced));
}

// The loop visits each attached source in each iteration: groups without requests, such as those of accessory sessions
// that only receive, must not slow it down.
void RequestGroup::WakeAt(gint64 due)
{
    if (g_source_get_context(m_timer.get()) == nullptr) g_source_attach(m_timer.get(), m_home->Context());
    m_home->WakeAt(m_timer.get(), due);
}

gboolean RequestGroup::OnDue(gpointer data)
{
    if (const auto self = LockWeak<RequestGroup>(data)) self->FailOverdue();
    return G_SOURCE_CONTINUE;
}

RequestGroup::Serial RequestGroup::Reserve()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return ++m_lastSerial;
}

std::optional<Error> RequestGroup::Add(Serial serial, const OpenRequestPtr& request)
{
    const detail::Terms& terms = request->Terms();
    const std::optional<Error> unacceptable = detail::Unacceptable(terms);
    gint64 due = 0;
    if (terms.deadline && !unacceptable)
        due = m_home->Now() + std::chrono::microseconds(detail::Clamped(*terms.deadline)).count();
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_open.insert_or_assign(serial, Entry{request, due, nullptr});
    if (due != 0) m_due.emplace(due, serial);
    if (due != 0 && m_due.begin()->second == serial) WakeAt(due);
    return m_closed ? m_closed : unacceptable;
}

void RequestGroup::Keep(Serial serial, std::shared_ptr<CancellationLink> link)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    const auto found = m_open.find(serial);
    if (found != m_open.end()) found->second.link.swap(link);
}

// The caller destroys the request, because its destructor may need the lock.
RequestGroup::Entry RequestGroup::Extract(Serial serial)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    auto taken = m_open.extract(serial);
    if (taken.empty()) return {};
    m_due.erase({taken.mapped().due, serial});
    return std::move(taken.mapped());
}

bool RequestGroup::Take(Serial serial)
{
    return Extract(serial).request != nullptr;
}

bool RequestGroup::Has(Serial serial) const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_open.count(serial) != 0;
}

void RequestGroup::Fail(Serial serial, const Error& error)
{
    if (const OpenRequestPtr request = Extract(serial).request) request->Fail(error);
}

// One at a time: a completion may end the group, which completes the others.
void RequestGroup::FailOverdue()
{
    const auto self = shared_from_this();
    const gint64 now = m_home->Now();
    while (const OpenRequestPtr late = TakeDue(now)) late->Fail(detail::TimedOut(*late->Terms().deadline));
}

// Returns null if none is left; the timer then waits for the next one.
OpenRequestPtr RequestGroup::TakeDue(gint64 now)
{
    Serial first = 0;
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        if (m_due.empty()) return nullptr;
        if (m_due.begin()->first > now)
        {
            WakeAt(m_due.begin()->first);
            return nullptr;
        }
        first = m_due.begin()->second;
    }
    return Extract(first).request;
}

template <class Wanted>
void RequestGroup::FailThose(const Error& error, const Wanted& wanted)
{
    const auto self = shared_from_this();
    std::vector<Serial> serials;
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        for (const auto& [serial, entry] : m_open)
            if (wanted(*entry.request)) serials.push_back(serial);
    }
    for (const Serial serial : serials) Fail(serial, error);
}

void RequestGroup::FailBegun(const Error& error)
{
    FailThose(error, [](const OpenRequest& request) { return request.Begun(); });
}

void RequestGroup::Close(const Error& error)
{
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_closed = error;
    }
    FailThose(error, [](const OpenRequest&) { return true; });
}
}  // namespace ipodkit
