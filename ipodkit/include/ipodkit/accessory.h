/// @file
/// Accessory sessions as byte streams between the application and its companion app on the device.
///
///     AccessoryPort port(session);
///     auto opened = port.OnOpened("echo", [&](const AccessorySessionPtr& peer) { … });
///
/// **Announce first.** Commands::AnnounceAccessory() tells the device the unit's protocols, Commands::LaunchApp()
/// starts the app; the device opens sessions.
///
/// **Received bytes** are announced by the service with the low 8 bits of the session's number. With one open session
/// that fits, they are its bytes. With more, nobody can know: each of them gets ErrorKind::Ambiguous instead.
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

struct AccessoryOptions
{
    std::size_t chunk = 1 << 14;      ///< bytes per call of the service; see RoomForAccessoryBytes()
    std::size_t highWater = 1 << 18;  ///< a session accepts no more bytes while so many are waiting
};

/// How many bytes the write buffer takes at once now; 0 while it is not attached. More would use up the segment, from
/// which the buffer never returns anything: pictures and received bytes would find no room any more. A new segment
/// takes a third of its size. Any thread.
///
/// Sessions refuse larger chunks by themselves; the core's EapWrite() knows no limit.
std::size_t RoomForAccessoryBytes();

/// One session, from its opening to its closing by the device, the service's end, the port's, or that of the Session
/// it was opened in. Closed for ever once it is.
class AccessorySession
{
public:
    using DataCallback = std::function<void(const Result<Bytes>&)>;

    std::uint16_t Number() const;
    unsigned char Protocol() const;  ///< index of its protocol among those announced
    bool IsOpen() const;

    /// Sends bytes, after those of the writes that were started before. The result comes when the service has accepted
    /// the last byte. Each chunk has the session's deadline; Within() limits the whole.
    ///
    /// ErrorKind::Busy when HasRoomFor() was false at the start: then nothing was taken. ErrorKind::Cancelled when the
    /// session is closed. After any other error everything taken so far completes with that error; bytes taken
    /// afterwards are sent again, and the stream has a gap. A write that is withdrawn before its first chunk leaves
    /// none; one that is withdrawn later counts as such an error.
    ///
    /// Any thread may make and start it.
    Request<void> Write(Bytes bytes);

    /// Whether Write() would take so many bytes now. Any amount is taken when nothing is waiting.
    bool HasRoomFor(std::size_t bytes) const;

    /// Bytes that were taken and not accepted yet.
    std::size_t Waiting() const;

    Subscription OnData(std::string name, DataCallback callback);

    /// Called each time that nothing is waiting any more, also after an error, while the session is open.
    Subscription OnDrained(std::string name, std::function<void()> callback);

    Subscription OnClosed(std::string name, std::function<void()> callback);

    class __attribute__((visibility("hidden"))) Impl;
    explicit AccessorySession(std::shared_ptr<Impl> impl) : m_impl(std::move(impl)) {}

private:
    std::shared_ptr<Impl> m_impl;
};

using AccessorySessionPtr = std::shared_ptr<AccessorySession>;

/// All sessions of the device. Several ports may exist; each has objects of its own for the same sessions.
class AccessoryPort
{
public:
    explicit AccessoryPort(Session& session, const AccessoryOptions& options = {});

    /// Its sessions count as closed.
    ~AccessoryPort();
    AccessoryPort(const AccessoryPort&) = delete;
    AccessoryPort& operator=(const AccessoryPort&) = delete;

    std::vector<AccessorySessionPtr> Sessions() const;  ///< those that are open

    /// As AccessorySession::Write(), to a session by its number, also to one that was opened before this process
    /// listened. ErrorKind::Refused when the service has no such session.
    Request<void> WriteTo(std::uint16_t session, Bytes bytes);
    Subscription OnOpened(std::string name, std::function<void(const AccessorySessionPtr&)> callback);

private:
    class __attribute__((visibility("hidden"))) Impl;
    std::shared_ptr<Impl> m_impl;
    Subscription m_listening;
    Subscription m_watching;
};
}  // namespace ipodkit

#pragma GCC visibility pop
