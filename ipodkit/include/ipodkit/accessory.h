/// @file
/// Accessory sessions as byte streams between the application and its companion app on the device.
///
///     AccessoryPort port(session);
///     auto opened = port.OnOpened("echo", [&](const AccessorySessionPtr& peer) { … });
///
/// **Announce first.** Commands::AnnounceAccessory() announces the head unit's protocols to the device,
/// Commands::LaunchApp() starts the app; the device opens sessions.
///
/// **Received bytes** arrive with the low 8 bits of the session's number only. If one open session matches, it gets the
/// bytes. If several match, each of them gets ErrorKind::Ambiguous instead.
///
/// **Context thread only.** Callbacks run in the session's context.
#pragma once

#include <ipodkit/session.h>

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#pragma GCC visibility push(default)

namespace ipodkit
{
using Bytes = std::vector<unsigned char>;

/// Limits of the writes of one AccessoryPort.
struct AccessoryOptions
{
    std::size_t chunk = 1 << 14;      ///< bytes per call to the service; 0 counts as 1; see RoomForAccessoryBytes()
    std::size_t highWater = 1 << 18;  ///< bytes that may wait in a session; 0 allows one write at a time
};

/// Returns how many bytes the write buffer accepts at once now; 0 while it is not attached. The buffer never shrinks: a
/// larger one would use up the segment and leave no room for artwork and received bytes. In a new segment, the limit is
/// a third of its size. Any thread.
///
/// Sessions reject larger chunks; the core's EapWrite() has no limit.
std::size_t RoomForAccessoryBytes();

/// One session, open until the device closes it, or the service, the port, or the Session ends. A closed session never
/// reopens.
class AccessorySession
{
public:
    using DataCallback = std::function<void(const Result<Bytes>&)>;

    std::uint16_t Number() const;    ///< reported by the service; unique among the open sessions
    unsigned char Protocol() const;  ///< index of its protocol among those announced, from 0
    bool IsOpen() const;             ///< false once it is closed, for good

    /// Sends bytes, after those of the writes started before. Completes when the service has accepted the last byte.
    /// Each chunk has the deadline of SessionOptions; Within() limits the whole write.
    ///
    /// ErrorKind::Busy when HasRoomFor() was false at the start: nothing was queued. ErrorKind::Cancelled when the
    /// session is closed. After any other error all queued writes complete with that error; later writes are sent, and
    /// the stream has a gap. A write that is withdrawn before its first chunk leaves no gap; one that is withdrawn
    /// later counts as such an error.
    ///
    /// Any thread may make and start it.
    Request<void> Write(Bytes bytes);

    /// Returns whether Write() would queue that many bytes now. An empty queue accepts any number.
    bool HasRoomFor(std::size_t bytes) const;

    /// Returns the number of bytes that are queued and that the service has not accepted yet.
    std::size_t Waiting() const;

    /// Reports received bytes, in the order of their arrival, or ErrorKind::Ambiguous.
    Subscription OnData(std::string name, DataCallback callback);

    /// Calls back each time the queue becomes empty, also after an error, while the session is open.
    Subscription OnDrained(std::string name, std::function<void()> callback);

    /// Calls back once, when the session is closed.
    Subscription OnClosed(std::string name, std::function<void()> callback);

    class __attribute__((visibility("hidden"))) Impl;
    explicit AccessorySession(std::shared_ptr<Impl> impl) : m_impl(std::move(impl)) {}

private:
    std::shared_ptr<Impl> m_impl;
};

using AccessorySessionPtr = std::shared_ptr<AccessorySession>;

/// The accessory sessions of the device. Several ports may exist; each has its own objects for the same sessions.
class AccessoryPort
{
public:
    /// Starts with the sessions that are already open.
    explicit AccessoryPort(Session& session, const AccessoryOptions& options = {});

    /// Closes its AccessorySession objects: their writes complete with ErrorKind::Cancelled. The device's sessions stay
    /// open.
    ~AccessoryPort();
    AccessoryPort(const AccessoryPort&) = delete;
    AccessoryPort& operator=(const AccessoryPort&) = delete;

    /// Returns the open sessions.
    std::vector<AccessorySessionPtr> Sessions() const;

    /// Like AccessorySession::Write(), but addresses the session by number, even one that was opened before this
    /// process listened. ErrorKind::Refused when the service has no such session.
    Request<void> WriteTo(std::uint16_t session, Bytes bytes);

    /// Reports each session that the device opens from now on. Sessions() returns those that are already open.
    Subscription OnOpened(std::string name, std::function<void(const AccessorySessionPtr&)> callback);

private:
    class __attribute__((visibility("hidden"))) Impl;
    std::shared_ptr<Impl> m_impl;
    Subscription m_listening;
    Subscription m_watching;
};
}  // namespace ipodkit

#pragma GCC visibility pop
