/// @file
/// The interface of a peer: the same tasks, written with one library. bench/run-bench starts a peer as "PEER
/// start", which sends one command and exits, or as "PEER", which runs the tasks that it reads from standard input, one
/// "TASK COUNT" per line, and answers each with "figure TASK NANOSECONDS": the median of that many runs.
#pragma once

#include <cstddef>
#include <functional>
#include <memory>

namespace peers
{
/// The service answers Seek() first, waits until the peer sleeps, and then emits OnPlayStatusChanged.
class Peer
{
public:
    Peer() = default;
    virtual ~Peer() = default;
    Peer(const Peer&) = delete;
    Peer& operator=(const Peer&) = delete;

    virtual bool Pause() = 0;         ///< waits for the answer
    virtual void RequestEvent() = 0;  ///< calls Seek(0) and waits for the answer
    virtual void AwaitEvent() = 0;    ///< returns when one more event has arrived
    virtual std::size_t Names() = 0;  ///< fetches the page into strings; returns their number
    virtual std::size_t Image() = 0;  ///< fetches the image; returns its size in bytes
};

int RunPeer(int argc, char** argv, const std::function<std::unique_ptr<Peer>()>& connect);
}  // namespace peers
