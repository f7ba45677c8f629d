/// @file
/// The service's side of the two shared-memory segments: attaches them and fills the vectors.
#pragma once

#include <QBXIpodShareMemory.h>

#include <functional>
#include <string>
#include <vector>

#include "music/track.h"

namespace ipodsim
{
/// Both segments, attached or created, with their ten vectors. They are never removed: clients keep them mapped, and a
/// later service finds them again. Lives on the service's thread.
class Segments
{
public:
    /// @throws std::runtime_error  a segment cannot be used, with the reason
    Segments();
    ~Segments();
    Segments(const Segments&) = delete;
    Segments& operator=(const Segments&) = delete;

    QBXStringPageVector* playingList = nullptr;
    QBXStringPageVector* dbList = nullptr;
    QBXStringPageVector* dbListPinyin = nullptr;
    QBXStringPageVector* updateList = nullptr;
    QBXStringPageVector* updateListPinyin = nullptr;
    QBXStringPageVector* deviceList = nullptr;
    QBXByteVector* artwork = nullptr;
    QBXByteVector* artworkChange = nullptr;
    QBXByteVector* eapWrite = nullptr;
    QBXByteVector* eapRead = nullptr;

    /// Claims the segments for this service during its lifetime; to be called once. False if another service has
    /// claimed them.
    bool Claim();

    enum class Lock
    {
        Lists,
        Buffers,
    };
    /// Runs @p work while holding the lock of a segment.
    void WithLock(Lock lock, std::function<void()> work);

    /// Replaces the contents of one of the two artwork vectors. If both images do not fit, empties the other vector. A
    /// cover fits twice if it is smaller than about half the segment. Fails like Fill().
    bool FillArtwork(QBXByteVector& vector, const Bytes& bytes) const;

    /// Returns the bytes that a client wrote for an accessory session.
    /// @throws std::runtime_error  the vector's header points outside the segment
    Bytes TakeEapWrite() const;

private:
    QBXSharedSegment m_lists;
    QBXSharedSegment m_buffers;
    int m_claim = -1;
};

/// Replaces the contents of a vector; names are truncated to 255 bytes. Returns false and leaves the vector empty if
/// the segment has no room or its lock is held by a dead process.
bool Fill(QBXStringPageVector& vector, const std::vector<std::string>& names);
bool Fill(QBXByteVector& vector, const Bytes& bytes);
}  // namespace ipodsim
