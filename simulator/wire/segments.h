/// @file
/// The service's side of the two shared-memory segments: attaches them and fills the vectors.
#pragma once

#include <QBXIpodShareMemory.h>

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "music/track.h"

namespace ipodsim
{
/// Both segments, attached or created, with their ten vectors. They are never removed: clients keep them mapped, and a
/// service that comes later finds them again. Only the service's thread may use it.
class Segments
{
public:
    /// @throws std::runtime_error  a segment cannot be used, with the reason
    Segments();

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

    /// Marks the segments as those of this service for as long as it lives. False if another one has done so.
    bool Claim();

    enum class Lock
    {
        Lists,
        Buffers,
    };
    /// Does work while the lock of a segment is held.
    void WithLock(Lock lock, std::function<void()> work);

    /// Replaces what is in one of the two artwork vectors. Where both pictures do not fit, the other vector is emptied.
    /// A cover fits twice if it is smaller than about half the segment. Fails as Fill().
    bool FillArtwork(QBXByteVector& vector, const Bytes& bytes);

    /// The bytes that a client left for an accessory session.
    /// @throws std::runtime_error  what the vector says of itself points outside the segment
    Bytes TakeEapWrite() const;

private:
    class Descriptor
    {
    public:
        explicit Descriptor(int number = -1) : m_number(number) {}
        ~Descriptor();
        Descriptor(Descriptor&& other) noexcept : m_number(std::exchange(other.m_number, -1)) {}
        Descriptor& operator=(Descriptor&& other) noexcept
        {
            std::swap(m_number, other.m_number);
            return *this;
        }
        int Number() const { return m_number; }

    private:
        int m_number;
    };

    QBXSharedSegment m_lists;
    QBXSharedSegment m_buffers;
    Descriptor m_claim;
};

/// Replaces what is in a vector; names are cut to 255 bytes. False when the segment has no room for it or its lock is
/// held by a process that died: the vector is empty then.
bool Fill(QBXStringPageVector& vector, const std::vector<std::string>& names);
bool Fill(QBXByteVector& vector, const Bytes& bytes);
}  // namespace ipodsim
