/// @file
/// A page, a picture and a write buffer in segments, and a client without a bus, for what happens in one process.
#pragma once

#include <glib.h>

#include <cstddef>
#include <memory>
#include <vector>

#include "QBXIpod_MediaPlayer_Client.h"
#include "internal/shared_bulk.h"

namespace bench
{
/// The client of this process, with its segments attached; only errors are logged, to nowhere.
QBXIpod_MediaPlayer_Client& Client();

/// A proxy without a bus to whose signals the client of this process subscribes.
ComZarnLinuxIpod* Proxy();

/// A page of @p count sample names in the list segment.
qbx::Snapshot<PlayListSongNameStr> Page(std::size_t count);

/// A picture of @p size bytes in the buffer segment, where the artwork event looks for it.
qbx::Snapshot<unsigned char> Picture(std::size_t size);

/// The write buffer with room for exactly @p capacity bytes.
QBXByteVector* WriteBuffer(std::size_t capacity);

/// A received "v" holding an "ay" of @p size bytes.
GVariant* ReceivedRecord(std::size_t size);

struct CountingListener : IQBXIpodPlayerListener
{
    void OnPlayStatusChanged(iPodPlayerPlayStatus) override { ++events; }
    void OnIpodArtworkChange(QBXTrackArtwork artwork) override { events += artwork.image.empty() ? 0 : 1; }
    int events = 0;
};

/// Registers so many listeners with the client, for as long as it lives.
class Audience
{
public:
    explicit Audience(std::size_t size);
    /// Ends the program when a listener heard nothing: then nothing was measured.
    ~Audience();
    Audience(const Audience&) = delete;
    Audience& operator=(const Audience&) = delete;

private:
    std::vector<std::unique_ptr<CountingListener>> m_listeners;
};
}  // namespace bench
