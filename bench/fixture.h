/// @file
/// A page, an image, and a write buffer in segments, and a client without a bus, for in-process benchmarks.
#pragma once

#include <glib.h>

#include <cstddef>
#include <memory>
#include <vector>

#include "QBXIpod_MediaPlayer_Client.h"
#include "internal/shared_bulk.h"

namespace bench
{
/// The client of this process, with attached segments; logs only errors, to /dev/null.
QBXIpod_MediaPlayer_Client& Client();

/// A proxy without a bus; the client of this process subscribes to its signals.
ComZarnLinuxIpod* Proxy();

/// Stores a page of @p count sample names in the list segment.
qbx::Snapshot<PlayListSongNameStr> Page(std::size_t count);

/// Stores an image of @p size bytes in the buffer segment, in the vector of the artwork event.
qbx::Snapshot<unsigned char> Picture(std::size_t size);

/// The write buffer with a capacity of exactly @p capacity bytes.
QBXByteVector* WriteBuffer(std::size_t capacity);

/// A received "v" holding an "ay" of @p size bytes.
GVariant* ReceivedRecord(std::size_t size);

struct CountingListener : IQBXIpodPlayerListener
{
    void OnPlayStatusChanged(iPodPlayerPlayStatus) override { ++events; }
    void OnIpodArtworkChange(QBXTrackArtwork artwork) override { events += artwork.image.empty() ? 0 : 1; }
    int events = 0;
};

/// Registers listeners with the client during its lifetime.
class Audience
{
public:
    explicit Audience(std::size_t size);
    /// Ends the program if a listener received no event, because then nothing was measured.
    ~Audience();
    Audience(const Audience&) = delete;
    Audience& operator=(const Audience&) = delete;

private:
    std::vector<std::unique_ptr<CountingListener>> m_listeners;
};
}  // namespace bench
