#include "accessory/accessory_session.h"

#include <algorithm>

#include "commands/requests.h"
#include "loop/context.h"
#include "memory/shared_vectors.h"

namespace ipodkit
{
namespace
{
Error DoesNotFit(std::size_t size, std::size_t room)
{
    return {ErrorKind::NoSharedMemory, "the write buffer has no room for " + std::to_string(size) +
                                           " bytes at once; at most " + std::to_string(room) + " fit"};
}

Error TooManyWaiting(std::size_t waiting)
{
    return {ErrorKind::Busy, std::to_string(waiting) + " bytes are waiting; OnDrained() reports when they are sent"};
}

const Error kWithdrawnHalfSent{ErrorKind::Cancelled, "a write was cancelled after part of it had been sent"};
}  // namespace

// Moves to another thread and back. The objects that belong to this thread are never destroyed there.
struct AccessorySession::Impl::Growth
{
    std::shared_ptr<Impl> self;
    Bytes chunk;
    SerialQueue::Release release;
};

Request<void> AccessorySession::Impl::Write(Bytes bytes)
{
    const auto begin = [weak = weak_from_this(),
                        bytes = std::make_shared<const Bytes>(std::move(bytes))](const PendingPtr<void>& request)
    {
        if (const auto self = weak.lock()) self->Take(bytes, request);
    };
    return MakeLoopRequest<void>(m_writes, "accessory write", {}, begin);
}

void AccessorySession::Impl::Take(const std::shared_ptr<const Bytes>& bytes, const PendingPtr<void>& request)
{
    if (!HasRoomFor(bytes->size())) return request->Settle(tl::unexpected(TooManyWaiting(m_waiting)));
    m_waiting += bytes->size();
    m_jobs.push_back({bytes, request});
    SendNext();
}

void AccessorySession::Impl::Close()
{
    if (!m_open) return;
    m_open = false;
    m_waiting = 0;
    m_jobs.clear();
    m_writes->Close({ErrorKind::Cancelled, "the accessory session was closed"});
    closedCallbacks.ForEach(m_session->CallbackGuard(), [](const auto& callback) { callback(); });
}

void AccessorySession::Impl::Receive(const Result<Bytes>& data)
{
    dataCallbacks.ForEach(m_session->CallbackGuard(), [&data](const DataCallback& callback) { callback(data); });
}

// One chunk at a time. All sessions take turns, because there is one write buffer.
void AccessorySession::Impl::SendNext()
{
    if (m_sending || m_jobs.empty()) return;
    m_sending = true;
    m_session->WriteQueue()->Wait([self = shared_from_this()](const SerialQueue::Release& release)
                                  { self->SendChunk(release); });
}

void AccessorySession::Impl::SendChunk(const SerialQueue::Release& release)
{
    DropWithdrawn();
    if (m_jobs.empty())
    {
        m_sending = false;
        release();
        return ReportDrained();
    }
    const Job& job = m_jobs.front();
    const std::size_t size = std::min(std::max<std::size_t>(m_options.chunk, 1), job.bytes->size() - job.sent);
    const std::size_t room = RoomForAccessoryBytes();
    const unsigned char* const begin = job.bytes->data() + job.sent;
    if (size > room)
        ChunkWritten(size, tl::unexpected(DoesNotFit(size, room)), release);
    else if (HasCapacity(g_VecEapWriteBufferShareMemory, size))
        ChunkWritten(size, WriteBytes(g_VecEapWriteBufferShareMemory, begin, size), release);
    else
        WriteAside({begin, begin + size}, release);
}

// Writes of which nothing has been sent.
void AccessorySession::Impl::DropWithdrawn()
{
    while (!m_jobs.empty() && !m_jobs.front().request->Open())
    {
        m_waiting -= m_jobs.front().bytes->size();
        m_jobs.pop_front();
    }
}

// If the buffer has to grow, another process may hold the lock of the segment.
void AccessorySession::Impl::WriteAside(Bytes chunk, const SerialQueue::Release& release)
{
    const std::shared_ptr<GMainContext> context(g_main_context_ref(m_session->Context()), g_main_context_unref);
    auto growth = std::make_shared<Growth>(Growth{shared_from_this(), std::move(chunk), release});
    RunAside(
        [context, growth = std::move(growth)]() mutable
        {
            const Bytes& bytes = growth->chunk;
            const Result<void> result = WriteBytes(g_VecEapWriteBufferShareMemory, bytes.data(), bytes.size());
            Post(context.get(), [growth = std::move(growth), result]
                 { growth->self->ChunkWritten(growth->chunk.size(), result, growth->release); });
        });
}

// The session may have been closed meanwhile.
void AccessorySession::Impl::ChunkWritten(std::size_t size, const Result<void>& result,
                                          const SerialQueue::Release& release)
{
    if (!result || m_jobs.empty())
    {
        release();
        return FailLater(result ? detail::kSessionEnded : result.error());
    }
    m_session->StartWithService(AskToWrite(m_session->Bus(), m_session->Options().deadline, m_number),
                                [self = shared_from_this(), size, release](const Result<void>& answer)
                                {
                                    release();
                                    self->ChunkAnswered(size, answer);
                                });
}

// The caller of Write() may be the first to detect it.
void AccessorySession::Impl::FailLater(const Error& error)
{
    Post(m_session->Context(), [self = shared_from_this(), error] { self->ChunkAnswered(0, tl::unexpected(error)); });
}

void AccessorySession::Impl::ChunkAnswered(std::size_t size, const Result<void>& result)
{
    m_sending = false;
    if (!m_open || m_jobs.empty()) return;
    if (!result) return FailAll(result.error());
    m_waiting -= size;
    Job& job = m_jobs.front();
    job.sent += size;
    const PendingPtr<void> request = job.request;
    const bool complete = job.sent == job.bytes->size();
    if (!complete && !request->Open()) return FailAll(kWithdrawnHalfSent);
    if (complete)
    {
        m_jobs.pop_front();
        request->Settle({});
    }
    SendNext();
    ReportDrained();
}

void AccessorySession::Impl::FailAll(const Error& error)
{
    m_waiting = 0;
    for (const Job& job : std::exchange(m_jobs, {})) job.request->Settle(tl::unexpected(error));
    ReportDrained();
}

void AccessorySession::Impl::ReportDrained()
{
    if (!m_open || m_waiting > 0) return;
    drainedCallbacks.ForEach(m_session->CallbackGuard(), [](const auto& callback) { callback(); });
}

std::uint16_t AccessorySession::Number() const
{
    return m_impl->Number();
}

unsigned char AccessorySession::Protocol() const
{
    return m_impl->Protocol();
}

bool AccessorySession::IsOpen() const
{
    return m_impl->IsOpen();
}

Request<void> AccessorySession::Write(Bytes bytes)
{
    return m_impl->Write(std::move(bytes));
}

bool AccessorySession::HasRoomFor(std::size_t bytes) const
{
    return m_impl->HasRoomFor(bytes);
}

std::size_t AccessorySession::Waiting() const
{
    return m_impl->Waiting();
}

Subscription AccessorySession::OnData(std::string name, DataCallback callback)
{
    return Subscription(m_impl->dataCallbacks.Add(std::move(name), std::move(callback)));
}

Subscription AccessorySession::OnDrained(std::string name, std::function<void()> callback)
{
    return Subscription(m_impl->drainedCallbacks.Add(std::move(name), std::move(callback)));
}

Subscription AccessorySession::OnClosed(std::string name, std::function<void()> callback)
{
    return Subscription(m_impl->closedCallbacks.Add(std::move(name), std::move(callback)));
}
}  // namespace ipodkit
