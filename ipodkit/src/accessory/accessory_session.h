/// @file
/// Implementation of an accessory session.
#pragma once

#include <ipodkit/accessory.h>

#include <deque>

#include "loop/loop_operation.h"
#include "session/session_impl.h"

namespace ipodkit
{
/// Context thread only.
class AccessorySession::Impl : public std::enable_shared_from_this<AccessorySession::Impl>
{
public:
    Impl(std::shared_ptr<Session::Impl> session, const AccessoryOptions& options, std::uint16_t number,
         unsigned char protocol)
        : m_session(std::move(session)),
          m_options(options),
          m_number(number),
          m_protocol(protocol),
          m_writes(RequestGroup::Make(m_session->Bus()->Home()))
    {
    }

    Request<void> Write(Bytes bytes);
    bool HasRoomFor(std::size_t bytes) const
    {
        return m_open && (m_waiting == 0 || m_waiting + bytes <= m_options.highWater);
    }
    void Close();
    void Receive(const Result<Bytes>& data);

    std::uint16_t Number() const { return m_number; }
    unsigned char Protocol() const { return m_protocol; }
    bool IsOpen() const { return m_open; }
    std::size_t Waiting() const { return m_waiting; }

    Registry<DataCallback> dataCallbacks;
    Registry<std::function<void()>> drainedCallbacks;
    Registry<std::function<void()>> closedCallbacks;

private:
    struct Job
    {
        std::shared_ptr<const Bytes> bytes;
        PendingPtr<void> request;
        std::size_t sent = 0;
    };

    void Take(const std::shared_ptr<const Bytes>& bytes, const PendingPtr<void>& request);
    void SendNext();
    struct Growth;
    void SendChunk(const SerialQueue::Release& release);
    void DropWithdrawn();
    void WriteAside(Bytes chunk, const SerialQueue::Release& release);
    void ChunkWritten(std::size_t size, const Result<void>& result, const SerialQueue::Release& release);
    void ChunkAnswered(std::size_t size, const Result<void>& result);
    void FailLater(const Error& error);
    void FailAll(const Error& error);
    void ReportDrained();

    const std::shared_ptr<Session::Impl> m_session;
    const AccessoryOptions m_options;
    const std::uint16_t m_number;
    const unsigned char m_protocol;
    const std::shared_ptr<RequestGroup> m_writes;
    std::deque<Job> m_jobs;
    std::size_t m_waiting = 0;
    bool m_sending = false;
    bool m_open = true;
};
}  // namespace ipodkit
