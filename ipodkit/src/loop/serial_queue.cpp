#include "loop/serial_queue.h"

namespace ipodkit
{
void SerialQueue::Wait(Turn turn)
{
    m_waiting.push_back(std::move(turn));
    Next();
}

void SerialQueue::Outdate(const Guard& guard)
{
    ++m_epoch;
    m_watchers.ForEach(guard, [](const std::function<void()>& watcher) { watcher(); });
}

// Iterates, because work may release the queue at once, and recursion would exhaust the stack.
void SerialQueue::Next()
{
    if (m_running) return;
    const auto self = shared_from_this();
    m_running = true;
    while (!m_taken && !m_waiting.empty()) RunFirst();
    m_running = false;
}

void SerialQueue::RunFirst()
{
    m_taken = true;
    const Turn turn = std::move(m_waiting.front());
    m_waiting.pop_front();
    turn(
        [self = shared_from_this()]
        {
            self->m_taken = false;
            self->Next();
        });
}
}  // namespace ipodkit
