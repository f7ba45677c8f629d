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
}  // namespace

// What another thread writes, and what belongs to this one: it is moved there and back, and never let go there.
struct AccessorySession::Impl::Growth
{
    std::shared_ptr<Impl> self;
    Bytes chunk;
    Lane::Release release;
};

bool AccessorySession::Impl::Write(Bytes bytes, Completion completion)
{
    const bool full = m_waiting > 0 && m_waiting + bytes.size() > m_options.highWater;
    m_refusedSome = m_refusedSome || full;
    if (!m_open || full) return false;
    m_waiting += bytes.size();
    m_jobs.push_back({std::move(bytes), std::move(completion)});
    SendNext();
    return true;
}

void AccessorySession::Impl::Close()
{
    if (!m_open) return;
    m_open = false;
    FailAll({ErrorKind::Cancelled, "the accessory session was closed"});
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
    m_session->WriteLane()->Wait([self = shared_from_this()](const Lane::Release& release)
                                 { self->SendChunk(release); });
}

void AccessorySession::Impl::SendChunk(const Lane::Release& release)
{
    if (m_jobs.empty())
    {
        m_sending = false;
        return release();
    }
    const Job& job = m_jobs.front();
    const std::size_t size = std::min(std::max<std::size_t>(m_options.chunk, 1), job.bytes.size() - job.sent);
    const std::size_t room = RoomForAccessoryBytes();
    const unsigned char* const begin = job.bytes.data() + job.sent;
    if (size > room)
        ChunkWritten(size, tl::unexpected<Error>(DoesNotFit(size, room)), release);
    else if (HasCapacity(g_VecEapWriteBufferShareMemory, size))
        ChunkWritten(size, WriteBytes(g_VecEapWriteBufferShareMemory, begin, size), release);
    else
        WriteAside({begin, begin + size}, release);
}

// Where the buffer has to grow, somebody else may hold the lock of the segment.
void AccessorySession::Impl::WriteAside(Bytes chunk, const Lane::Release& release)
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
void AccessorySession::Impl::ChunkWritten(std::size_t size, const Result<void>& result, const Lane::Release& release)
{
    if (!result || m_jobs.empty())
    {
        release();
        return FailLater(result ? kSessionEnded : result.error());
    }
    AskToWrite(m_session->Bus(), m_session->Options().deadline, m_number)
        .Start(
            [self = shared_from_this(), size, release](const Result<void>& answer)
            {
                release();
                self->ChunkAnswered(size, answer);
            });
}

// It may be the caller of Write() who finds out.
void AccessorySession::Impl::FailLater(const Error& error)
{
    Post(m_session->Context(),
         [self = shared_from_this(), error] { self->ChunkAnswered(0, tl::unexpected<Error>(error)); });
}

void AccessorySession::Impl::ChunkAnswered(std::size_t size, const Result<void>& result)
{
    m_sending = false;
    if (!m_open || m_jobs.empty()) return;
    if (!result) return FailAll(result.error());
    m_waiting -= size;
    m_jobs.front().sent += size;
    if (m_jobs.front().sent == m_jobs.front().bytes.size())
    {
        const Job done = std::move(m_jobs.front());
        m_jobs.pop_front();
        m_session->CallbackGuard().Run("accessory write", [&done] { done.completion({}); });
    }
    SendNext();
    TellDrained();
}

void AccessorySession::Impl::FailAll(const Error& error)
{
    m_waiting = 0;
    for (const Job& job : std::exchange(m_jobs, {}))
        m_session->CallbackGuard().Run("accessory write", [&] { job.completion(tl::unexpected<Error>(error)); });
    TellDrained();
}

// Whoever was refused waits for this, whatever became of the bytes that were in the way.
void AccessorySession::Impl::TellDrained()
{
    if (!m_open || m_waiting > 0 || !std::exchange(m_refusedSome, false)) return;
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

bool AccessorySession::Write(Bytes bytes, Completion completion)
{
    return m_impl->Write(std::move(bytes), std::move(completion));
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
