/// @file
/// What a peer implements: the same work, written with one library. bench/run-bench starts a peer as "PEER start",
/// which makes one command and exits, or as "PEER", which carries out the works that it reads from standard input, one
/// per line as "WORK COUNT", and answers each with "figure WORK NANOSECONDS": the median of that many.
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
    virtual std::size_t Names() = 0;  ///< fetches the page into strings; returns how many
    virtual std::size_t Image() = 0;  ///< fetches the image into bytes; returns how many
};

int RunPeer(int argc, char** argv, const std::function<std::unique_ptr<Peer>()>& connect);
}  // namespace peers
